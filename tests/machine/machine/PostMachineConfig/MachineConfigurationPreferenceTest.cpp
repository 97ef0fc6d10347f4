// Remapping, range tests, clean-up and the private helpers of the preference
// chooser of MachineConfiguration: everything that needs no orientation
// solving. Expected values are worked out by hand in each test.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "machine/machine/PostMachineConfig/MachineConfiguration.h"
#include "support/AssertRecorder.h"
#include "support/ScriptFailureText.h"

namespace com {
namespace vantora {
namespace post {

// Reaches the private helpers of the preference chooser.
struct MachineConfigurationPreferenceTestAccess {
  static int getPreferenceWeight(MachineConfiguration const& c, Vector const& abc, int controllingAxis) {
    return c.getPreferenceWeight(abc, controllingAxis);
  }
  static double remapToClosest(double current, double value, Axis const& axis, int type) {
    return MachineConfiguration::remapToClosest(current, value, axis, type);
  }
  static double getAxisDelta(double current, double value, int type) {
    return MachineConfiguration::getAxisDelta(current, value, type);
  }
};

}  // namespace post
}  // namespace vantora
}  // namespace com

using com::vantora::Vector;
using com::vantora::post::Axis;
using com::vantora::post::MachineConfiguration;
using com::vantora::post::Range;
using Access = com::vantora::post::MachineConfigurationPreferenceTestAccess;
using mtkit_test::scriptFailure;

