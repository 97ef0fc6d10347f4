#include "machine/machine/Pose.h"

#include <gtest/gtest.h>

#include "support/AssertRecorder.h"

using machine::Pose;
using Orvo::AxisInfo;
using Orvo::AxisName;
using Orvo::AxisOrdering;
using Orvo::AxisValue;
using Orvo::AxisValues;

namespace {

AxisOrdering xyz() {
  AxisOrdering ordering;
  ordering.append(AxisInfo("x", "X"));
  ordering.append(AxisInfo("y", "Y"));
  ordering.append(AxisInfo("z", "Z"));
  return ordering;
}

}  // namespace

TEST(Pose, ValueAndSetValueByName) {
  Pose pose(xyz(), AxisValues(std::vector<AxisValue>{1, 2, 3}));
  EXPECT_EQ(pose.size(), 3);
  EXPECT_EQ(pose.value(AxisName("Y")), AxisValue(2));
  pose.set_value(AxisName("Z"), 30);
  EXPECT_EQ(pose.value(AxisName("Z")), AxisValue(30));
  Pose const copy = pose;
  EXPECT_EQ(copy.value(AxisName("Z")), AxisValue(30));
  Pose moved = std::move(pose);
  EXPECT_EQ(moved.value(AxisName("X")), AxisValue(1));
}

TEST(Pose, PoseValueOfAnUnknownAxisNameGivesTheFirstAxisValue) {
  Pose pose(xyz(), AxisValues(std::vector<AxisValue>{1, 2, 3}));
  EXPECT_EQ(pose.value(AxisName("Q")), AxisValue(1));
  // And writing an unknown name overwrites the first axis.
  pose.set_value(AxisName("Q"), 99);
  EXPECT_EQ(pose.value(AxisName("X")), AxisValue(99));
}

TEST(Pose, SizeAssertsMatchingOrderingAndValues) {
  mtkit_test::AssertRecorder rec;
  Pose const pose(xyz(), AxisValues(std::vector<AxisValue>{1, 2}));
  EXPECT_EQ(pose.size(), 2);
  auto const failures = rec.take();
  ASSERT_EQ(failures.size(), 1u);
  EXPECT_EQ(failures[0].expression, "m_axis_data.size() == m_axis_ordering.size()");
  EXPECT_EQ(failures[0].file, "machine\\machine\\Pose");
}
