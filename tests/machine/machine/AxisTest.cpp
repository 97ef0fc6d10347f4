#include "machine/machine/Axis.h"

#include <gtest/gtest.h>

#include <cmath>

#include "machine/machine/InfiniteRotaryAxisDefinition.h"
#include "machine/machine/LimitedRotaryAxisDefinition.h"
#include "machine/machine/LinearAxisDefinition.h"
#include "support/AssertRecorder.h"

using machine::AnglePreference;
using machine::AnglePreferenceValue;
using machine::Axis;
using machine::AxisConfiguration;
using machine::ControlType;
using machine::NcCodeRotaryAxisTraverseMode;
using Orvo::AxisName;
using Orvo::AxisValue;
using Orvo::AxisValueRange;

namespace {

machine::InfiniteRotaryAxisDefinition infiniteRotary(double home = 0.0) {
  return machine::InfiniteRotaryAxisDefinition(ControlType::DRIVEN, 0.0, home, AxisName("C"), std::nullopt,
                                               Orvo::Point3D(0, 0, 0), Orvo::Vector3D(0, 0, 1));
}

machine::LimitedRotaryAxisDefinition limitedRotary(double min, double max) {
  return machine::LimitedRotaryAxisDefinition(ControlType::DRIVEN, 0.0, 0.0, AxisName("B"), std::nullopt,
                                              Orvo::Point3D(0, 0, 0), Orvo::Vector3D(0, 1, 0), min, max);
}

machine::LinearAxisDefinition linear(double home = 0.0) {
  return machine::LinearAxisDefinition(ControlType::DRIVEN, 0.0, home, AxisName("X"), std::nullopt,
                                       Orvo::Vector3D(1, 0, 0), AxisValue(-100), AxisValue(100));
}

void setWrapping(AxisConfiguration& configuration, double min, double max) {
  configuration.setWrapAroundAtRange(AxisValueRange(min, max));
}

}  // namespace

TEST(Axis, ANewAxisHasValidTransformFalseAlsoWhenItsValueIsZero) {
  auto const definition = infiniteRotary(0.0);
  Axis const axis(&definition, nullptr);
  EXPECT_EQ(axis.value(), AxisValue(0.0));
  EXPECT_FALSE(axis.validTransform());
  axis.transformation();
  EXPECT_TRUE(axis.validTransform());
}

TEST(Axis, ConstructorAssertsItsDefinitionAndStartsAtHome) {
  mtkit_test::AssertRecorder rec;
  auto const definition = linear(12.5);
  Axis const axis(&definition, nullptr);
  EXPECT_EQ(axis.value(), AxisValue(12.5));
  EXPECT_TRUE(rec.takeTexts().empty());
  Axis const broken(nullptr, nullptr);
  auto const failures = rec.take();
  ASSERT_EQ(failures.size(), 1u);
  EXPECT_EQ(failures[0].expression, "axisDef");
  EXPECT_EQ(failures[0].file, "machine\\machine\\Axis");
  // Without a definition the transformation is the identity.
  EXPECT_EQ(broken.transformation(), Orvo::Transform3D());
}

TEST(Axis, TransformationFollowsTheValueAndIsCachedForIt) {
  auto const definition = linear();
  Axis axis(&definition, nullptr);
  axis.setValue(5.0);
  EXPECT_FALSE(axis.validTransform());
  EXPECT_EQ(axis.transformation().translation(), Orvo::Vector3D(5, 0, 0));
  EXPECT_TRUE(axis.validTransform());
  axis.setValue(5.0);
  EXPECT_TRUE(axis.validTransform());
  axis.setValue(-2.0);
  EXPECT_FALSE(axis.validTransform());
  EXPECT_EQ(axis.transformation().translation(), Orvo::Vector3D(-2, 0, 0));
}

TEST(Axis, NameAndHomeComeFromTheConfigurationWhenItHasThem) {
  auto const definition = linear(3.0);
  AxisConfiguration configuration;
  Axis const plain(&definition, &configuration);
  EXPECT_EQ(plain.name(), AxisName("X"));
  EXPECT_EQ(plain.home(), AxisValue(3.0));
  configuration.setName(AxisName("U"));
  configuration.setHome(AxisValue(7.0));
  EXPECT_EQ(plain.name(), AxisName("U"));
  EXPECT_EQ(plain.home(), AxisValue(7.0));
  EXPECT_EQ(plain.controlType(), ControlType::DRIVEN);
  EXPECT_EQ(plain.axisType(), machine::AxisType::LINEAR);
}

TEST(Axis, ToolChangePositionIgnoresTheConfiguration) {
  auto definition = linear(3.0);
  AxisConfiguration configuration;
  configuration.setHome(AxisValue(7.0));
  Axis const axis(&definition, &configuration);
  EXPECT_EQ(axis.toolChangePosition(), AxisValue(3.0));
  definition.setDefaultToolChangePosition(AxisValue(-40.0));
  EXPECT_EQ(axis.toolChangePosition(), AxisValue(-40.0));
}

