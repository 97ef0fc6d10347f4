#include <gtest/gtest.h>

#include <cmath>

#include "machine/machine/InfiniteRotaryAxisDefinition.h"
#include "machine/machine/LimitedRotaryAxisDefinition.h"
#include "machine/machine/LinearAxisDefinition.h"
#include "machine/machine/PartType.h"
#include "support/AssertRecorder.h"
#include "util/utility/math/TransformTestSupport.h"

using namespace machine;
using mtkit_test::expectNear;
using Orvo::AxisName;
using Orvo::AxisValue;
using Orvo::Point3D;
using Orvo::Vector3D;

namespace {
LimitedRotaryAxisDefinition limitedB(double lo, double hi) {
  return LimitedRotaryAxisDefinition(ControlType::DRIVEN, 0.0, 0.0, AxisName("B"), std::nullopt, Point3D(0, 0, 100),
                                     Vector3D(0, 2, 0), lo, hi);
}
InfiniteRotaryAxisDefinition infiniteC(double asModelled = 0.0) {
  return InfiniteRotaryAxisDefinition(ControlType::DRIVEN, asModelled, 0.0, AxisName("C"), std::nullopt,
                                      Point3D(10, 0, 0), Vector3D(0, 0, 1));
}
}  // namespace

TEST(AxisDefinition, InfiniteRotaryHasNoPhysicalLimitsAndLimitedFromMinus90To90Has) {
  EXPECT_FALSE(infiniteC().hasPhysicalLimits());
  EXPECT_TRUE(infiniteC().physicalRange().isInfinite());
  EXPECT_FALSE(infiniteC().physicalMin());
  auto const b = limitedB(-90, 90);
  EXPECT_TRUE(b.hasPhysicalLimits());
  EXPECT_EQ(b.physicalRange().min().value(), -90.0);
  EXPECT_EQ(b.physicalRange().max().value(), 90.0);
}

TEST(AxisDefinition, RotationIsUnchangedByTheOffset) {
  auto c = infiniteC();
  auto const before = c.transformation(37.0);
  c.setOffset(Point3D(5, 6, 7));
  EXPECT_TRUE(c.offset());
  EXPECT_EQ(c.transformation(37.0), before);
}

TEST(AxisDefinition, AtTheValueAsModelledTheTransformationIsTheIdentity) {
  auto const c = infiniteC(25.0);
  auto const t = c.transformation(25.0);
  expectNear(t(Point3D(3, 4, 5)), Point3D(3, 4, 5));
  LinearAxisDefinition const x(ControlType::DRIVEN, 100.0, 0.0, AxisName("X"), std::nullopt, Vector3D(2, 0, 0),
                               std::nullopt, std::nullopt);
  expectNear(x.transformation(100.0)(Point3D(1, 1, 1)), Point3D(1, 1, 1));
}

TEST(AxisDefinition, LinearMovesByDeltaAlongTheNormalisedDirection) {
  LinearAxisDefinition const z(ControlType::DRIVEN, 10.0, 0.0, AxisName("Z"), std::nullopt, Vector3D(0, 0, 5),
                               AxisValue(-100), AxisValue(100));
  EXPECT_EQ(z.direction(), Vector3D(0, 0, 1));
  expectNear(z.transformation(35.0)(Point3D(0, 0, 0)), Point3D(0, 0, 25));
  expectNear(z.transformation(35.0)(Vector3D(0, 0, 1)), Vector3D(0, 0, 1));
  EXPECT_EQ(z.axisType(), AxisType::LINEAR);
}

TEST(AxisDefinition, RotaryTurnsRightHandedAboutItsLineInDegrees) {
  auto const c = infiniteC();
  // About the vertical line through (10, 0, 0): (11, 0, 0) goes to (10, 1, 0) at 90 degrees.
  expectNear(c.transformation(90.0)(Point3D(11, 0, 0)), Point3D(10, 1, 0), 1e-12);
  EXPECT_EQ(c.axisType(), AxisType::ROTARY);
  auto const b = limitedB(-90, 90);
  EXPECT_EQ(b.direction(), Vector3D(0, 1, 0));
  // B about +Y through (0,0,100): the point (0,0,0) at +90 goes to (-100, 0, 100).
  expectNear(b.transformation(90.0)(Point3D(0, 0, 0)), Point3D(-100, 0, 100), 1e-12);
}

TEST(AxisDefinition, LinearRangeFromMinAndMaxOrInfinite) {
  LinearAxisDefinition const bounded(ControlType::DRIVEN, 0.0, 0.0, std::nullopt, std::nullopt, Vector3D(1, 0, 0),
                                     AxisValue(-5), AxisValue(5));
  EXPECT_TRUE(bounded.hasPhysicalLimits());
  EXPECT_EQ(bounded.physicalMin()->value(), -5.0);
  LinearAxisDefinition open(ControlType::DRIVEN, 0.0, 0.0, std::nullopt, std::nullopt, Vector3D(1, 0, 0),
                            AxisValue(5), std::nullopt);
  EXPECT_FALSE(open.hasPhysicalLimits());
  EXPECT_FALSE(open.physicalMin());
  EXPECT_FALSE(open.physicalMax());
  open.setPhysicalRange(Orvo::AxisValueRange(1.0, 2.0));
  EXPECT_EQ(open.physicalMax()->value(), 2.0);
}