namespace {

constexpr double kPi = 3.141592653589793;
constexpr double kTwoPi = 2 * kPi;
constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr char const* kPath = "machine\\machine\\PostMachineConfig\\MachineConfiguration";

Range rotaryRange(double minimum, double maximum) { return Range(minimum, maximum, Range::ROTATIONAL); }

// A table axis about the unit vector of `coordinate`, on that coordinate.
Axis tableAxis(int coordinate) {
  Vector v;
  v.setCoordinate(static_cast<unsigned int>(coordinate), 1);
  return Axis(true, v, Vector(), coordinate);
}
Axis tableAxis(int coordinate, Range const& range) {
  Vector v;
  v.setCoordinate(static_cast<unsigned int>(coordinate), 1);
  return Axis(true, v, Vector(), coordinate, range);
}

// Edge cases.

TEST(MachineConfigurationPreference, RemapToABCOfSevenWithReferenceZeroGivesSevenMinusTwoPi) {
  MachineConfiguration const c(tableAxis(0));
  EXPECT_DOUBLE_EQ(7 - kTwoPi, c.remapToABC(Vector(7, 0, 0), Vector(0, 0, 0)).x);
}

TEST(MachineConfigurationPreference, RemapToClosestWithTypeTwoAndValueMinusPointOneGivesTwoPiMinusPointOneOnACyclicAxis) {
  // Without a range an enabled rotary axis is cyclic.
  Axis const free = tableAxis(2);
  ASSERT_TRUE(free.isCyclic());
  EXPECT_DOUBLE_EQ(kTwoPi - 0.1, Access::remapToClosest(0, -0.1, free, MachineConfiguration::PREFER_POSITIVE));
  // With a full-turn range flagged cyclic.
  Axis turn = tableAxis(2, rotaryRange(0, kTwoPi));
  turn.setCyclic(true);
  EXPECT_DOUBLE_EQ(kTwoPi - 0.1, Access::remapToClosest(0, -0.1, turn, MachineConfiguration::PREFER_POSITIVE));
}

TEST(MachineConfigurationPreference, TypeFourWithCurrentTenAndSolutionAtNinePointNineNineNineNineNineFiveCountsTheMoveAsZero) {
  EXPECT_EQ(0.0, Access::getAxisDelta(10, 9.999995, MachineConfiguration::PREFER_INCREASING));
  // Just outside the dead band of 1e-5 the move is backwards.
  EXPECT_EQ(kInf, Access::getAxisDelta(10, 9.99998, MachineConfiguration::PREFER_INCREASING));
}

TEST(MachineConfigurationPreference, ClampOnAnAxisWithNoRangeDropsTheValueToZero) {
  MachineConfiguration const c(tableAxis(0), tableAxis(2, rotaryRange(-1, 1)));
  Vector const r = c.clamp(Vector(0.5, 0.7, 3));
  EXPECT_EQ(0.0, r.x);  // A has no range
  EXPECT_EQ(0.0, r.y);  // no axis on B
  EXPECT_EQ(1.0, r.z);  // C limited to its maximum
}

TEST(MachineConfigurationPreference, IsABCSupportedIgnoresTheRangeOfACyclicAxis) {
  Axis a = tableAxis(0, rotaryRange(-1, 1));
  MachineConfiguration plain(a);
  EXPECT_FALSE(plain.isABCSupported(Vector(3, 0, 0)));
  a.setCyclic(true);
  MachineConfiguration const cyclic(a);
  EXPECT_TRUE(cyclic.isABCSupported(Vector(3, 0, 0)));
}

// remapToABC.

TEST(MachineConfigurationPreference, RemapToABCTakesEachAxisToTheTurnNearestItsReferenceByCoordinate) {
  // U on C, V on A; nothing on B.
  MachineConfiguration const c(tableAxis(2), tableAxis(0));
  Vector const r = c.remapToABC(Vector(7, 5, -7), Vector(0, 0, 10));
  EXPECT_DOUBLE_EQ(7 - kTwoPi, r.x);
  EXPECT_EQ(0.0, r.y);  // a disabled axis yields 0
  // -7 + 3 turns = 11.85 lies 1.85 from 10; -7 + 2 turns = 5.57 lies 4.43 from it.
  EXPECT_DOUBLE_EQ(-7 + 3 * kTwoPi, r.z);
}

TEST(MachineConfigurationPreference, RemapToABCLeavesAValueHalfATurnFromTheReferenceWhereItIs) {
  MachineConfiguration const c(tableAxis(0));
  EXPECT_EQ(kPi, c.remapToABC(Vector(kPi, 0, 0), Vector()).x);
  EXPECT_EQ(-kPi, c.remapToABC(Vector(-kPi, 0, 0), Vector()).x);
  EXPECT_NEAR(-kPi + 1e-9, c.remapToABC(Vector(kPi + 1e-9, 0, 0), Vector()).x, 1e-15);
}

TEST(MachineConfigurationPreference, RemapToABCValidatesBothArguments) {
  MachineConfiguration const c(tableAxis(0));
  double const nan = std::nan("");
  EXPECT_EQ(L"Invalid vector coordinates.", scriptFailure([&] { c.remapToABC(Vector(nan, 0, 0), Vector()); }));
  EXPECT_EQ(L"Invalid vector coordinates.", scriptFailure([&] { c.remapToABC(Vector(), Vector(0, 2e9, 0)); }));
}

// remapABC.

TEST(MachineConfigurationPreference, RemapABCBringsEachEnabledAxisIntoItsRangeAndKeepsTheOtherComponents) {
  MachineConfiguration const c(tableAxis(0, rotaryRange(-kPi / 2, kPi / 2)), tableAxis(2));
  Vector const r = c.remapABC(Vector(7, 5, 7));
  EXPECT_DOUBLE_EQ(7 - kTwoPi, r.x);  // 0.717 is inside -pi/2..pi/2
  EXPECT_EQ(5.0, r.y);                // no axis on B: as given
  EXPECT_EQ(7.0, r.z);                // no range on C: as given
}

TEST(MachineConfigurationPreference, RemapABCFailsForAValueNoTurnBringsIntoTheRange) {
  MachineConfiguration const c(tableAxis(0, rotaryRange(-1, 1)));
  EXPECT_EQ(L"Rotation is not possible for axis.", scriptFailure([&] { c.remapABC(Vector(2, 0, 0)); }));
  EXPECT_EQ(L"Invalid vector coordinates.", scriptFailure([&] { c.remapABC(Vector(0, 0, -1.5e9)); }));
}

TEST(MachineConfigurationPreference, RemapABCAppliesThePreference) {
  Axis a = tableAxis(0, rotaryRange(-kPi, kTwoPi));
  a.setPreference(1);
  MachineConfiguration const c(a);
  EXPECT_DOUBLE_EQ(kTwoPi - 1, c.remapABC(Vector(-1, 0, 0)).x);
}

// getPreferenceWeight.

TEST(MachineConfigurationPreference, PreferenceWeightCountsAxesThatKeepTheirPreferenceAndRange) {
  Axis a = tableAxis(0, rotaryRange(-kPi, kPi));
  a.setPreference(1);
  Axis c = tableAxis(2);
  c.setPreference(-1);
  MachineConfiguration const m(a, c);
  EXPECT_EQ(1, Access::getPreferenceWeight(m, Vector(0.5, 0, 0), 0));
  EXPECT_EQ(-1, Access::getPreferenceWeight(m, Vector(-0.5, 0, 0), 0));
  // Below -0.0001 counts against the preference, above it not.
  EXPECT_EQ(1, Access::getPreferenceWeight(m, Vector(-0.00009, 0, 0), 0));
  EXPECT_EQ(-1, Access::getPreferenceWeight(m, Vector(-0.00011, 0, 0), 0));
  // Out of range counts against it whatever the sign.
  EXPECT_EQ(-1, Access::getPreferenceWeight(m, Vector(4, 0, 0), 0));
  // Only the controlling axis counts, or all for ABC.
  EXPECT_EQ(1, Access::getPreferenceWeight(m, Vector(-0.5, 0, -1), 2));
  EXPECT_EQ(-2, Access::getPreferenceWeight(m, Vector(-0.5, 0, 1), 3));
  EXPECT_EQ(2, Access::getPreferenceWeight(m, Vector(0.5, 0, -1), 3));
  EXPECT_EQ(0, Access::getPreferenceWeight(m, Vector(0.5, 0, 1), 3));
  // No axis on B.
  EXPECT_EQ(0, Access::getPreferenceWeight(m, Vector(0.5, -3, 1), 1));
}

TEST(MachineConfigurationPreference, PreferenceWeightOfAnAxisWithoutPreferenceRisesInRange) {
  MachineConfiguration const m(tableAxis(1, rotaryRange(-1, 1)));
  EXPECT_EQ(1, Access::getPreferenceWeight(m, Vector(0, -0.9, 0), 1));
  EXPECT_EQ(-1, Access::getPreferenceWeight(m, Vector(0, -1.1, 0), 1));
}

// getAxisDelta.

TEST(MachineConfigurationPreference, AxisDeltaByType) {
  using M = MachineConfiguration;
  EXPECT_EQ(0.0, Access::getAxisDelta(5, 0, M::PREFER_POSITIVE));
  EXPECT_EQ(kInf, Access::getAxisDelta(5, -0.1, M::PREFER_POSITIVE));
  EXPECT_EQ(0.0, Access::getAxisDelta(-5, 0, M::PREFER_NEGATIVE));
  EXPECT_EQ(kInf, Access::getAxisDelta(-5, 0.1, M::PREFER_NEGATIVE));
  EXPECT_EQ(0.0, Access::getAxisDelta(1, 1.5, M::PREFER_INCREASING));
  EXPECT_EQ(kInf, Access::getAxisDelta(1, 0.5, M::PREFER_INCREASING));
  EXPECT_EQ(0.0, Access::getAxisDelta(1, 0.5, M::PREFER_DECREASING));
  EXPECT_EQ(kInf, Access::getAxisDelta(1, 1.5, M::PREFER_DECREASING));
  EXPECT_EQ(0.0, Access::getAxisDelta(1, 1.000005, M::PREFER_DECREASING));
  // Other types: the absolute move, with the same dead band.
  EXPECT_DOUBLE_EQ(2.5, Access::getAxisDelta(1, -1.5, M::PREFER_CLOSEST));
  EXPECT_DOUBLE_EQ(2.5, Access::getAxisDelta(1, 3.5, M::PREFER_PREFERENCE));
  EXPECT_DOUBLE_EQ(2.5, Access::getAxisDelta(1, 3.5, 9));
  EXPECT_EQ(0.0, Access::getAxisDelta(1, 1.000009, M::PREFER_CLOSEST));
  EXPECT_NEAR(2e-5, Access::getAxisDelta(1, 1.00002, M::PREFER_CLOSEST), 1e-15);
}

// remapToClosest.

TEST(MachineConfigurationPreference, RemapToClosestWithoutPreferenceOnTypeZeroIsTheAxisRemap) {
  Axis const a = tableAxis(0, rotaryRange(-kPi, kPi));
  EXPECT_DOUBLE_EQ(4 - kTwoPi, Access::remapToClosest(100, 4, a, MachineConfiguration::PREFER_PREFERENCE));
}

TEST(MachineConfigurationPreference, RemapToClosestOnTypeZeroFollowsThePreferenceFromZero) {
  Axis a = tableAxis(0);
  a.setPreference(1);
  EXPECT_DOUBLE_EQ(kTwoPi - 0.1, Access::remapToClosest(0, -0.1, a, MachineConfiguration::PREFER_PREFERENCE));
  // From a current of 10 the nearest turn of 0.5 is 13.07; positive, so kept.
  EXPECT_DOUBLE_EQ(0.5 + 2 * kTwoPi, Access::remapToClosest(10, 0.5, a, MachineConfiguration::PREFER_PREFERENCE));
  a.setPreference(-1);
  EXPECT_DOUBLE_EQ(-0.1, Access::remapToClosest(0, -0.1, a, MachineConfiguration::PREFER_PREFERENCE));
  // From 10, 13.07 is above 0: turns down to -5.78.
  EXPECT_DOUBLE_EQ(0.5 - kTwoPi, Access::remapToClosest(10, 0.5, a, MachineConfiguration::PREFER_PREFERENCE));
}

TEST(MachineConfigurationPreference, RemapToClosestIncreasingAndDecreasingCountFromCurrent) {
  Axis const a = tableAxis(0);
  // Nearest 10: 0.5 + 2 turns = 13.07 (3.07 away) rather than 6.78 (3.22 away).
  EXPECT_DOUBLE_EQ(0.5 + 2 * kTwoPi, Access::remapToClosest(10, 0.5, a, MachineConfiguration::PREFER_CLOSEST));
  EXPECT_DOUBLE_EQ(0.5 + 2 * kTwoPi, Access::remapToClosest(10, 0.5, a, MachineConfiguration::PREFER_INCREASING));
  EXPECT_DOUBLE_EQ(0.5 + kTwoPi, Access::remapToClosest(10, 0.5, a, MachineConfiguration::PREFER_DECREASING));
  // A negative current: nearest -10 is 0.5 - 2 turns = -12.07.
  EXPECT_DOUBLE_EQ(0.5 - 2 * kTwoPi, Access::remapToClosest(-10, 0.5, a, MachineConfiguration::PREFER_CLOSEST));
  EXPECT_DOUBLE_EQ(0.5 - kTwoPi, Access::remapToClosest(-10, 0.5, a, MachineConfiguration::PREFER_INCREASING));
  EXPECT_NEAR(0.2, Access::remapToClosest(-0.5, 0.2, a, MachineConfiguration::PREFER_CLOSEST), 1e-15);
}

TEST(MachineConfigurationPreference, RemapToClosestDropsThePreferenceOfItsCopyBeforeTheRange) {
  Axis a = tableAxis(0, rotaryRange(-kTwoPi, kTwoPi));
  a.setPreference(-1);
  // 5.78 is in range; with the preference kept it would turn back to -0.5.
  EXPECT_DOUBLE_EQ(kTwoPi - 0.5, Access::remapToClosest(0, -0.5, a, MachineConfiguration::PREFER_INCREASING));
  EXPECT_EQ(-1, a.getPreference());
}

TEST(MachineConfigurationPreference, RemapToClosestEndsOnValuesNoTurnMoves) {
  Axis const a = tableAxis(0);
  EXPECT_TRUE(std::isnan(Access::remapToClosest(0, kInf, a, MachineConfiguration::PREFER_POSITIVE)));
  double const far = Access::remapToClosest(1e300, 0.5, a, MachineConfiguration::PREFER_INCREASING);
  EXPECT_TRUE(std::isfinite(far));
  double const low = Access::remapToClosest(-kInf, 0.5, a, MachineConfiguration::PREFER_POSITIVE);
  EXPECT_FALSE(std::isfinite(low));
}

// Range tests.

TEST(MachineConfigurationPreference, IsABCSupportedChecksEachEnabledRotaryAxisAtItsCoordinate) {
  MachineConfiguration const c(tableAxis(2, rotaryRange(-1, 1)), tableAxis(0, rotaryRange(0, 2)));
  EXPECT_TRUE(c.isABCSupported(Vector(1.5, 99, -0.5)));
  EXPECT_FALSE(c.isABCSupported(Vector(2.5, 0, 0)));
  EXPECT_FALSE(c.isABCSupported(Vector(0, 0, 1.5)));
  // Within 1e-6 of a limit counts as inside.
  EXPECT_TRUE(c.isABCSupported(Vector(2 + 0.9e-6, 0, -1 - 0.9e-6)));
  EXPECT_TRUE(MachineConfiguration().isABCSupported(Vector(100, 100, 100)));
}

TEST(MachineConfigurationPreference, IsXYZSupportedChecksEnabledLinearAxesInTheConfigurationsUnit) {
  MachineConfiguration c;
  c.getAxisX().setRange(Range(0, 100, Range::LINEAR));
  EXPECT_TRUE(c.isXYZSupported(Vector(100, -1e6, 1e6)));
  EXPECT_FALSE(c.isXYZSupported(Vector(150, 0, 0)));
  c.setInchMode(true);
  EXPECT_TRUE(c.isXYZSupported(Vector(3, 0, 0)));   // 76.2 mm
  EXPECT_FALSE(c.isXYZSupported(Vector(4, 0, 0)));  // 101.6 mm
}

TEST(MachineConfigurationPreference, IsSupportedPositionChecksXYZEvenWhenDisabled) {
  MachineConfiguration c;
  Axis disabled;
  disabled.setRange(Range(0, 100, Range::LINEAR));
  c.setAxisX(disabled);
  EXPECT_TRUE(c.isXYZSupported(Vector(150, 0, 0)));
  EXPECT_FALSE(c.isSupportedPosition(Vector(150, 0, 0)));
  EXPECT_TRUE(c.isSupportedPosition(Vector(50, 0, 0)));
  c.getAxisZ().setRange(Range(-10, 0, Range::LINEAR));
  EXPECT_FALSE(c.isSupportedPosition(Vector(50, 0, 1)));
}

// Clean-up.

TEST(MachineConfigurationPreference, ClampLimitsEachRangedAxisAtItsCoordinate) {
  MachineConfiguration const c(tableAxis(2, rotaryRange(0, 2)), tableAxis(1, rotaryRange(-1, 1)));
  Vector const r = c.clamp(Vector(9, -3, -4));
  EXPECT_EQ(0.0, r.x);
  EXPECT_EQ(-1.0, r.y);
  EXPECT_EQ(0.0, r.z);
  Vector const inside = c.clamp(Vector(9, 0.25, 1.5));
  EXPECT_EQ(0.25, inside.y);
  EXPECT_EQ(1.5, inside.z);
}

TEST(MachineConfigurationPreference, ClampToResolutionRoundsHalvesAwayFromZero) {
  Axis a = tableAxis(0);
  a.setResolution(0.5);
  MachineConfiguration const c(a, tableAxis(2));
  Vector const up = c.clampToResolution(Vector(0.75, 4, 0.3));
  EXPECT_EQ(1.0, up.x);
  EXPECT_EQ(0.0, up.y);  // no axis on B
  EXPECT_EQ(0.3, up.z);  // no resolution: as given
  EXPECT_EQ(-1.0, c.clampToResolution(Vector(-0.75, 0, 0)).x);
  EXPECT_EQ(0.5, c.clampToResolution(Vector(0.74, 0, 0)).x);
}

// getRotationAxis.

TEST(MachineConfigurationPreference, RotationAxisIsTheEffectiveAxisOfAnEnabledAxis) {
  MachineConfiguration const c;
  Axis const head(false, Vector(0, 2, 0), Vector(), 1);
  Axis const table(true, Vector(0, 2, 0), Vector(), 1);
  Vector const h = c.getRotationAxis(head);
  EXPECT_EQ(0.0, h.x);
  EXPECT_EQ(-1.0, h.y);
  EXPECT_EQ(0.0, h.z);
  EXPECT_EQ(1.0, c.getRotationAxis(table).y);
  Vector const none = c.getRotationAxis(Axis());
  EXPECT_EQ(0.0, none.getLength());
}

TEST(MachineConfigurationPreference, RotationAxisAssertsARotationalAxis) {
  mtkit_test::AssertRecorder recorder;
  MachineConfiguration const c;
  c.getRotationAxis(c.getAxisX());
  auto const failures = recorder.take();
  ASSERT_EQ(1u, failures.size());
  EXPECT_EQ(std::string("axis.isRotational()"), failures[0].expression);
  EXPECT_EQ(std::string(kPath), failures[0].file);
}

// The script-facing constants.

TEST(MachineConfigurationPreference, TypeControllingAxisAndOptionValues) {
  using M = MachineConfiguration;
  EXPECT_EQ(0, M::PREFER_PREFERENCE);
  EXPECT_EQ(1, M::PREFER_CLOSEST);
  EXPECT_EQ(2, M::PREFER_POSITIVE);
  EXPECT_EQ(3, M::PREFER_NEGATIVE);
  EXPECT_EQ(4, M::PREFER_INCREASING);
  EXPECT_EQ(5, M::PREFER_DECREASING);
  EXPECT_EQ(0, M::CONTROLLING_AXIS_A);
  EXPECT_EQ(1, M::CONTROLLING_AXIS_B);
  EXPECT_EQ(2, M::CONTROLLING_AXIS_C);
  EXPECT_EQ(3, M::CONTROLLING_AXIS_ABC);
  EXPECT_EQ(1, M::PREFERENCE_RESET_AXES);
  EXPECT_EQ(2, M::PREFERENCE_ADJUST_LAST_AXIS);
}

}  // namespace
