#include "machine/machine/NcCodeMovement.h"

#include <gtest/gtest.h>

#include "support/AssertRecorder.h"

using namespace machine;

TEST(NcCodeMovement, BuiltWithoutFeedAnswersFeedrateWithAnEmptyOptional) {
  NcCodeMovement const m(NcCodeCoordProgrammingMode::CARTESIAN, NcCodeMotionProgrammingMode::FEED,
                         NcCodeKinematicInterpolationMode::SYNCHRONIZED, NcCodeRotaryAxisTraverseMode::DIRECT);
  EXPECT_FALSE(m.feedrate().has_value());
  EXPECT_EQ(m.numCoordinates(), 0);
}

TEST(NcCodeMovement, KeepsModesFeedAndCoordinatesInOrder) {
  NcCodeMovement m(NcCodeCoordProgrammingMode::CARTESIAN, NcCodeMotionProgrammingMode::FEED,
                   NcCodeFeedrate(NcCodeFeedrateType::MM_PER_MINUTE, 500.0), NcCodeKinematicInterpolationMode::TCP_ONLY,
                   NcCodeRotaryAxisTraverseMode::SHORTEST);
  m.append(NcCodeCoordinateType::Z, 4.0);
  m.append(Orvo::AxisName("B"), Orvo::AxisValue(30.0));
  ASSERT_EQ(m.numCoordinates(), 2);
  EXPECT_EQ(m.coordinate(0).type(), NcCodeCoordinateType::Z);
  EXPECT_FALSE(m.coordinate(0).axisName().has_value());
  EXPECT_EQ(m.coordinate(1).type(), NcCodeCoordinateType::MACHINE_AXIS);
  EXPECT_EQ(*m.coordinate(1).axisName(), Orvo::AxisName("B"));
  EXPECT_EQ(m.coordinate(1).axisValue().value(), 30.0);
  EXPECT_EQ(m.feedrate()->mmPerMinute(), 500.0);
  EXPECT_EQ(m.coordProgrammingMode(), NcCodeCoordProgrammingMode::CARTESIAN);
  EXPECT_EQ(m.motionProgrammingMode(), NcCodeMotionProgrammingMode::FEED);
  EXPECT_EQ(m.kinematicInterpolationMode(), NcCodeKinematicInterpolationMode::TCP_ONLY);
  EXPECT_EQ(m.rotaryAxisTraverseMode(), NcCodeRotaryAxisTraverseMode::SHORTEST);
}

TEST(NcCodeMovement, AppendingAMachineAxisAsTypeAsserts) {
  mtkit_test::AssertRecorder rec;
  NcCodeMovement m(NcCodeCoordProgrammingMode::MACHINE_AXES, NcCodeMotionProgrammingMode::RAPID,
                   NcCodeKinematicInterpolationMode::SYNCHRONIZED, NcCodeRotaryAxisTraverseMode::DIRECT);
  m.append(NcCodeCoordinateType::MACHINE_AXIS, 1.0);
  EXPECT_EQ(rec.takeTexts(), std::vector<std::string>{"EXPECTS:type != NcCodeCoordinateType::MACHINE_AXIS"});
  (void)NcCodeCoordinate(NcCodeCoordinateType::X, 1.0).axisValue();
  EXPECT_EQ(rec.takeTexts(), std::vector<std::string>{"EXPECTS:m_type == NcCodeCoordinateType::MACHINE_AXIS"});
}

TEST(NcCodeFeedrate, ReadersAssertTheirType) {
  mtkit_test::AssertRecorder rec;
  NcCodeFeedrate const perRev(NcCodeFeedrateType::MM_PER_REV, 0.2);
  EXPECT_EQ(perRev.mmPerRev(), 0.2);
  EXPECT_TRUE(rec.takeTexts().empty());
  EXPECT_EQ(perRev.mmPerMinute(), 0.2);
  EXPECT_EQ(rec.takeTexts(), std::vector<std::string>{"EXPECTS:m_type == NcCodeFeedrateType::MM_PER_MINUTE"});
  NcCodeFeedrate const perMinute(NcCodeFeedrateType::MM_PER_MINUTE, 100.0);
  (void)perMinute.mmPerRev();
  EXPECT_EQ(rec.takeTexts(), std::vector<std::string>{"EXPECTS:m_type == NcCodeFeedrateType::MM_PER_REV"});
}