TEST(Axis, AnglePreferenceOnlyForAConfiguredRotaryAxis) {
  auto const rotary = infiniteRotary();
  auto const lin = linear();
  AxisConfiguration configuration;
  configuration.setPreference(AnglePreference(AnglePreferenceValue::POSITIVE));
  EXPECT_EQ(Axis(&rotary, &configuration).anglePreference().value(), AnglePreferenceValue::POSITIVE);
  EXPECT_EQ(Axis(&rotary, nullptr).anglePreference().value(), AnglePreferenceValue::NO_PREFERENCE);
  EXPECT_EQ(Axis(&lin, &configuration).anglePreference().value(), AnglePreferenceValue::NO_PREFERENCE);
}

TEST(Axis, IsTcpAxisForLinearAxesAndWithoutConfiguration) {
  auto const rotary = infiniteRotary();
  auto const lin = linear();
  AxisConfiguration configuration;
  configuration.setTCPEnabled(false);
  EXPECT_TRUE(Axis(&lin, &configuration).isTcpAxis());
  EXPECT_TRUE(Axis(&rotary, nullptr).isTcpAxis());
  EXPECT_FALSE(Axis(&rotary, &configuration).isTcpAxis());
}

TEST(Axis, RangeIsPhysicalNarrowedByWrapAroundAndRestriction) {
  auto const lin = linear();
  auto const rotary = infiniteRotary();
  EXPECT_EQ(Axis(&lin, nullptr).range(), AxisValueRange(-100, 100));
  EXPECT_TRUE(Axis(&rotary, nullptr).range().isInfinite());

  AxisConfiguration configuration;
  setWrapping(configuration, 0, 360);
  // The wrap-around range replaces only an infinite physical range.
  EXPECT_EQ(Axis(&rotary, &configuration).range(), AxisValueRange(0, 360));
  EXPECT_EQ(Axis(&lin, &configuration).range(), AxisValueRange(-100, 100));

  configuration.setRestrictedRange(AxisValueRange(-50, 40));
  EXPECT_EQ(Axis(&rotary, &configuration).range(), AxisValueRange(0, 40));
  EXPECT_EQ(Axis(&lin, &configuration).range(), AxisValueRange(-50, 40));

  // No overlap: the range collapses to the present value.
  configuration.setRestrictedRange(AxisValueRange(500, 600));
  Axis axis(&lin, &configuration);
  axis.setValue(42.0);
  EXPECT_EQ(axis.range(), AxisValueRange(42, 42));
}

TEST(Axis, IsCyclicNeedsAWholeTurnOfWrapAroundAndNoLimits) {
  auto const rotary = infiniteRotary();
  auto const limited = limitedRotary(-90, 90);
  AxisConfiguration full;
  setWrapping(full, 0, 360);
  AxisConfiguration narrow;
  setWrapping(narrow, 0, 359.5);
  AxisConfiguration restricted;
  setWrapping(restricted, 0, 360);
  restricted.setRestrictedRange(AxisValueRange(0, 360));
  EXPECT_TRUE(Axis(&rotary, &full).isCyclic());
  EXPECT_FALSE(Axis(&rotary, nullptr).isCyclic());
  EXPECT_FALSE(Axis(&rotary, &narrow).isCyclic());
  EXPECT_FALSE(Axis(&rotary, &restricted).isCyclic());
  EXPECT_FALSE(Axis(&limited, &full).isCyclic());
}

TEST(Axis, SupportsShortestMotionForAnUnlimitedRotaryAxisWithAWholeTurn) {
  auto const rotary = infiniteRotary();
  auto const limited = limitedRotary(-360, 360);
  auto const lin = linear();
  AxisConfiguration narrow;
  narrow.setRestrictedRange(AxisValueRange(-100, 100));
  EXPECT_TRUE(Axis(&rotary, nullptr).supportsRotaryTraverseShortestMotion());
  EXPECT_FALSE(Axis(&rotary, &narrow).supportsRotaryTraverseShortestMotion());
  EXPECT_FALSE(Axis(&limited, nullptr).supportsRotaryTraverseShortestMotion());
  EXPECT_FALSE(Axis(&lin, nullptr).supportsRotaryTraverseShortestMotion());
}

