// Orientation solving of MachineConfiguration: the two rotary solutions of a
// tool direction on 3, 4, 5 and 6 axes, their order, the W sweep, and the
// small queries around them. Expected values are worked out by hand in each
// test.

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "machine/machine/PostMachineConfig/MachineConfiguration.h"
#include "support/AssertRecorder.h"
#include "support/ScriptFailureText.h"

using com::vantora::Matrix;
using com::vantora::Vector;
using com::vantora::VectorPair;
using com::vantora::post::Axis;
using com::vantora::post::MachineConfiguration;
using com::vantora::post::Range;
using mtkit_test::scriptFailure;

namespace {

constexpr double kPi = 3.141592653589793;
constexpr double kDeg = kPi / 180;
constexpr double kTight = 1e-12;

Vector const kX(1, 0, 0);
Vector const kY(0, 1, 0);
Vector const kZ(0, 0, 1);
Vector const kOrigin;

Range rotaryRange(double minimumDeg, double maximumDeg) {
  return Range(minimumDeg * kDeg, maximumDeg * kDeg, Range::ROTATIONAL);
}

void expectNear(Vector const& expected, Vector const& actual, double tolerance = kTight) {
  EXPECT_NEAR(expected.x, actual.x, tolerance);
  EXPECT_NEAR(expected.y, actual.y, tolerance);
  EXPECT_NEAR(expected.z, actual.z, tolerance);
}

void expectZero(Vector const& v) {
  EXPECT_EQ(0.0, v.x);
  EXPECT_EQ(0.0, v.y);
  EXPECT_EQ(0.0, v.z);
}

/// The unit direction `angle` away from +Z towards +X.
Vector tiltedFromZ(double angle) { return Vector(std::sin(angle), 0, std::cos(angle)); }

/// A table A about X and a table C about Z: the effective axes are X and Z.
MachineConfiguration tableAC(Range const& aRange = Range()) {
  return MachineConfiguration(Axis(true, kX, kOrigin, 0, aRange), Axis(true, kZ, kOrigin, 2));
}

/// A head B about Y (effective -Y) carrying the spindle, on a head C about
/// Z (effective -Z).
MachineConfiguration headBC() {
  return MachineConfiguration(Axis(false, kY, kOrigin, 1), Axis(false, kZ, kOrigin, 2));
}

/// Head A, B, C about X, Y, Z; the spindle along Z, so W is parallel to it.
MachineConfiguration sixAxes(Axis const& w) {
  return MachineConfiguration(Axis(false, kX, kOrigin, 0), Axis(false, kY, kOrigin, 1), w);
}

std::wstring const kNotSupported = L"Direction is not supported for machine configuration.";

// Edge cases.

TEST(MachineConfigurationOrientation, ThreeAxisMachineDirectionEqualToSpindleAxisGivesZeroPairAndAnyOtherFails) {
  MachineConfiguration const c;
  VectorPair const pair = c.getABCByDirectionBoth(Vector(0, 0, 5));
  expectZero(pair.first);
  expectZero(pair.second);
  EXPECT_EQ(kNotSupported, scriptFailure([&] { c.getABCByDirectionBoth(kX); }));
  EXPECT_EQ(kNotSupported, scriptFailure([&] { c.getABCByDirectionBoth(tiltedFromZ(1 * kDeg)); }));
}

TEST(MachineConfigurationOrientation, AcceptanceCosineIsPointNineNineNineNineNineNineNine) {
  // On three axes only the final check decides: acos(0.9999999) is
  // 4.4721e-4 rad.
  MachineConfiguration const c;
  EXPECT_EQ(L"", scriptFailure([&] { c.getABCByDirectionBoth(tiltedFromZ(4.47e-4)); }));
  EXPECT_EQ(kNotSupported, scriptFailure([&] { c.getABCByDirectionBoth(tiltedFromZ(4.48e-4)); }));
}

TEST(MachineConfigurationOrientation, TwoAxisHeadDirectionWithinNearSameCosineGivesZeroAndPointZeroOneDegreeOffSolves) {
  MachineConfiguration const c = headBC();
  VectorPair const same = c.getABCByDirectionBoth(kZ);
  expectZero(same.first);
  expectZero(same.second);
  // The near-same cosine is that of 0.005 degrees.
  VectorPair const inside = c.getABCByDirectionBoth(tiltedFromZ(0.0049 * kDeg));
  expectZero(inside.first);
  expectZero(inside.second);
  VectorPair const outside = c.getABCByDirectionBoth(tiltedFromZ(0.0051 * kDeg));
  EXPECT_NE(0.0, outside.first.y);
  // 0.01 degrees towards +X: B turns the spindle (effective axis -Y) by
  // -0.01 or +0.01 degrees; the C value then closes the gap.
  VectorPair const off = c.getABCByDirectionBoth(tiltedFromZ(0.01 * kDeg));
  EXPECT_NEAR(0.01 * kDeg, std::fabs(off.first.y), 1e-12);
  EXPECT_NEAR(0.01 * kDeg, std::fabs(off.second.y), 1e-12);
  EXPECT_NE(off.first.y, off.second.y);
  expectNear(tiltedFromZ(0.01 * kDeg), c.getDirection(off.first));
  expectNear(tiltedFromZ(0.01 * kDeg), c.getDirection(off.second));
}

TEST(MachineConfigurationOrientation, FirstAndSecondSolutionsDifferOnFiveAxesFirstWithSmallerAbsoluteU) {
  // A table range of -360..0 degrees: u1 = q - phi = q becomes q - 2 pi,
  // u2 = -q stays, and |u2| < |u1| puts u2 first. t = (1, 1, 1)/sqrt 3,
  // q = acos(1/sqrt 3). With A at -q the spindle goes to (0, sin q, cos q),
  // at 90 degrees in XY, and C closes to 45 degrees: -45 degrees. With A at
  // q - 2 pi it goes to (0, -sin q, cos q), at -90 degrees: C is 135.
  MachineConfiguration const c = tableAC(rotaryRange(-360, 0));
  Vector const t(1, 1, 1);
  double const q = std::acos(1 / std::sqrt(3.0));
  Vector const first = c.getABCByDirection(t);
  Vector const second = c.getABCByDirection2(t);
  expectNear(Vector(-q, 0, -kPi / 4), first);
  expectNear(Vector(q - 2 * kPi, 0, 3 * kPi / 4), second);
  EXPECT_LT(std::fabs(first.x), std::fabs(second.x));
}

TEST(MachineConfigurationOrientation, EqualAbsoluteValuesOnUKeepQMinusPhiFirst) {
  // Without a range on A, q - phi = q and -phi - q = -q tie in size.
  MachineConfiguration const c = tableAC();
  double const q = std::acos(1 / std::sqrt(3.0));
  VectorPair const pair = c.getABCByDirectionBoth(Vector(1, 1, 1));
  expectNear(Vector(q, 0, 3 * kPi / 4), pair.first);
  expectNear(Vector(-q, 0, -kPi / 4), pair.second);
}

TEST(MachineConfigurationOrientation, RZeroFailsWhenSpindleIsAlongTheFirstAxisAndTheSecondIsParallelToIt) {
  MachineConfiguration const c(Axis(true, kZ, kOrigin, 0), Axis(true, kZ, kOrigin, 2));
  EXPECT_EQ(kNotSupported, scriptFailure([&] { c.getABCByDirectionBoth(kX); }));
}

TEST(MachineConfigurationOrientation, FourAxisMachineDirectionNotPerpendicularToTheAxisFailsTheFinalCheck) {
  MachineConfiguration const c(Axis(true, kX, kOrigin, 0));
  EXPECT_EQ(kNotSupported, scriptFailure([&] { c.getABCByDirectionBoth(Vector(1, 0, 1)); }));
  // In the plane perpendicular to X it solves: the table A turns Z about +X
  // by 90 degrees onto -Y, the other sign would give +Y.
  VectorPair const pair = c.getABCByDirectionBoth(Vector(0, -1, 0));
  expectNear(Vector(kPi / 2, 0, 0), pair.first);
  expectNear(Vector(kPi / 2, 0, 0), pair.second);
  expectNear(Vector(-kPi / 2, 0, 0), c.getABCByDirection(Vector(0, 1, 0)));
}

TEST(MachineConfigurationOrientation, FourAxisAngleIsReducedIntoTheRangeBeforeItsSignIsChosen) {
  // acos gives 90 degrees; the range 180..540 takes it to 450, which points
  // the same way.
  MachineConfiguration const c(Axis(true, kX, kOrigin, 0, rotaryRange(180, 540)));
  expectNear(Vector(450 * kDeg, 0, 0), c.getABCByDirection(Vector(0, -1, 0)));
}

TEST(MachineConfigurationOrientation, WAxisOfOneDegreeResolutionOverAFullTurnIsSweptAndOfPointOneDegreeFails) {
  Axis w(false, kZ, kOrigin, 2, rotaryRange(0, 360));
  w.setResolution(1 * kDeg);
  MachineConfiguration const swept = sixAxes(w);
  Vector const t = Vector(1, 2, 3).getNormalized();
  VectorPair const pair = swept.getABCByDirectionBoth(t);
  expectNear(t, swept.getDirection(pair.first));
  expectNear(t, swept.getDirection(pair.second));

  w.setResolution(0.1 * kDeg);  // 3600 steps
  MachineConfiguration const fine = sixAxes(w);
  EXPECT_EQ(L"Unsupported machine configuration - resolution to fine for W axis.",
            scriptFailure([&] { fine.getABCByDirectionBoth(t); }));
}

TEST(MachineConfigurationOrientation, WSweepAllowsAtMostOneThousandAndTwoSteps) {
  Axis w(false, kZ, kOrigin, 2, Range(0, 501, Range::ROTATIONAL));
  w.setResolution(0.5);  // 501 / 0.5 = 1002 exactly
  EXPECT_EQ(L"", scriptFailure([&] { sixAxes(w).getABCByDirectionBoth(kX); }));
  w.setRange(Range(0, 501.5, Range::ROTATIONAL));  // 1003
  EXPECT_EQ(L"Unsupported machine configuration - resolution to fine for W axis.",
            scriptFailure([&] { sixAxes(w).getABCByDirectionBoth(kX); }));
}

TEST(MachineConfigurationOrientation, WAxisWithPreferencePlusOneOverMinus90To90TriesZeroThenPositiveStepsThenNegative) {
  // Steps of 30 degrees over -90..90: -3..3.
  EXPECT_EQ((std::vector<long>{0, 1, 2, 3, -1, -2, -3}),
            MachineConfiguration::getWSweepSteps(-90 * kDeg, 90 * kDeg, 30 * kDeg, 1));
  // The other preference mirrors it; without one the sides alternate, the
  // positive first.
  EXPECT_EQ((std::vector<long>{0, -1, -2, -3, 1, 2, 3}), MachineConfiguration::getWSweepSteps(-0.75, 0.75, 0.25, -1));
  EXPECT_EQ((std::vector<long>{0, 1, -1, 2, -2, 3, -3}), MachineConfiguration::getWSweepSteps(-0.75, 0.75, 0.25, 0));
  // Uneven sides: the longer side goes on alone once the shorter ends.
  EXPECT_EQ((std::vector<long>{0, 1, 2, 3, -1}), MachineConfiguration::getWSweepSteps(-0.25, 0.75, 0.25, 1));
  EXPECT_EQ((std::vector<long>{0, 1, -1, 2, 3}), MachineConfiguration::getWSweepSteps(-0.25, 0.75, 0.25, 0));
}

TEST(MachineConfigurationOrientation, WSweepOfARangeWithoutZeroStartsAtTheEndNearerZero) {
  EXPECT_EQ((std::vector<long>{2, 3, 4}), MachineConfiguration::getWSweepSteps(0.5, 1.0, 0.25, 0));
  EXPECT_EQ((std::vector<long>{-2, -3, -4}), MachineConfiguration::getWSweepSteps(-1.0, -0.5, 0.25, 0));
  // Steps only inside the range: ceil of the minimum, floor of the maximum.
  EXPECT_EQ((std::vector<long>{2, 3}), MachineConfiguration::getWSweepSteps(0.3, 0.9, 0.25, 1));
}

TEST(MachineConfigurationOrientation, WSweepTriesZeroFirst) {
  // The direction is the spindle axis: every step yields (0, 0, w) and, with
  // W parallel to the spindle and |w| up to 60 degrees, a cosine of exactly
  // 1. Ties keep the first candidate, 0, whatever the preference.
  for (int preference : {-1, 0, 1}) {
    Axis w(false, kZ, kOrigin, 2, rotaryRange(-60, 60));
    w.setResolution(10 * kDeg);
    w.setPreference(preference);
    VectorPair const pair = sixAxes(w).getABCByDirectionBoth(kZ);
    EXPECT_EQ(0.0, pair.first.z) << preference;
    EXPECT_EQ(0.0, pair.second.z) << preference;
  }
}

TEST(MachineConfigurationOrientation, WSweepOnARangeWhollyAgainstThePreferenceReportsTheCandidateIndex) {
  // All candidates are negative and the preference positive: they go from
  // place 1 on, so the last one has no place.
  Axis w(false, kZ, kOrigin, 2, rotaryRange(-40, -10));
  w.setResolution(10 * kDeg);
  w.setPreference(1);
  MachineConfiguration const c = sixAxes(w);
  mtkit_test::AssertRecorder asserts;
  VectorPair const pair = c.getABCByDirectionBoth(kZ);
  EXPECT_EQ((std::vector<std::string>{"nonPrefIndex < windices.size()"}), asserts.takeTexts());
  // The candidates that have a place are tried from hi = -1 outward: -10
  // degrees first.
  EXPECT_NEAR(-10 * kDeg, pair.first.z, 1e-15);
  EXPECT_EQ((std::vector<long>{-1, -2, -3}), MachineConfiguration::getWSweepSteps(-1.0, -0.25, 0.25, 1));
  EXPECT_EQ((std::vector<std::string>{"nonPrefIndex < windices.size()"}), asserts.takeTexts());
}

TEST(MachineConfigurationOrientation, GetOtherABCByDirectionOnAFourAxisMachineReturnsItsArgument) {
  MachineConfiguration const c(Axis(true, kX, kOrigin, 0));
  Vector const abc(0.3, 0.4, 0.5);
  expectNear(abc, c.getOtherABCByDirection(abc), 0);
}

TEST(MachineConfigurationOrientation, GetOtherABCByDirectionOnFiveAxesReturnsTheOtherSolution) {
  MachineConfiguration const c = tableAC();
  double const q = std::acos(1 / std::sqrt(3.0));
  expectNear(Vector(-q, 0, -kPi / 4), c.getOtherABCByDirection(Vector(q, 0, 3 * kPi / 4)));
  expectNear(Vector(q, 0, 3 * kPi / 4), c.getOtherABCByDirection(Vector(-q, 0, -kPi / 4)));
  EXPECT_EQ(L"Invalid vector coordinates.", scriptFailure([&] { c.getOtherABCByDirection(Vector(2e9, 0, 0)); }));
}

// Texts and constants.

TEST(MachineConfigurationOrientation, InvalidDirectionFailsWithTheVectorText) {
  EXPECT_EQ(L"Invalid vector coordinates.",
            scriptFailure([&] { tableAC().getABCByDirectionBoth(Vector(0, 0, 1.5e9)); }));
}

TEST(MachineConfigurationOrientation, SlotsThatDoNotFitTheAxisCountFail) {
  MachineConfiguration fourWithV(Axis(true, kX, kOrigin, 0));
  fourWithV.setAxisV(Axis(true, kZ, kOrigin, 2));
  EXPECT_EQ(L"Invalid machine configuration.", scriptFailure([&] { fourWithV.getABCByDirectionBoth(kX); }));

  MachineConfiguration fourLinear(Axis(true, kX, kOrigin, 0));
  fourLinear.getAxisU().setActuator(Axis::LINEAR);
  EXPECT_EQ(L"Unsupported machine configuration.", scriptFailure([&] { fourLinear.getABCByDirectionBoth(kX); }));

  MachineConfiguration fiveWithoutV = tableAC();
  fiveWithoutV.setAxisV(Axis());
  EXPECT_EQ(L"Invalid machine configuration.", scriptFailure([&] { fiveWithoutV.getABCByDirectionBoth(kX); }));

  MachineConfiguration fiveLinear = tableAC();
  fiveLinear.getAxisV().setActuator(Axis::LINEAR);
  EXPECT_EQ(L"Unsupported machine configuration.", scriptFailure([&] { fiveLinear.getABCByDirectionBoth(kX); }));

  Axis const w(false, kZ, kOrigin, 2, rotaryRange(-180, 180));
  MachineConfiguration sixWithoutW = sixAxes(w);
  sixWithoutW.setAxisW(Axis());
  EXPECT_EQ(L"Invalid machine configuration.", scriptFailure([&] { sixWithoutW.getABCByDirectionBoth(kX); }));
  char const* const slots = "UVW";
  for (int i = 0; i < 3; ++i) {
    MachineConfiguration six = sixAxes(w);
    Axis& axis = i == 0 ? six.getAxisU() : i == 1 ? six.getAxisV() : six.getAxisW();
    axis.setActuator(Axis::LINEAR);
    EXPECT_EQ(std::wstring(L"Unsupported machine configuration - ") + static_cast<wchar_t>(slots[i]) +
                  L" axis must be rotational.",
              scriptFailure([&] { six.getABCByDirectionBoth(kX); }));
  }
}

TEST(MachineConfigurationOrientation, ThreeAxisCountWithAnEnabledRotarySlotReportsTheAssertion) {
  MachineConfiguration c;
  c.setAxisU(Axis(true, kX, kOrigin, 0));  // the count stays 3
  mtkit_test::AssertRecorder asserts;
  VectorPair const pair = c.getABCByDirectionBoth(kZ);
  EXPECT_EQ((std::vector<std::string>{"!hasRotational()"}), asserts.takeTexts());
  expectZero(pair.first);
}

TEST(MachineConfigurationOrientation, WithoutExceptionsAFailureGivesAPairOfZeroVectors) {
  MachineConfiguration const c;
  VectorPair const pair = c.getABCByDirectionBothWithoutExceptions(kX);
  expectZero(pair.first);
  expectZero(pair.second);
  VectorPair const invalid = c.getABCByDirectionBothWithoutExceptions(Vector(NAN, 0, 0));
  expectZero(invalid.first);
  double const q = std::acos(1 / std::sqrt(3.0));
  expectNear(Vector(q, 0, 3 * kPi / 4), tableAC().getABCByDirectionBothWithoutExceptions(Vector(1, 1, 1)).first);
}

TEST(MachineConfigurationOrientation, SixAxesWithoutRangeOrResolutionOnWFailsWithTheRangeText) {
  MachineConfiguration const c = sixAxes(Axis(false, kZ, kOrigin, 2));
  EXPECT_EQ(L"Range has not been initialized.", scriptFailure([&] { c.getABCByDirectionBoth(kX); }));
}

TEST(MachineConfigurationOrientation, SixAxesHoldWAtTheRangeEndNearerZeroOrAtTheMinimum) {
  Vector const t = Vector(1, 2, 3).getNormalized();
  // |max| < |min|: the maximum.
  VectorPair const nearer = sixAxes(Axis(false, kZ, kOrigin, 2, rotaryRange(-50, 30))).getABCByDirectionBoth(t);
  EXPECT_NEAR(30 * kDeg, nearer.first.z, 1e-15);
  EXPECT_NEAR(30 * kDeg, nearer.second.z, 1e-15);
  // Equal sizes: the minimum.
  EXPECT_NEAR(-30 * kDeg, sixAxes(Axis(false, kZ, kOrigin, 2, rotaryRange(-30, 30))).getABCByDirection(t).z, 1e-15);
  // An aggregate axis: its one value.
  EXPECT_NEAR(20 * kDeg, sixAxes(Axis(false, kZ, kOrigin, 2, rotaryRange(20, 20))).getABCByDirection(t).z, 1e-15);
}

TEST(MachineConfigurationOrientation, NearSameCosineIsTheCosineOfFiveThousandthsOfADegree) {
  EXPECT_DOUBLE_EQ(0.9999999961922823, std::cos(8.726646259971648e-05));
  EXPECT_NEAR(0.005 * kDeg, 8.726646259971648e-05, 1e-20);
}

TEST(MachineConfigurationOrientation, AngleAboutIsTheNegatedAngleFromFromToTo) {
  // From X to Y about Z is a quarter turn; the routine gives its negation.
  EXPECT_NEAR(-kPi / 2, MachineConfiguration::angleAbout(kZ, kX, kY), kTight);
  EXPECT_NEAR(kPi / 2, MachineConfiguration::angleAbout(kZ, kY, kX), kTight);
  // Components along the axis do not count.
  EXPECT_NEAR(-kPi / 2, MachineConfiguration::angleAbout(kZ, Vector(1, 0, 5), Vector(0, 3, -2)), kTight);
  // rotateAbout is the active rotation: X about Z by 90 degrees is Y.
  expectNear(kY, MachineConfiguration::rotateAbout(kZ, kPi / 2, kX));
}

TEST(MachineConfigurationOrientation, GetABCTakesTheForwardColumn) {
  MachineConfiguration const c = tableAC();
  Matrix const m(Vector(0, 1, 0), Vector(-1, 0, 0), Vector(0, -1, 0));
  // A table A of 90 degrees turns Z about +X onto -Y.
  expectNear(Vector(kPi / 2, 0, 0), c.getABC(m));
}

TEST(MachineConfigurationOrientation, GetDirectionTurnsTheSpindleByUThenVThenW) {
  MachineConfiguration const c = headBC();
  // Head B of 90 degrees about -Y takes Z to -X; head C of 90 degrees about
  // -Z then takes -X to +Y.
  expectNear(Vector(-1, 0, 0), c.getDirection(Vector(0, kPi / 2, 0)));
  expectNear(Vector(0, 1, 0), c.getDirection(Vector(0, kPi / 2, kPi / 2)));
  expectNear(Vector(0, 1, 0), c.getDirectionUVW(Vector(kPi / 2, kPi / 2, 0)));
}

TEST(MachineConfigurationOrientation, SpindleAxisABCTurnsByHeadAxesOnly) {
  // Head B about Y and table C about Z; a spindle given as (0, 0, 2).
  MachineConfiguration c(Axis(false, kY, kOrigin, 1), Axis(true, kZ, kOrigin, 2));
  c.setSpindleAxis(Vector(0, 0, 2));
  expectNear(Vector(-1, 0, 0), c.getSpindleAxisABC(Vector(0, kPi / 2, kPi / 2)));
  MachineConfiguration const table = tableAC();
  MachineConfiguration tableWithLongSpindle = table;
  tableWithLongSpindle.setSpindleAxis(Vector(0, 3, 0));
  expectNear(Vector(0, 1, 0), tableWithLongSpindle.getSpindleAxisABC(Vector(1, 1, 1)), 0);
}

TEST(MachineConfigurationOrientation, HeadAndTableABCKeepTheirOwnAxesValues) {
  MachineConfiguration const c(Axis(false, kY, kOrigin, 1), Axis(true, kZ, kOrigin, 2));
  expectNear(Vector(0, 2, 0), c.getHeadABC(Vector(1, 2, 3)), 0);
  expectNear(Vector(0, 0, 3), c.getTableABC(Vector(1, 2, 3)), 0);
}

}  // namespace
