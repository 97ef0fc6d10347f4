// The choosers of MachineConfiguration that solve the orientation first:
// getClosestABC, getPreferredABC, getABCByPreference, preserveRotaryAtZero
// and isDirectionSupported.
//
// Most tests use a table-table machine with A (about +X) in the slot U and
// C (about +Z) in the slot V, spindle along +Z. Turning the tool by A = a,
// then C = c points it along
//   t(a, c) = (sin a sin c, -sin a cos c, cos a),
// and the same direction is reached by (-a, c + pi). For 0 < a < pi the
// first solution is (a, c) and the second (-a, c - pi) for 0 < c < pi.

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "machine/machine/PostMachineConfig/MachineConfiguration.h"
#include "support/AssertRecorder.h"
#include "support/ScriptFailureText.h"

using com::vantora::Matrix;
using com::vantora::Vector;
using com::vantora::post::Axis;
using com::vantora::post::MachineConfiguration;
using com::vantora::post::Range;
using mtkit_test::scriptFailure;

namespace {

constexpr double kPi = 3.141592653589793;
constexpr double kTwoPi = 2 * kPi;
constexpr double kTol = 1e-9;
constexpr char const* kPath = "machine\\machine\\PostMachineConfig\\MachineConfiguration";
using M = MachineConfiguration;

Range rotaryRange(double minimum, double maximum) { return Range(minimum, maximum, Range::ROTATIONAL); }

Axis axisA() { return Axis(true, Vector(1, 0, 0), Vector(), 0); }
Axis axisA(Range const& range) { return Axis(true, Vector(1, 0, 0), Vector(), 0, range); }
Axis axisC() { return Axis(true, Vector(0, 0, 1), Vector(), 2); }

MachineConfiguration tableAC() { return MachineConfiguration(axisA(), axisC()); }

Vector directionAC(double a, double c) {
  return Vector(std::sin(a) * std::sin(c), -std::sin(a) * std::cos(c), std::cos(a));
}

// The orientation that A = a, C = c give: first about X, then about Z.
Matrix orientationAC(double a, double c) {
  return Matrix(Vector(0, 0, 1), c).multiplyMatrix(Matrix(Vector(1, 0, 0), a));
}

void expectNear(Vector const& expected, Vector const& actual, double tolerance = kTol) {
  EXPECT_NEAR(expected.x, actual.x, tolerance);
  EXPECT_NEAR(expected.y, actual.y, tolerance);
  EXPECT_NEAR(expected.z, actual.z, tolerance);
}

// Edge cases.

TEST(MachineConfigurationPreferenceSolving, GetABCByPreferenceWithAnUnsupportedFirstSolutionReturnsTheSecondWhateverTheType) {
  // A limited to -1..0.3: the first solution has A = 0.5 and no turn fits it.
  MachineConfiguration const m(axisA(rotaryRange(-1, 0.3)), axisC());
  double const a = 0.5, c = 0.3;
  for (int type = 0; type <= 5; ++type) {
    for (int controlling : {0, 2}) {
      SCOPED_TRACE(testing::Message() << "type " << type << ", controlling axis " << controlling);
      Vector const r = m.getABCByPreference(orientationAC(a, c), Vector(), controlling, type, 0);
      EXPECT_NEAR(-a, r.x, kTol);
      EXPECT_EQ(0.0, r.y);
      // C may be any turn of the second solution's c - pi, as the type asks.
      double const turns = (r.z - (c - kPi)) / kTwoPi;
      EXPECT_NEAR(std::round(turns), turns, kTol);
    }
  }
}

TEST(MachineConfigurationPreferenceSolving, PreferClosestWithBothSolutionsEquallyFarWithinAThousandthComparesWholeTriplesAndThenReturnsTheFirst) {
  MachineConfiguration const m = tableAC();
  double const a = 0.5, c = 0.3;
  // On A, 0.4996 against 0.5004 from 0.0004: within 0.001. The whole
  // triples then decide: from C = 0 the first is nearer...
  Vector const first = m.getABCByPreference(orientationAC(a, c), Vector(0.0004, 0, 0), 0, M::PREFER_CLOSEST, 0);
  expectNear(Vector(a, 0, c), first);
  // ...and from C = c - pi + 0.1 the second, although it moves A farther.
  Vector const second =
      m.getABCByPreference(orientationAC(a, c), Vector(0.0004, 0, c - kPi + 0.1), 0, M::PREFER_CLOSEST, 0);
  expectNear(Vector(-a, 0, c - kPi), second);
  // Beyond 0.001 A alone decides: 0.4988 against 0.5012.
  Vector const byA =
      m.getABCByPreference(orientationAC(a, c), Vector(-0.0012, 0, c - kPi + 0.1), 0, M::PREFER_CLOSEST, 0);
  expectNear(Vector(-a, 0, c - kPi), byA);
  Vector const byA2 =
      m.getABCByPreference(orientationAC(a, c), Vector(0.0012, 0, c - kPi + 0.1), 0, M::PREFER_CLOSEST, 0);
  expectNear(Vector(a, 0, c), byA2);
  // With C = pi/2 both triples lie sqrt(a^2 + (pi/2)^2) from zero: the first.
  Vector const tie = m.getABCByPreference(orientationAC(a, kPi / 2), Vector(), 0, M::PREFER_CLOSEST, 0);
  expectNear(Vector(a, 0, kPi / 2), tie);
}

TEST(MachineConfigurationPreferenceSolving, TypeFourWithACurrentOfTenAndASolutionAtNinePointNineNineNineNineNineFiveCountsTheMoveAsZero) {
  MachineConfiguration const m = tableAC();
  double const a = 0.5, c = 9.999995;
  Vector const r = m.getABCByPreference(orientationAC(a, c), Vector(a, 0, 10), 2, M::PREFER_INCREASING, 0);
  // Not turned on to 9.999995 + 2 pi, as a backward move would be.
  expectNear(Vector(a, 0, c), r, 1e-8);
}

TEST(MachineConfigurationPreferenceSolving, ControllingAxisThreeWithTypeTwoFailsWithTheTextForABCAndFourFailsFirstAsNotEnabled) {
  MachineConfiguration const m = tableAC();
  Matrix const o = orientationAC(0.5, 0.3);
  EXPECT_EQ(L"Specifying ABC as the controlling axis only supports PREFER_PREFERENCE or PREFER_CLOSEST.",
            scriptFailure([&] { m.getABCByPreference(o, Vector(), 3, M::PREFER_POSITIVE, 0); }));
  for (int type : {2, 3, 4, 5})
    EXPECT_EQ(L"Specifying ABC as the controlling axis only supports PREFER_PREFERENCE or PREFER_CLOSEST.",
              scriptFailure([&] { m.getABCByPreference(o, Vector(), 3, type, 0); }));
  for (int type = -1; type <= 6; ++type)
    EXPECT_EQ(L"The controlling axis is not enabled.",
              scriptFailure([&] { m.getABCByPreference(o, Vector(), 4, type, 0); }));
  // No axis on B, nor below A.
  EXPECT_EQ(L"The controlling axis is not enabled.",
            scriptFailure([&] { m.getABCByPreference(o, Vector(), 1, M::PREFER_CLOSEST, 0); }));
  EXPECT_EQ(L"The controlling axis is not enabled.",
            scriptFailure([&] { m.getABCByPreference(o, Vector(), -1, M::PREFER_CLOSEST, 0); }));
  // Before any solving: a direction the machine cannot reach is not looked at.
  MachineConfiguration const plain;
  EXPECT_EQ(L"The controlling axis is not enabled.",
            scriptFailure([&] { plain.getABCByPreference(o, Vector(), 0, M::PREFER_CLOSEST, 0); }));
}

TEST(MachineConfigurationPreferenceSolving, GetPreferredABCOnAMachineWithAxesFortyFiveDegreesApartReturnsItsInput) {
  Axis u = axisA();
  u.setPreference(1);
  Axis const v(true, Vector(1, 0, 1), Vector(), 2);
  MachineConfiguration const m(u, v);
  Vector const abc(-0.5, 0, 0.3);
  Vector const r = m.getPreferredABC(abc);
  EXPECT_EQ(abc.x, r.x);
  EXPECT_EQ(abc.y, r.y);
  EXPECT_EQ(abc.z, r.z);
}

TEST(MachineConfigurationPreferenceSolving, PreserveRotaryAtZeroLeavesAbcAloneWhenTheToolIsNotAlongTheVAxisAndWhenKeepingTheOldValueWouldMoveTheTool) {
  MachineConfiguration const m = tableAC();
  // Not along V (C, about Z): the tool is tilted by 0.5.
  Vector const abc(0.5, 0, 0.3);
  Vector const notAlong = m.preserveRotaryAtZero(directionAC(0.5, 0.3), Vector(0, 0, 2), abc);
  expectNear(abc, notAlong, 0);
  // Along V, but the old C with this A would point the tool elsewhere.
  Vector const moved = m.preserveRotaryAtZero(Vector(0, 0, 1), Vector(0, 0, 2), abc);
  expectNear(abc, moved, 0);
  // Along V with A at 0: C keeps its old value, the tool stays.
  Vector const kept = m.preserveRotaryAtZero(Vector(0, 0, 1), Vector(9, 9, 2), Vector(0, 0, 0.3));
  expectNear(Vector(0, 0, 2), kept, 0);
}

// getClosestABC.

TEST(MachineConfigurationPreferenceSolving, ClosestABCTakesTheSolutionWithTheSmallerRotaryTravel) {
  MachineConfiguration const m = tableAC();
  double const a = 0.5, c = 0.3;
  // From (-0.5, 0, -2.8) the second solution is 0.04 away, the first 4.1.
  expectNear(Vector(-a, 0, c - kPi), m.getClosestABC(Vector(-0.5, 0, -2.8), Vector(a, 0, c)));
  // Given either solution, the answer is the same.
  expectNear(Vector(-a, 0, c - kPi), m.getClosestABC(Vector(-0.5, 0, -2.8), Vector(-a, 0, c + kPi)));
  // Each solution is taken at the turn nearest to current: C near 4 pi.
  expectNear(Vector(a, 0, c + 2 * kTwoPi), m.getClosestABC(Vector(0.4, 0, 0.3 + 2 * kTwoPi), Vector(-a, 0, c - kPi)));
}

TEST(MachineConfigurationPreferenceSolving, ClosestABCMeasuresTheSumOfTheMovesNotTheStraightDistance) {
  MachineConfiguration const m = tableAC();
  double const a = 0.5, c = 1.2;
  // From (-0.5, 0, 0): the first solution (0.5, 0, 1.2) moves 1.0 + 1.2 = 2.2
  // (straight 1.56); the second (-0.5, 0, 1.2 - pi) moves 0 + 1.94 (straight
  // 1.94). The smaller travel is the second's.
  expectNear(Vector(-a, 0, c - kPi), m.getClosestABC(Vector(-0.5, 0, 0), Vector(a, 0, c)));
}

// getPreferredABC.

TEST(MachineConfigurationPreferenceSolving, PreferredABCWithANegativeUPreferenceSwapsToTheOtherSolution) {
  double const a = 0.5, c = 0.3;
  Axis u = axisA();
  u.setPreference(-1);
  {
    MachineConfiguration const m(u, axisC());
    // V without preference: its value is reduced to -pi..pi.
    expectNear(Vector(-a, 0, c - kPi), m.getPreferredABC(Vector(a, 0, c)));
    // Already negative: unchanged.
    expectNear(Vector(-a, 0, c + kPi), m.getPreferredABC(Vector(-a, 0, c + kPi)), 0);
  }
  {
    Axis v = axisC();
    v.setPreference(1);
    MachineConfiguration const m(u, v);
    // V prefers positive: c - pi turns up to c + pi.
    expectNear(Vector(-a, 0, c + kPi), m.getPreferredABC(Vector(a, 0, c)));
  }
}

TEST(MachineConfigurationPreferenceSolving, PreferredABCWithAPositiveUPreferenceSwapsToTheOtherSolution) {
  double const a = 0.5, c = 0.3;
  Axis u = axisA();
  u.setPreference(1);
  Axis v = axisC();
  v.setPreference(-1);
  MachineConfiguration const m(u, v);
  // The other solution (0.5, 0, 0.3) with C turned to at or below 0.
  expectNear(Vector(a, 0, c - kTwoPi), m.getPreferredABC(Vector(-a, 0, c - kPi)));
  expectNear(Vector(a, 0, c), m.getPreferredABC(Vector(a, 0, c)), 0);
}

TEST(MachineConfigurationPreferenceSolving, PreferredABCWithOnlyAVPreferenceTakesTheOtherSolutionAsItIs) {
  double const a = 0.5, c = 0.3;
  Axis v = axisC();
  v.setPreference(-1);
  MachineConfiguration const negative(axisA(), v);
  expectNear(Vector(-a, 0, c - kPi), negative.getPreferredABC(Vector(a, 0, c)));
  expectNear(Vector(-a, 0, c - kPi), negative.getPreferredABC(Vector(-a, 0, c - kPi)), 0);
  v.setPreference(1);
  MachineConfiguration const positive(axisA(), v);
  expectNear(Vector(a, 0, c), positive.getPreferredABC(Vector(-a, 0, c - kPi)));
  expectNear(Vector(a, 0, c), positive.getPreferredABC(Vector(a, 0, c)), 0);
}

TEST(MachineConfigurationPreferenceSolving, PreferredABCNeedsUAndVWithoutWAndAPreference) {
  Vector const abc(0.5, 0, 0.3);
  // No preference.
  expectNear(abc, tableAC().getPreferredABC(abc), 0);
  // One rotary axis.
  Axis u = axisA();
  u.setPreference(-1);
  expectNear(abc, MachineConfiguration(u).getPreferredABC(abc), 0);
  // Three.
  expectNear(abc, MachineConfiguration(u, axisC(), Axis(true, Vector(0, 1, 0), Vector(), 1)).getPreferredABC(abc), 0);
  // Invalid input fails on any machine.
  EXPECT_EQ(L"Invalid vector coordinates.",
            scriptFailure([&] { MachineConfiguration().getPreferredABC(Vector(0, std::nan(""), 0)); }));
}

TEST(MachineConfigurationPreferenceSolving, PreferredABCCountsAxesAsPerpendicularWithinOneBillionth) {
  Axis u = axisA();
  u.setPreference(-1);
  // A cosine of 2e-9 between the axes: taken as aligned, input returned.
  Axis const slanted(true, Vector(2e-9, 0, 1), Vector(), 2);
  Vector const abc(0.5, 0, 0.3);
  expectNear(abc, MachineConfiguration(u, slanted).getPreferredABC(abc), 0);
  // A cosine of 0.5e-9: perpendicular enough, the other solution.
  Axis const nearly(true, Vector(0.5e-9, 0, 1), Vector(), 2);
  Vector const r = MachineConfiguration(u, nearly).getPreferredABC(abc);
  EXPECT_NEAR(-0.5, r.x, 1e-6);
}

// getABCByPreference.

TEST(MachineConfigurationPreferenceSolving, ABCByPreferenceTakesTheSolutionThatKeepsTheAxisPreference) {
  double const a = 0.5, c = 0.3;
  Axis u = axisA(rotaryRange(-kPi / 2, kPi / 2));
  u.setPreference(-1);
  MachineConfiguration const negative(u, axisC());
  expectNear(Vector(-a, 0, c - kPi), negative.getABCByPreference(orientationAC(a, c), Vector(), 0, M::PREFER_PREFERENCE, 0));
  expectNear(Vector(-a, 0, c - kPi), negative.getABCByPreference(orientationAC(a, c), Vector(), 3, M::PREFER_PREFERENCE, 0));
  u.setPreference(1);
  MachineConfiguration const positive(u, axisC());
  expectNear(Vector(a, 0, c), positive.getABCByPreference(orientationAC(a, c), Vector(0, 0, -2.8), 0, M::PREFER_PREFERENCE, 0));
}

TEST(MachineConfigurationPreferenceSolving, ABCByPreferenceWithoutPreferencesTakesTheClosest) {
  double const a = 0.5, c = 0.3;
  MachineConfiguration const m = tableAC();
  expectNear(Vector(-a, 0, c - kPi), m.getABCByPreference(orientationAC(a, c), Vector(-0.4, 0, 0), 0, M::PREFER_PREFERENCE, 0));
  expectNear(Vector(a, 0, c), m.getABCByPreference(orientationAC(a, c), Vector(0.4, 0, 0), 0, M::PREFER_PREFERENCE, 0));
  // ABC: the whole triple decides.
  expectNear(Vector(-a, 0, c - kPi), m.getABCByPreference(orientationAC(a, c), Vector(0.1, 0, -2.5), 3, M::PREFER_CLOSEST, 0));
  expectNear(Vector(a, 0, c), m.getABCByPreference(orientationAC(a, c), Vector(-0.1, 0, 0), 3, M::PREFER_CLOSEST, 0));
}

TEST(MachineConfigurationPreferenceSolving, ABCByPreferencePositiveAndNegativeOnTheControllingAxis) {
  double const a = 0.5, c = 0.3;
  MachineConfiguration const m = tableAC();
  // On C from 0: negative turns the first solution's 0.3 to 0.3 - 2 pi, and
  // the second's 0.3 - pi is nearer as a whole.
  expectNear(Vector(-a, 0, c - kPi), m.getABCByPreference(orientationAC(a, c), Vector(), 2, M::PREFER_NEGATIVE, 0));
  // Positive: the first's 0.3 is already positive and nearer than 0.3 + pi.
  expectNear(Vector(a, 0, c), m.getABCByPreference(orientationAC(a, c), Vector(), 2, M::PREFER_POSITIVE, 0));
  // On A, limited to -pi/2..pi/2: only the first can be positive and only
  // the second negative, whatever the current position.
  MachineConfiguration const limited(axisA(rotaryRange(-kPi / 2, kPi / 2)), axisC());
  expectNear(Vector(a, 0, c), limited.getABCByPreference(orientationAC(a, c), Vector(-0.5, 0, -2.8), 0, M::PREFER_POSITIVE, 0));
  expectNear(Vector(-a, 0, c - kPi), limited.getABCByPreference(orientationAC(a, c), Vector(0.5, 0, 0), 0, M::PREFER_NEGATIVE, 0));
}

TEST(MachineConfigurationPreferenceSolving, ABCByPreferenceIncreasingAndDecreasingFromCurrent) {
  double const a = 0.5, c = 0.3;
  MachineConfiguration const m = tableAC();
  // From C = 1: decreasing keeps 0.3 (the first), increasing needs 0.3 + pi
  // (the second, turned up) or 0.3 + 2 pi (the first): the nearer triple.
  expectNear(Vector(a, 0, c), m.getABCByPreference(orientationAC(a, c), Vector(0, 0, 1), 2, M::PREFER_DECREASING, 0));
  expectNear(Vector(-a, 0, c + kPi), m.getABCByPreference(orientationAC(a, c), Vector(0, 0, 1), 2, M::PREFER_INCREASING, 0));
}

TEST(MachineConfigurationPreferenceSolving, ABCByPreferenceResetsAxesWhoseResetHasBitZero) {
  double const a = 0.5, c = 0.3;
  Axis cAxis = axisC();
  cAxis.setReset(1);
  MachineConfiguration const m(axisA(), cAxis);
  Vector const current(0.4, 0, 10);
  // Without the option C is taken near 10: 0.3 + 2 turns.
  expectNear(Vector(a, 0, c + 2 * kTwoPi), m.getABCByPreference(orientationAC(a, c), current, 0, M::PREFER_CLOSEST, 0));
  // With it C counts from 0.
  expectNear(Vector(a, 0, c), m.getABCByPreference(orientationAC(a, c), current, 0, M::PREFER_CLOSEST, M::PREFERENCE_RESET_AXES));
  // Reset 2 has bit 0 clear, 3 has it set.
  cAxis.setReset(2);
  MachineConfiguration const two(axisA(), cAxis);
  expectNear(Vector(a, 0, c + 2 * kTwoPi), two.getABCByPreference(orientationAC(a, c), current, 0, M::PREFER_CLOSEST, M::PREFERENCE_RESET_AXES));
  cAxis.setReset(3);
  MachineConfiguration const three(axisA(), cAxis);
  expectNear(Vector(a, 0, c), three.getABCByPreference(orientationAC(a, c), current, 0, M::PREFER_CLOSEST, M::PREFERENCE_RESET_AXES));
}

TEST(MachineConfigurationPreferenceSolving, ABCByPreferenceAdjustsTheLastAxisToTheTurnThatRemains) {
  MachineConfiguration const m = tableAC();
  // The tool along Z, the orientation turned by 0.7 about it.
  Matrix const turned(Vector(0, 0, 1), 0.7);
  expectNear(Vector(0, 0, 0.7), m.getABCByPreference(turned, Vector(), 3, M::PREFER_CLOSEST, M::PREFERENCE_ADJUST_LAST_AXIS));
  // Without the option the turn is lost.
  expectNear(Vector(0, 0, 0), m.getABCByPreference(turned, Vector(), 3, M::PREFER_CLOSEST, 0));
  // A last axis pointing the other way takes the turn negated.
  MachineConfiguration const reversed(axisA(), Axis(true, Vector(0, 0, -1), Vector(), 2));
  expectNear(Vector(0, 0, -0.7), reversed.getABCByPreference(turned, Vector(), 3, M::PREFER_CLOSEST, M::PREFERENCE_ADJUST_LAST_AXIS));
  // A turn within 1e-7 of none counts as none.
  Matrix const almost(Vector(0, 0, 1), 5e-8);
  expectNear(Vector(0, 0, 0), m.getABCByPreference(almost, Vector(), 3, M::PREFER_CLOSEST, M::PREFERENCE_ADJUST_LAST_AXIS), 0);
  // The tool not along the last axis: nothing to adjust.
  expectNear(Vector(0.5, 0, 0.3), m.getABCByPreference(orientationAC(0.5, 0.3), Vector(), 3, M::PREFER_CLOSEST, M::PREFERENCE_ADJUST_LAST_AXIS));
}

TEST(MachineConfigurationPreferenceSolving, ABCByPreferenceFailsWhenNeitherSolutionIsInRangeNamingTheFirstInDegrees) {
  MachineConfiguration const m(axisA(rotaryRange(-0.3, 0.3)), axisC());
  // The first solution is (0.5, 0, -0.3): 28.6478897565... and -17.1887338539...
  // degrees, cut (towards zero) to three decimals.
  EXPECT_EQ(L"Orientation is not supported: 28.647, 0, -17.188",
            scriptFailure([&] { m.getABCByPreference(orientationAC(0.5, -0.3), Vector(), 0, M::PREFER_CLOSEST, 0); }));
}

TEST(MachineConfigurationPreferenceSolving, ABCByPreferencePassesOnTheSolversFailure) {
  MachineConfiguration const m;
  EXPECT_EQ(L"Direction is not supported for machine configuration.",
            scriptFailure([&] { m.getABCByPreference(Matrix(Vector(1, 0, 0), 0.5), Vector(), 3, M::PREFER_CLOSEST, 0); }));
}

TEST(MachineConfigurationPreferenceSolving, ABCByPreferenceLeavesTheConfigurationAlone) {
  Axis u = axisA(rotaryRange(-kPi / 2, kPi / 2));
  u.setPreference(-1);
  MachineConfiguration const m(u, axisC());
  m.getABCByPreference(orientationAC(0.5, 0.3), Vector(), 3, M::PREFER_PREFERENCE, 0);
  m.getABCByPreference(orientationAC(0.5, 0.3), Vector(), 0, M::PREFER_POSITIVE, 0);
  EXPECT_EQ(-1, m.getAxisU().getPreference());
  EXPECT_EQ(0, m.getAxisV().getPreference());
}

// preserveRotaryAtZero.

TEST(MachineConfigurationPreferenceSolving, PreserveRotaryAtZeroCountsTheToolAlongVWithinOneHundredMillionth) {
  MachineConfiguration const m = tableAC();
  // A tilt of 1e-4 has a cosine of 1 - 5e-9: along V; C may change and the
  // tool stays within the second limit.
  Vector const kept = m.preserveRotaryAtZero(directionAC(1e-4, 0.3), Vector(0, 0, 2), Vector(1e-4, 0, 0.3));
  expectNear(Vector(1e-4, 0, 2), kept, 0);
  // A tilt of 2e-4 has a cosine of 1 - 2e-8: not along V.
  Vector const left = m.preserveRotaryAtZero(directionAC(2e-4, 0.3), Vector(0, 0, 2), Vector(2e-4, 0, 0.3));
  expectNear(Vector(2e-4, 0, 0.3), left, 0);
}

TEST(MachineConfigurationPreferenceSolving, PreserveRotaryAtZeroKeepsTheOldValueOnlyWhileTheToolStaysWithinTheLimit) {
  MachineConfiguration const m = tableAC();
  // The result's tool at 4e-4 from the current direction: cosine 1 - 8e-8,
  // at or above 0.9999999, so kept; at 5e-4 (1 - 1.25e-7) not.
  expectNear(Vector(4e-4, 0, 2), m.preserveRotaryAtZero(Vector(0, 0, 1), Vector(0, 0, 2), Vector(4e-4, 0, 0.3)), 0);
  expectNear(Vector(5e-4, 0, 0.3), m.preserveRotaryAtZero(Vector(0, 0, 1), Vector(0, 0, 2), Vector(5e-4, 0, 0.3)), 0);
}

TEST(MachineConfigurationPreferenceSolving, PreserveRotaryAtZeroUsesTheEffectiveAxisOfVEitherWay) {
  // A head C: its effective axis is -Z, along the tool all the same.
  MachineConfiguration const m(Axis(false, Vector(1, 0, 0), Vector(), 0), Axis(false, Vector(0, 0, 1), Vector(), 2));
  expectNear(Vector(0, 0, 2), m.preserveRotaryAtZero(Vector(0, 0, 1), Vector(0, 0, 2), Vector(0, 0, 0.3)), 0);
  // Without V nothing is along it.
  MachineConfiguration const one(axisC());
  expectNear(Vector(0, 0, 0.3), one.preserveRotaryAtZero(Vector(0, 0, 1), Vector(0, 0, 2), Vector(0, 0, 0.3)), 0);
}

TEST(MachineConfigurationPreferenceSolving, PreserveRotaryAtZeroAssertsADirection) {
  mtkit_test::AssertRecorder recorder;
  MachineConfiguration const m = tableAC();
  Vector const r = m.preserveRotaryAtZero(Vector(), Vector(0, 0, 2), Vector(0, 0, 0.3));
  expectNear(Vector(0, 0, 0.3), r, 0);
  auto const failures = recorder.take();
  ASSERT_EQ(1u, failures.size());
  EXPECT_EQ(std::string("currentDirection.isNonZero()"), failures[0].expression);
  EXPECT_EQ(std::string(kPath), failures[0].file);
}

// isDirectionSupported.

TEST(MachineConfigurationPreferenceSolving, DirectionSupportedOnAThreeAxisMachineIsTheSpindleAxisWithinTheLimit) {
  MachineConfiguration const m;
  EXPECT_TRUE(m.isDirectionSupported(Vector(0, 0, 2)));
  EXPECT_FALSE(m.isDirectionSupported(Vector(1, 0, 0)));
  // 4e-4 off: cosine 1 - 8e-8, at or above 0.9999999; 5e-4 off: below.
  EXPECT_TRUE(m.isDirectionSupported(Vector(std::sin(4e-4), 0, std::cos(4e-4))));
  EXPECT_FALSE(m.isDirectionSupported(Vector(std::sin(5e-4), 0, std::cos(5e-4))));
  EXPECT_EQ(L"Invalid vector coordinates.", scriptFailure([&] { m.isDirectionSupported(Vector(0, 0, 1e10)); }));
}

TEST(MachineConfigurationPreferenceSolving, DirectionSupportedTriesTheOtherSolutionWhenTheFirstIsOutOfRange) {
  Vector const t = directionAC(0.5, 0.3);
  // The first solution's A = 0.5 fits.
  EXPECT_TRUE(MachineConfiguration(axisA(rotaryRange(0, 1)), axisC()).isDirectionSupported(t));
  // Only the second's A = -0.5 fits.
  EXPECT_TRUE(MachineConfiguration(axisA(rotaryRange(-1, 0)), axisC()).isDirectionSupported(t));
  // Neither.
  EXPECT_FALSE(MachineConfiguration(axisA(rotaryRange(-0.3, 0.3)), axisC()).isDirectionSupported(t));
}

TEST(MachineConfigurationPreferenceSolving, DirectionSupportedPassesOnTheSolversFailure) {
  // One rotary axis about X reaches only the YZ plane.
  MachineConfiguration const m(axisA());
  EXPECT_TRUE(m.isDirectionSupported(Vector(0, -1, 0)));
  EXPECT_EQ(L"Direction is not supported for machine configuration.",
            scriptFailure([&] { m.isDirectionSupported(Vector(1, 0, 0)); }));
}

}  // namespace