TEST(Axis, OnACyclicAxisCalculateRotaryAxisTargetFrom350To10Gives370InEitherModeAndWithPhysicalLimits10) {
  auto const rotary = infiniteRotary();
  AxisConfiguration configuration;
  setWrapping(configuration, 0, 360);
  Axis const cyclic(&rotary, &configuration);
  EXPECT_EQ(cyclic.calculateRotaryAxisTarget(350, 10, NcCodeRotaryAxisTraverseMode::SHORTEST), AxisValue(370));
  EXPECT_EQ(cyclic.calculateRotaryAxisTarget(350, 10, NcCodeRotaryAxisTraverseMode::DIRECT), AxisValue(370));

  auto const limited = limitedRotary(-400, 400);
  Axis const bounded(&limited, nullptr);
  EXPECT_EQ(bounded.calculateRotaryAxisTarget(350, 10, NcCodeRotaryAxisTraverseMode::SHORTEST), AxisValue(10));
  EXPECT_EQ(bounded.calculateRotaryAxisTarget(350, 10, NcCodeRotaryAxisTraverseMode::DIRECT), AxisValue(10));
}

TEST(Axis, CalculateRotaryAxisTargetKeepsHalfTurnsAndDirectModeOnAFreeAxis) {
  auto const rotary = infiniteRotary();
  Axis const free(&rotary, nullptr);
  EXPECT_EQ(free.calculateRotaryAxisTarget(0, 180, NcCodeRotaryAxisTraverseMode::SHORTEST), AxisValue(180));
  EXPECT_EQ(free.calculateRotaryAxisTarget(180, 0, NcCodeRotaryAxisTraverseMode::SHORTEST), AxisValue(0));
  EXPECT_EQ(free.calculateRotaryAxisTarget(10, 350, NcCodeRotaryAxisTraverseMode::SHORTEST), AxisValue(-10));
  EXPECT_EQ(free.calculateRotaryAxisTarget(10, 350, NcCodeRotaryAxisTraverseMode::DIRECT), AxisValue(350));
}

TEST(Axis, CalculateRotaryAxisTargetAssertsARotaryAxis) {
  mtkit_test::AssertRecorder rec;
  auto const lin = linear();
  EXPECT_EQ(Axis(&lin, nullptr).calculateRotaryAxisTarget(350, 10, NcCodeRotaryAxisTraverseMode::SHORTEST),
            AxisValue(10));
  EXPECT_EQ(rec.takeTexts(), (std::vector<std::string>{"axisType() == machine::AxisType::ROTARY"}));
}

TEST(Axis, RemapCyclic725With10OnAWrapAroundRange0To360Returns5) {
  auto const rotary = infiniteRotary();
  AxisConfiguration configuration;
  setWrapping(configuration, 0, 360);
  Axis const axis(&rotary, &configuration);
  EXPECT_EQ(axis.remapCyclic(725, 10), AxisValue(5));
  EXPECT_EQ(axis.remapCyclic(200, 10), AxisValue(200));
  // Not cyclic: left as it is.
  Axis const free(&rotary, nullptr);
  EXPECT_EQ(free.remapCyclic(725, 10), AxisValue(725));
}

TEST(Axis, InterpolatedAxisValueAtFraction0OnACyclicAxisWithAnOutOfRangeStartGivesTheStartRemapped) {
  auto const rotary = infiniteRotary();
  AxisConfiguration configuration;
  setWrapping(configuration, 0, 360);
  Axis const axis(&rotary, &configuration);
  EXPECT_EQ(axis.interpolatedAxisValue(400, 10, 0.0, NcCodeRotaryAxisTraverseMode::DIRECT), AxisValue(40));
  EXPECT_EQ(axis.interpolatedAxisValue(350, 10, 0.5, NcCodeRotaryAxisTraverseMode::DIRECT), AxisValue(360));
  EXPECT_EQ(axis.interpolatedAxisValue(350, 10, 1.0, NcCodeRotaryAxisTraverseMode::DIRECT), AxisValue(10));
}

TEST(Axis, InterpolatedAxisValueOnALinearAxisAndItsFractionCheck) {
  mtkit_test::AssertRecorder rec;
  auto const lin = linear();
  Axis const axis(&lin, nullptr);
  EXPECT_EQ(axis.interpolatedAxisValue(0, 10, 0.25, NcCodeRotaryAxisTraverseMode::SHORTEST), AxisValue(2.5));
  EXPECT_TRUE(rec.takeTexts().empty());
  EXPECT_EQ(axis.interpolatedAxisValue(0, 10, 1.5, NcCodeRotaryAxisTraverseMode::SHORTEST), AxisValue(15));
  EXPECT_EQ(rec.takeTexts(), (std::vector<std::string>{"EXPECTS:0 <= fraction && fraction <= 1"}));
}

TEST(Axis, CompareAxisValueWithToleranceIsInclusiveAndTakesNoTurn) {
  EXPECT_TRUE(Axis::compareAxisValueWithTolerance(1.0, 1.5, 0.5));
  EXPECT_FALSE(Axis::compareAxisValueWithTolerance(1.0, 1.5000001, 0.5));
  EXPECT_FALSE(Axis::compareAxisValueWithTolerance(0.0, 360.0, 1e-9));
}
