#include "machine/machine/MachineMotion.h"

#include <gtest/gtest.h>

#include <vector>

#include "machine/machine/MotionEntity.h"
#include "support/AssertRecorder.h"
#include "support/PersistSupport.h"

using machine::MachineMotion;
using mtkit_test::makeContext;
using mtkit_test::makeOrdering;

TEST(MachineMotion, VersionIs3) {
  EXPECT_EQ(MachineMotion::s_version, 3);
  EXPECT_EQ(MachineMotion::currentVersion(), 3);
  EXPECT_STREQ(MachineMotion::iceStaticClass.name(), "MachineMotion");
  EXPECT_EQ(MachineMotion::iceStaticClass.version(), 3);
  EXPECT_EQ(&MachineMotion().iceDynamicClass(), &MachineMotion::iceStaticClass);
}

TEST(MachineMotion, DefaultHasNoContextNoOrderingNoEntitiesAndIsNotValid) {
  MachineMotion const motion;
  EXPECT_FALSE(motion.isValid());
  EXPECT_EQ(motion.numEntities(), 0);
  EXPECT_EQ(motion.context(), Orvo::MotionContext());
  EXPECT_EQ(motion.axisOrdering(0), Orvo::AxisOrdering());
  // Two null pointers are equal; a held default context is not null.
  EXPECT_TRUE(motion == MachineMotion());
  MachineMotion held;
  held.setAxisOrdering(Orvo::AxisOrdering());
  EXPECT_FALSE(motion == held);
}

TEST(MachineMotion, ConstructionFromAContextTakesItAndIsValid) {
  MachineMotion const motion(makeContext(1, 2, 3, 0));
  EXPECT_TRUE(motion.isValid());
  EXPECT_EQ(motion.context(), makeContext(1, 2, 3, 0));
}

TEST(MachineMotion, ConstructionFromAContextThatIsNotValidAsserts) {
  mtkit_test::AssertRecorder asserts;
  Orvo::MotionContext context;
  context.setMachineId(1);
  MachineMotion const motion(context);
  EXPECT_EQ(asserts.takeTexts(), std::vector<std::string>{"EXPECTS:m_context->isValid()"});
  EXPECT_TRUE(motion.isValid());
  EXPECT_EQ(motion.context().machineId(), 1);
}

TEST(MachineMotion, SetContextAssertsAValidContextAndReplacesAllTheSame) {
  mtkit_test::AssertRecorder asserts;
  MachineMotion motion(makeContext(1, 2, 3, 0));
  motion.setContext(makeContext(1, 2, 4, 0));
  EXPECT_TRUE(asserts.takeTexts().empty());
  EXPECT_EQ(motion.context().toolpathId(), 4);
  motion.setContext(Orvo::MotionContext());
  EXPECT_EQ(asserts.takeTexts(), std::vector<std::string>{"EXPECTS:context.isValid()"});
  EXPECT_EQ(motion.context(), Orvo::MotionContext());
}

TEST(MachineMotion, AxisOrderingIgnoresItsArgument) {
  MachineMotion motion(makeContext(1, 2, 3, 0));
  Orvo::AxisOrdering const ordering = makeOrdering({{"x", "X"}, {"y", "Y"}});
  motion.setAxisOrdering(ordering);
  EXPECT_EQ(motion.axisOrdering(0), ordering);
  EXPECT_EQ(motion.axisOrdering(7), ordering);
  EXPECT_EQ(motion.axisOrdering(-1), ordering);
}

TEST(MachineMotion, AxisValuesOutOfRangeAssertsAndGivesTheFirstEntity) {
  mtkit_test::AssertRecorder asserts;
  MachineMotion motion(makeContext(1, 2, 3, 0));
  Orvo::AxisValues const first(std::vector<Orvo::AxisValue>{1.0, 2.0});
  Orvo::AxisValues const second(std::vector<Orvo::AxisValue>{3.0, 4.0});
  motion.appendEntity(first);
  motion.appendEntity(second);
  EXPECT_EQ(motion.numEntities(), 2);
  EXPECT_EQ(motion.axisValues(1), second);
  EXPECT_TRUE(asserts.takeTexts().empty());
  EXPECT_EQ(motion.axisValues(2), first);
  EXPECT_EQ(asserts.takeTexts(), std::vector<std::string>{"EXPECTS:i < numEntities()"});
}

