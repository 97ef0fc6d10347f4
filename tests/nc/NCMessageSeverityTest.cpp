#include "nc/NCMessageSeverity.h"

#include <gtest/gtest.h>

#include "nc/MotionContext.h"
#include "nc/ToolpathEntityIndex.h"

TEST(NCMessageSeverity, LevelTwoIsAWarningAndLevelThreeAnError) {
  EXPECT_TRUE(Orvo::NCMessageSeverity(2).isWarning());
  EXPECT_FALSE(Orvo::NCMessageSeverity(2).isError());
  EXPECT_TRUE(Orvo::NCMessageSeverity(3).isError());
  EXPECT_FALSE(Orvo::NCMessageSeverity(3).isWarning());
  EXPECT_TRUE(Orvo::NCMessageSeverity(4).isError());
}

TEST(MotionContext, ValidOnceMachineProgramAndToolpathAreKnown) {
  Orvo::MotionContext c;
  EXPECT_FALSE(c.isValid());
  c.setMachineId(1);
  c.setNcProgramId(2);
  EXPECT_FALSE(c.isValid());
  c.setToolpathId(0);
  EXPECT_TRUE(c.isValid());
  Orvo::MotionContext d = c;
  d.openPattern(5);
  d.setPatternInstance(3);
  EXPECT_NE(c, d);
  ASSERT_EQ(d.patterns().size(), 1u);
  EXPECT_EQ(d.patterns()[0].instance, 3);
  d.closePattern();
  EXPECT_EQ(c, d);
  d.closePattern();
  EXPECT_EQ(c, d);
}

TEST(ToolpathEntityIndex, DefaultHasNoPosition) {
  EXPECT_FALSE(Orvo::ToolpathEntityIndex().isValid());
  EXPECT_TRUE(Orvo::ToolpathEntityIndex(0).isValid());
  EXPECT_EQ(Orvo::ToolpathEntityIndex(4).index(), 4u);
}