TEST(AxisDefinition, ConstructingAZeroStepFailsButSettingOneDoesNot) {
  mtkit_test::AssertRecorder rec;
  auto c = InfiniteRotaryAxisDefinition(ControlType::DRIVEN, 0.0, 0.0, AxisName("C"), AxisValue(0.0), Point3D(),
                                        Vector3D(0, 0, 1));
  auto const f = rec.take();
  ASSERT_EQ(f.size(), 1u);
  EXPECT_EQ(f[0].expression, "(!stepSize || stepSize->value() > 0) && \"Step size must be positive if set.\"");
  EXPECT_EQ(f[0].file, "machine\\machine\\AxisDefinition");
  c.setStepSize(AxisValue(0.0));
  EXPECT_TRUE(rec.take().empty());
  c.setStepSize(AxisValue(-1.0));
  EXPECT_EQ(rec.takeTexts(), std::vector<std::string>{"EXPECTS:!stepSize || stepSize->value() >= 0"});
  EXPECT_EQ(c.stepSize()->value(), -1.0);
}

TEST(AxisDefinition, DirectionAssertsNormalized) {
  mtkit_test::AssertRecorder rec;
  auto c = infiniteC();
  (void)c.direction();
  EXPECT_TRUE(rec.take().empty());
}

TEST(AxisDefinition, CloneIsDeepAndKeepsTheKind) {
  auto b = limitedB(-30, 30);
  b.setOffset(Point3D(1, 2, 3));
  std::unique_ptr<AxisDefinition> const clone = static_cast<AxisDefinition const&>(b).clone();
  auto const* limited = dynamic_cast<LimitedRotaryAxisDefinition const*>(clone.get());
  ASSERT_NE(limited, nullptr);
  EXPECT_EQ(limited->physicalMin()->value(), -30.0);
  EXPECT_EQ(*limited->offset(), Point3D(1, 2, 3));
  std::unique_ptr<LimitedRotaryAxisDefinition> const typed = b.clone();
  EXPECT_EQ(typed->name()->getName(), "B");
  std::unique_ptr<RotaryAxisDefinition> const rotary = static_cast<RotaryAxisDefinition const&>(b).clone();
  EXPECT_NE(dynamic_cast<LimitedRotaryAxisDefinition*>(rotary.get()), nullptr);
}

TEST(AxisDefinition, DefaultsAndSetters) {
  auto c = infiniteC();
  EXPECT_EQ(c.defaultControl(), ControlType::DRIVEN);
  EXPECT_FALSE(c.defaultToolChangePosition());
  c.setDefaultControl(ControlType::MANUAL);
  c.setDefaultHome(12.0);
  c.setDefaultToolChangePosition(AxisValue(45.0));
  c.setName(AxisName("C2"));
  c.setValueAsModelled(3.0);
  c.setAxisOfRotation(Point3D(1, 1, 1), Vector3D(0, 3, 0));
  EXPECT_EQ(c.defaultControl(), ControlType::MANUAL);
  EXPECT_EQ(c.defaultHome().value(), 12.0);
  EXPECT_EQ(c.defaultToolChangePosition()->value(), 45.0);
  EXPECT_EQ(c.name()->getName(), "C2");
  EXPECT_EQ(c.valueAsModelled().value(), 3.0);
  EXPECT_EQ(c.point(), Point3D(1, 1, 1));
  EXPECT_EQ(c.direction(), Vector3D(0, 1, 0));
  c.setDirection(Vector3D(0, 0, -4));
  EXPECT_EQ(c.direction(), Vector3D(0, 0, -1));
}

TEST(AxisDefinition, ControlTypeOrderIsFixed) {
  EXPECT_EQ(static_cast<int>(ControlType::DRIVEN), 0);
  EXPECT_EQ(static_cast<int>(ControlType::SECONDARY), 1);
  EXPECT_EQ(static_cast<int>(ControlType::ANCILLARY), 2);
  EXPECT_EQ(static_cast<int>(ControlType::LINK), 3);
  EXPECT_EQ(static_cast<int>(ControlType::SUBORDINATE), 4);
  EXPECT_EQ(static_cast<int>(ControlType::MANUAL), 5);
  EXPECT_EQ(static_cast<int>(PartType::ROOT), 0);
  EXPECT_EQ(static_cast<int>(PartType::TABLE), 5);
  EXPECT_EQ(static_cast<int>(AxisType::ROTARY), 0);
  EXPECT_EQ(static_cast<int>(AxisType::LINEAR), 1);
}