TEST(MachineMotion, AxisValuesOfAMotionWithoutEntitiesIsEmpty) {
  mtkit_test::AssertRecorder asserts;
  MachineMotion const motion(makeContext(1, 2, 3, 0));
  EXPECT_EQ(motion.axisValues(0).size(), 0);
  EXPECT_EQ(asserts.takeTexts(), std::vector<std::string>{"EXPECTS:i < numEntities()"});
}

TEST(MachineMotion, CopyIsDeep) {
  MachineMotion original = mtkit_test::fixtureMotionA();
  MachineMotion const copy(MachineMotion::Copy{}, original);
  EXPECT_TRUE(copy == original);
  original.setContext(makeContext(9, 9, 9, 9));
  original.setAxisOrdering(Orvo::AxisOrdering());
  original.appendEntity(Orvo::AxisValues(1));
  EXPECT_EQ(copy.context(), makeContext(1, 2, 3, 54, {{7, 2}}));
  EXPECT_EQ(copy.axisOrdering(0).size(), 5);
  EXPECT_EQ(copy.numEntities(), 1);
  EXPECT_TRUE(copy != original);
}

TEST(MachineMotion, EqualityComparesContextOrderingEntitiesAndValidity) {
  MachineMotion const a = mtkit_test::fixtureMotionA();
  EXPECT_TRUE(a == mtkit_test::fixtureMotionA());

  MachineMotion otherContext = mtkit_test::fixtureMotionA();
  otherContext.setContext(makeContext(1, 2, 3, 55, {{7, 2}}));
  EXPECT_TRUE(a != otherContext);

  MachineMotion otherOrdering = mtkit_test::fixtureMotionA();
  otherOrdering.setAxisOrdering(makeOrdering({{"x_slide", "X"}}));
  EXPECT_TRUE(a != otherOrdering);

  MachineMotion moreEntities = mtkit_test::fixtureMotionA();
  moreEntities.appendEntity(Orvo::AxisValues(5));
  EXPECT_TRUE(a != moreEntities);

  MachineMotion otherValues(makeContext(1, 2, 3, 54, {{7, 2}}));
  otherValues.setAxisOrdering(a.axisOrdering(0));
  otherValues.appendEntity(Orvo::AxisValues(std::vector<Orvo::AxisValue>{10.5, -20.25, 300.0, 45.0, -90.5}));
  EXPECT_TRUE(a != otherValues);

  MachineMotion invalid = mtkit_test::fixtureMotionA();
  invalid.invalidate();
  EXPECT_FALSE(invalid.isValid());
  EXPECT_TRUE(a != invalid);
}

TEST(MachineMotion, MoveTakesEverything) {
  MachineMotion source = mtkit_test::fixtureMotionA();
  MachineMotion target(std::move(source));
  EXPECT_TRUE(target == mtkit_test::fixtureMotionA());
  MachineMotion assigned;
  assigned = std::move(target);
  EXPECT_TRUE(assigned == mtkit_test::fixtureMotionA());
}

TEST(MotionEntity, HasAClassRecordOfItsOwn) {
  EXPECT_STREQ(machine::MotionEntity::iceStaticClass.name(), "MotionEntity");
  Orvo::AxisValues const values(std::vector<Orvo::AxisValue>{1.0});
  machine::MotionEntity const entity(values);
  EXPECT_EQ(entity.axisValues(), values);
  EXPECT_EQ(&entity.iceDynamicClass(), &machine::MotionEntity::iceStaticClass);
}
