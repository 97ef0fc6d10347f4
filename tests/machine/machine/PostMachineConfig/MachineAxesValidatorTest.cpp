#include "machine/machine/PostMachineConfig/MachineAxesValidator.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "machine/machine/PostMachineConfig/MachineConfiguration.h"

using com::vantora::Vector;
using com::vantora::post::Axis;
using com::vantora::post::MachineAxesValidator;
using com::vantora::post::MachineConfiguration;
using com::vantora::post::Range;

namespace {

Axis rotary(Vector const& direction, int coordinate, bool table = true) {
  return Axis(table, direction, Vector(), coordinate);
}

Axis linear(Vector const& direction, int coordinate) {
  Axis axis(false, direction, Vector(), coordinate);
  axis.setActuator(0);
  return axis;
}

int statusOf(MachineConfiguration const& c) { return MachineAxesValidator(c).validate(); }

/// A unit vector in the XY plane at `degrees` from X.
Vector inPlane(double degrees) {
  double const a = degrees * M_PI / 180;
  return Vector(std::cos(a), std::sin(a), 0);
}

TEST(MachineAxesValidator, StatusNumbers) {
  EXPECT_EQ(0, MachineAxesValidator::STATUS_OK);
  EXPECT_EQ(1, MachineAxesValidator::STATUS_INVALID_X_AXIS);
  EXPECT_EQ(2, MachineAxesValidator::STATUS_INVALID_Y_AXIS);
  EXPECT_EQ(3, MachineAxesValidator::STATUS_INVALID_Z_AXIS);
  EXPECT_EQ(4, MachineAxesValidator::STATUS_INVALID_XYZ_AXES);
  EXPECT_EQ(5, MachineAxesValidator::STATUS_INVALID_U_AXIS);
  EXPECT_EQ(6, MachineAxesValidator::STATUS_INVALID_V_AXIS);
  EXPECT_EQ(7, MachineAxesValidator::STATUS_INVALID_W_AXIS);
  EXPECT_EQ(8, MachineAxesValidator::STATUS_INVALID_SPINDLE_AXIS);
  EXPECT_EQ(9, MachineAxesValidator::STATUS_INVALID_AXIS_ACTUATOR);
  EXPECT_EQ(10, MachineAxesValidator::STATUS_V_WITHOUT_U);
  EXPECT_EQ(11, MachineAxesValidator::STATUS_W_WITHOUT_V);
  EXPECT_EQ(12, MachineAxesValidator::STATUS_INVALID_COORDINATE);
  EXPECT_EQ(13, MachineAxesValidator::STATUS_COORDINATE_USED_TWICE);
  EXPECT_EQ(14, MachineAxesValidator::STATUS_INVALID_AXIS);
  EXPECT_EQ(15, MachineAxesValidator::STATUS_INVALID_RANGE);
  EXPECT_EQ(16, MachineAxesValidator::STATUS_AXES_ALIGNED);
  EXPECT_EQ(17, MachineAxesValidator::STATUS_FOURTH_AXIS_ALIGNED_WITH_TOOL_AXIS);
  EXPECT_EQ(18, MachineAxesValidator::STATUS_INVALID_ADDITIVE_DIMENSIONS);
  EXPECT_EQ(19, MachineAxesValidator::STATUS_TOO_FEW_AXES);
  EXPECT_EQ(20, MachineAxesValidator::STATUS_TOO_MANY_AXES);
  EXPECT_EQ(21, MachineAxesValidator::STATUS_INVALID_TURNING_Z_AXIS);
  EXPECT_EQ(22, MachineAxesValidator::STATUS_TURNING_WITHOUT_X_OR_Y);
}

TEST(MachineAxesValidator, StatusDescriptions) {
  auto const text = [](int status) { return MachineConfiguration::getStatusDescription(status); };
  EXPECT_EQ(L"", text(0));
  EXPECT_EQ(L"Invalid X axis.", text(1));
  EXPECT_EQ(L"Invalid Y axis.", text(2));
  EXPECT_EQ(L"Invalid Z axis.", text(3));
  EXPECT_EQ(L"Invalid XYZ axes.", text(4));
  EXPECT_EQ(L"Invalid U axis.", text(5));
  EXPECT_EQ(L"Invalid V axis.", text(6));
  EXPECT_EQ(L"Invalid W axis.", text(7));
  EXPECT_EQ(L"Invalid spindle axis.", text(8));
  EXPECT_EQ(L"Invalid axis actuator.", text(9));
  EXPECT_EQ(L"V axis defined without U axis.", text(10));
  EXPECT_EQ(L"W axis defined without V axis.", text(11));
  EXPECT_EQ(L"Invalid coordinate.", text(12));
  EXPECT_EQ(L"Coordinate used by more than 1 axis.", text(13));
  EXPECT_EQ(L"Invalid axis.", text(14));
  EXPECT_EQ(L"Invalid range for axis.", text(15));
  EXPECT_EQ(L"Axes are aligned.", text(16));
  EXPECT_EQ(L"4th axis is aligned with tool axis.", text(17));
  EXPECT_EQ(L"Too few axes defined.", text(19));
  EXPECT_EQ(L"Too many axes defined.", text(20));
}

TEST(MachineAxesValidator, StatusesWithoutTextAndOthersReadUnknownStatus) {
  for (int status : {18, 21, 22, 23, 100, -1}) {
    EXPECT_EQ(L"Unknown status.", MachineConfiguration::getStatusDescription(status)) << status;
  }
}

TEST(MachineAxesValidator, ConfigurationStatusIsTheValidators) {
  MachineConfiguration c;
  c.setSpindleAxis(Vector());
  EXPECT_EQ(8, statusOf(c));
  EXPECT_EQ(8, c.getValidityStatus());
  EXPECT_FALSE(c.isSupported());
}

// Additive, inspection and turning machines.

TEST(MachineAxesValidator, AdditiveNeedsPositiveWidthDepthAndHeightAndNothingElse) {
  MachineConfiguration c;
  c.removeAllAxes();
  c.setAdditiveFFF(true);
  c.setInspection(true);  // additive is looked at first
  EXPECT_EQ(18, statusOf(c));
  c.setDimensions(Vector(1, 1, 1));
  EXPECT_EQ(0, statusOf(c));
  c.setDepth(-1);
  EXPECT_EQ(18, statusOf(c));
  c.setDepth(1);
  c.setWidth(0);
  EXPECT_EQ(18, statusOf(c));
}

TEST(MachineAxesValidator, TurningZAxisMustBeLinearWithADirection) {
  MachineConfiguration c;
  c.setTurning(true);
  EXPECT_EQ(0, statusOf(c));
  c.setAxisZ(rotary(Vector(0, 0, 1), 2));
  EXPECT_EQ(21, statusOf(c));
  c.setAxisZ(Axis());  // rotational and without a direction
  EXPECT_EQ(21, statusOf(c));
  Axis zeroLinear;
  zeroLinear.setActuator(0);
  c.setAxisZ(zeroLinear);
  EXPECT_EQ(21, statusOf(c));
}

TEST(MachineAxesValidator, TurningZAxisMustRunAlongZOnCoordinateTwo) {
  MachineConfiguration c;
  c.setTurning(true);
  c.setAxisZ(linear(Vector(1, 0, 0), 2));
  EXPECT_EQ(3, statusOf(c));
  c.setAxisZ(linear(Vector(0, 0, 1), 1));
  EXPECT_EQ(3, statusOf(c));
  // Within a squared difference of 1e-14, and beyond it.
  Axis z = linear(Vector(0, 0, 1), 2);
  z.setAxis(Vector(0.9e-7, 0, 1));
  c.setAxisZ(z);
  EXPECT_EQ(0, statusOf(c));
  z.setAxis(Vector(1.1e-7, 0, 1));
  c.setAxisZ(z);
  EXPECT_EQ(3, statusOf(c));
}

TEST(MachineAxesValidator, TurningNeedsAnXOrAYAxisAndStopsThere) {
  MachineConfiguration c;
  c.setTurning(true);
  c.setSpindleAxis(Vector());  // not looked at for turning
  c.setAxisX(Axis());
  EXPECT_EQ(0, statusOf(c));
  c.setAxisY(Axis());
  EXPECT_EQ(22, statusOf(c));
  c.setAxisY(rotary(Vector(0, 1, 0), 1));  // not linear
  EXPECT_EQ(22, statusOf(c));
  c.setAxisX(linear(Vector(1, 0, 0), 0));
  EXPECT_EQ(0, statusOf(c));
}

TEST(MachineAxesValidator, InspectionComesBeforeTurning) {
  MachineConfiguration c;
  c.setTurning(true);
  c.setAxisZ(Axis());
  EXPECT_EQ(21, statusOf(c));
  c.setInspection(true);
  EXPECT_EQ(0, statusOf(c));
}

// Linear axes.

TEST(MachineAxesValidator, ZeroLinearVectorMeansTooFewAxes) {
  for (int i = 0; i < 3; ++i) {
    MachineConfiguration c;
    c.getAxisById(static_cast<MachineConfiguration::AxisId>(i)) = Axis();
    EXPECT_EQ(19, statusOf(c)) << i;
  }
  EXPECT_EQ(L"Too few axes defined.", MachineConfiguration::getStatusDescription(19));
}

TEST(MachineAxesValidator, EachLinearAxisMustBeLinearAlongItsUnitVectorOnItsCoordinate) {
  MachineConfiguration c;
  c.setAxisX(rotary(Vector(1, 0, 0), 0));
  EXPECT_EQ(1, statusOf(c));
  c.setAxisX(linear(Vector(1, 0, 0), 1));
  EXPECT_EQ(1, statusOf(c));
  c.setAxisX(linear(Vector(-1, 0, 0), 0));
  EXPECT_EQ(1, statusOf(c));
  c.setAxisX(linear(Vector(1, 0, 0), 0));
  c.setAxisY(linear(Vector(0, 1, 0), 0));
  EXPECT_EQ(2, statusOf(c));
  c.setAxisY(linear(Vector(0, 1, 0), 1));
  c.setAxisZ(linear(Vector(0, 1, 0), 2));
  EXPECT_EQ(3, statusOf(c));
  c.setAxisZ(linear(Vector(0, 0, 1), 2));
  EXPECT_EQ(0, statusOf(c));
}

TEST(MachineAxesValidator, LinearDirectionToleranceIsASquaredDifferenceOf1em14) {
  MachineConfiguration c;
  Axis x = linear(Vector(1, 0, 0), 0);
  x.setAxis(Vector(1, 0.9e-7, 0));  // squared difference 0.81e-14
  c.setAxisX(x);
  EXPECT_EQ(0, statusOf(c));
  x.setAxis(Vector(1, 1.1e-7, 0));  // 1.21e-14
  c.setAxisX(x);
  EXPECT_EQ(1, statusOf(c));
}

TEST(MachineAxesValidator, ZMustBeTheCrossProductOfXAndYWithin1em14) {
  // Each axis passes alone, within 0.81e-14 of its unit vector; Z differs
  // from cross(X, Y) by about 3.2e-14.
  MachineConfiguration c;
  Axis x = linear(Vector(1, 0, 0), 0);
  x.setAxis(Vector(1, 0, 0.9e-7));
  Axis z = linear(Vector(0, 0, 1), 2);
  z.setAxis(Vector(-0.9e-7, 0, 1));
  c.setAxisX(x);
  c.setAxisZ(z);
  // cross((1, 0, e), (0, 1, 0)) = (-e, 0, 1): that is Z exactly.
  EXPECT_EQ(0, statusOf(c));
  z.setAxis(Vector(0.9e-7, 0, 1));
  c.setAxisZ(z);
  EXPECT_EQ(4, statusOf(c));
  EXPECT_EQ(L"Invalid XYZ axes.", MachineConfiguration::getStatusDescription(4));
}

TEST(MachineAxesValidator, LinearAxesComeBeforeTheSpindle) {
  MachineConfiguration c;
  c.setSpindleAxis(Vector());
  c.setAxisY(rotary(Vector(0, 1, 0), 1));
  EXPECT_EQ(2, statusOf(c));
}

// Rotary axes.

TEST(MachineAxesValidator, AxisCountAskingForARotaryAxisThatIsNotThereGivesItsInvalidStatus) {
  MachineConfiguration c(rotary(Vector(1, 0, 0), 0), rotary(Vector(0, 1, 0), 1), rotary(Vector(0, 0, 1), 2));
  ASSERT_EQ(0, statusOf(c));
  c.setAxisW(Axis());
  EXPECT_EQ(7, statusOf(c));
  c.setAxisV(Axis());
  EXPECT_EQ(6, statusOf(c));
  c.setAxisU(Axis());
  EXPECT_EQ(5, statusOf(c));
}

TEST(MachineAxesValidator, EnabledLinearAxisInARotarySlotIsAnInvalidActuator) {
  MachineConfiguration c;
  c.setAxisU(linear(Vector(1, 0, 0), 0));
  EXPECT_EQ(9, statusOf(c));
}

TEST(MachineAxesValidator, TwoRotaryAxesOnOneCoordinate) {
  MachineConfiguration c(rotary(Vector(0, 0, 1), 2), rotary(Vector(1, 0, 0), 2));
  EXPECT_EQ(13, statusOf(c));
}

TEST(MachineAxesValidator, RotaryAxisVectorShorterThan1em14) {
  MachineConfiguration c(rotary(Vector(1, 0, 0), 0), rotary(Vector(0, 0, 1), 2));
  Axis tiny = rotary(Vector(0, 0, 1), 2);
  tiny.setAxis(Vector(0, 0, 0.9e-14));  // not zero, so the axis stays enabled
  ASSERT_TRUE(tiny.isEnabled());
  c.setAxisV(tiny);
  EXPECT_EQ(6, statusOf(c));
  tiny.setAxis(Vector(0, 0, 1.1e-14));
  c.setAxisV(tiny);
  // Long enough here; too short a cross product with A then.
  EXPECT_EQ(16, statusOf(c));
}

TEST(MachineAxesValidator, RealRangeWithoutSpanIsInvalidAndCatchesAnAggregateAxis) {
  MachineConfiguration c(rotary(Vector(0, 0, 1), 2));
  Axis point(true, Vector(0, 0, 1), Vector(), 2, Range(0.5));
  ASSERT_TRUE(point.isAggregate());
  c.setAxisU(point);
  EXPECT_EQ(15, statusOf(c));
  c.setAxisU(Axis(true, Vector(0, 0, 1), Vector(), 2, Range(-1, 1, Range::ROTATIONAL)));
  EXPECT_EQ(0, statusOf(c));
}

TEST(MachineAxesValidator, VWithoutUAndWWithoutV) {
  MachineConfiguration c;
  c.setAxisV(rotary(Vector(1, 0, 0), 0));
  EXPECT_EQ(10, statusOf(c));
  MachineConfiguration d;
  d.setAxisU(rotary(Vector(1, 0, 0), 0));
  d.setAxisW(rotary(Vector(0, 0, 1), 2));
  EXPECT_EQ(11, statusOf(d));
}

TEST(MachineAxesValidator, AlignmentThresholdIsASineOfAQuarter) {
  // asin(0.25) is 14.4775 degrees.
  MachineConfiguration c(rotary(Vector(1, 0, 0), 0), rotary(inPlane(14.47), 1));
  EXPECT_EQ(16, statusOf(c));
  c.setAxisV(rotary(inPlane(14.48), 1));
  EXPECT_EQ(0, statusOf(c));
  c.setAxisV(rotary(inPlane(180 - 14.47), 1));
  EXPECT_EQ(16, statusOf(c));
}

TEST(MachineAxesValidator, ThirdRotaryAxisAlignedWithEitherOther) {
  MachineConfiguration c(rotary(Vector(1, 0, 0), 0), rotary(Vector(0, 1, 0), 1), rotary(inPlane(10), 2));
  EXPECT_EQ(16, statusOf(c));
  c.setAxisW(rotary(inPlane(80), 2));
  EXPECT_EQ(16, statusOf(c));
  c.setAxisW(rotary(Vector(0, 0, 1), 2));
  EXPECT_EQ(0, statusOf(c));
}

}  // namespace
