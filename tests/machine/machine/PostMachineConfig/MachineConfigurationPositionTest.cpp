// Orientations and optimised positions of MachineConfiguration: the rotation
// of the rotary chain, and where the linear axes go for pivots and tool
// length. Expected values are worked out by hand in each test.

#include <gtest/gtest.h>

#include <cmath>

#include "machine/machine/PostMachineConfig/MachineConfiguration.h"
#include "support/ScriptFailureText.h"

using com::vantora::Matrix;
using com::vantora::Vector;
using com::vantora::post::Axis;
using com::vantora::post::MachineConfiguration;
using mtkit_test::scriptFailure;

namespace {

constexpr double kPi = 3.141592653589793;
constexpr double kTight = 1e-12;

Vector const kX(1, 0, 0);
Vector const kY(0, 1, 0);
Vector const kZ(0, 0, 1);
Vector const kOrigin;

void expectNear(Vector const& expected, Vector const& actual, double tolerance = kTight) {
  EXPECT_NEAR(expected.x, actual.x, tolerance);
  EXPECT_NEAR(expected.y, actual.y, tolerance);
  EXPECT_NEAR(expected.z, actual.z, tolerance);
}

void expectNear(Matrix const& expected, Matrix const& actual, double tolerance = kTight) {
  for (unsigned int r = 0; r < 3; ++r)
    for (unsigned int c = 0; c < 3; ++c) EXPECT_NEAR(expected[r][c], actual[r][c], tolerance) << r << "," << c;
}

/// A table C about Z pivoting at (100, 0, 0).
MachineConfiguration tableC(bool tcp) {
  Axis c(true, kZ, Vector(100, 0, 0), 2);
  c.setTCPEnabled(tcp);
  return MachineConfiguration(c);
}

/// A head A about X with its pivot 10 above the gauge point, on a head C
/// about Z with its pivot 20 above A's; tool length 100 along Z.
MachineConfiguration headAC(bool tcp) {
  Axis a(false, kX, Vector(0, 0, 10), 0);
  Axis c(false, kZ, Vector(0, 0, 20), 2);
  a.setTCPEnabled(tcp);
  c.setTCPEnabled(tcp);
  MachineConfiguration m(a, c);
  m.setToolLength(100);
  return m;
}

// Edge cases.

TEST(MachineConfigurationPosition, ZeroAnglesGiveIdentityOrientationWhileOrientationABCOnASpindleAlongXIsNot) {
  MachineConfiguration c(Axis(true, kX, kOrigin, 0), Axis(true, kZ, kOrigin, 2));
  EXPECT_TRUE(c.getOrientation(Vector()).isIdentity());
  c.setSpindleAxis(kX);
  Matrix const m = c.getOrientationABC(Vector());
  EXPECT_FALSE(m.isIdentity());
  // It takes Z to the spindle axis: a quarter turn about cross(Z, X) = +Y.
  expectNear(kX, m.multiplyVector(kZ));
  expectNear(Matrix(Vector(0, 0, -1), Vector(0, 1, 0), Vector(1, 0, 0)), m);
}

TEST(MachineConfigurationPosition, SpindleAlongMinusZLeavesOrientationABCAtIdentityForZeroAngles) {
  MachineConfiguration c(Axis(true, kX, kOrigin, 0), Axis(true, kZ, kOrigin, 2));
  c.setSpindleAxis(Vector(0, 0, -1));
  EXPECT_TRUE(c.getOrientationABC(Vector()).isIdentity());
}

TEST(MachineConfigurationPosition, GetPositionOnATableMachineWithTCPEnabledIsUnchangedAndWithTCPDisabledTurnsAboutThePivot) {
  Vector const p(110, 0, 5);
  Vector const abc(0, 0, kPi / 2);
  expectNear(p, tableC(true).getPosition(p, abc), 0);
  // Reverse turns the machine point about the pivot by the table angle:
  // (10, 0) from the pivot becomes (0, 10).
  expectNear(Vector(100, 10, 5), tableC(false).getPosition(p, abc));
  // Forward does the opposite turn.
  expectNear(Vector(100, -10, 5), tableC(false).getOptimizedPosition(p, abc, 0, 1, false));
}

TEST(MachineConfigurationPosition, ForceCompensatesAlsoForAxesWithTCPEnabled) {
  Vector const p(110, 0, 5);
  Vector const abc(0, 0, kPi / 2);
  expectNear(p, tableC(true).getOptimizedPosition(p, abc, 0, 1, false), 0);
  expectNear(Vector(100, -10, 5), tableC(true).getOptimizedPosition(p, abc, 0, 1, true));
}

TEST(MachineConfigurationPosition, TcpTypeTwoWithSomeTCPDisabledAndTcpTypeThreeWithAllEnabledReturnThePosition) {
  Vector const p(110, 0, 5);
  Vector const abc(0, 0, kPi / 2);
  MachineConfiguration const optimized = tableC(false);
  MachineConfiguration const followed = tableC(true);
  expectNear(p, optimized.getOptimizedPosition(p, abc, 2, 1, false), 0);
  expectNear(p, followed.getOptimizedPosition(p, abc, 3, 1, true), 0);
  // The other way round they work: 2 forward, 3 reverse.
  expectNear(Vector(100, -10, 5), followed.getOptimizedPosition(p, abc, 2, 1, true));
  expectNear(Vector(100, 10, 5), optimized.getOptimizedPosition(p, abc, 3, 1, false));
  // Any value beyond 3 is forward.
  expectNear(Vector(100, -10, 5), optimized.getOptimizedPosition(p, abc, 7, 1, false));
}

TEST(MachineConfigurationPosition, OnATwoAxisHeadTheToolLengthIsAddedOnceAtUBeforeItsRotationAndTurnedFurtherByV) {
  // A = C = 90 degrees. At A: (0, 0, 10) + (0, 0, 100) turned about -X by
  // 90 degrees is (0, 110, 0). At C: plus (0, 0, 20), turned about -Z by 90
  // degrees: (110, 0, 20). Counting the tool again at C would add 100 to z.
  MachineConfiguration const c = headAC(false);
  Vector const abc(kPi / 2, 0, kPi / 2);
  expectNear(Vector(110, 0, 20), c.getOptimizedPosition(Vector(), abc, 0, 1, false));
  expectNear(Vector(111, 2, 23), c.getOptimizedPosition(Vector(1, 2, 3), abc, 0, 1, false));
  // Reverse negates offsets and tool, not the rotations.
  expectNear(Vector(-110, 0, -20), c.getOptimizedPosition(Vector(), abc, 1, 1, false));
  // Tables only: a head machine is left alone.
  expectNear(Vector(1, 2, 3), c.getOptimizedPosition(Vector(1, 2, 3), abc, 0, 2, false), 0);
}

TEST(MachineConfigurationPosition, WithTheVirtualTooltipEachAxisLosesItsOffsetAndToolLengthAfterItsRotation) {
  // At A: (0, 110, 0) - (0, 0, 10) - (0, 0, 100) = (0, 110, -110). At C:
  // plus (0, 0, 20) is (0, 110, -90), turned (110, 0, -90), minus
  // (0, 0, 20): (110, 0, -110).
  MachineConfiguration c = headAC(false);
  c.setVirtualTooltip(true);
  Vector const abc(kPi / 2, 0, kPi / 2);
  expectNear(Vector(110, 0, -110), c.getOptimizedPosition(Vector(), abc, 0, 1, false));
  // At zero angles only the differences remain: none.
  expectNear(Vector(), c.getOptimizedPosition(Vector(), Vector(), 0, 1, false));
  // The internal form may ignore the setting.
  expectNear(Vector(110, 0, 20), c.getOptimizedPositionInternal(Vector(), abc, 0, 1, false, true));
}

// Further behaviour.

TEST(MachineConfigurationPosition, OrientationIsTheChainOfEffectiveAxisRotations) {
  // Head B about -Y by 90 degrees, then head C about -Z by 90 degrees.
  MachineConfiguration const c(Axis(false, kY, kOrigin, 1), Axis(false, kZ, kOrigin, 2));
  Matrix const m = c.getOrientation(Vector(0, kPi / 2, kPi / 2));
  expectNear(Vector(0, 1, 0), m.multiplyVector(kZ));   // Z -> -X -> +Y
  expectNear(Vector(0, 0, 1), m.multiplyVector(kX));   // X -> Z -> Z
  expectNear(Vector(1, 0, 0), m.multiplyVector(kY));   // Y -> Y -> X
  expectNear(Matrix(), c.getRemainingOrientation(Vector(0, kPi / 2, kPi / 2), m));
  // Head and table parts of a mixed machine.
  MachineConfiguration const mixed(Axis(false, kY, kOrigin, 1), Axis(true, kZ, kOrigin, 2));
  Vector const abc(0, kPi / 2, kPi / 2);
  expectNear(Vector(-1, 0, 0), mixed.getHeadOrientation(abc).multiplyVector(kZ));
  expectNear(Vector(0, 1, 0), mixed.getTableOrientation(abc).multiplyVector(kX));
  expectNear(mixed.getOrientationABC(abc).getTransposed(), mixed.getRemainingOrientationABC(abc, Matrix()));
}

TEST(MachineConfigurationPosition, OrientationABCStartsTurningOnceTheSpindleIsMoreThanOneInTenMillionOffZ) {
  // 1 - cos(4.4e-4) = 9.68e-8 is not above 1e-7; 1 - cos(4.5e-4) = 1.01e-7 is.
  MachineConfiguration c(Axis(true, kX, kOrigin, 0), Axis(true, kZ, kOrigin, 2));
  c.setSpindleAxis(Vector(std::sin(4.4e-4), 0, std::cos(4.4e-4)));
  EXPECT_TRUE(c.getOrientationABC(Vector()).isIdentity());
  Vector const s(std::sin(4.5e-4), 0, std::cos(4.5e-4));
  c.setSpindleAxis(s);
  EXPECT_FALSE(c.getOrientationABC(Vector()).isIdentity());
  // The angle comes from acos of a cosine near 1, good to about 1e-13 here.
  expectNear(s, c.getOrientationABC(Vector()).multiplyVector(kZ), 1e-12);
}

TEST(MachineConfigurationPosition, OrientationABCSendsZToTheToolDirection) {
  MachineConfiguration c(Axis(false, kY, kOrigin, 1), Axis(false, kZ, kOrigin, 2));
  c.setSpindleAxis(kX);
  // The spindle X turned about -Y by 90 degrees is +Z, then about -Z: +Z.
  expectNear(kZ, c.getOrientationABC(Vector(0, kPi / 2, 0.3)).multiplyVector(kZ));
}

TEST(MachineConfigurationPosition, OrientationsAndGetPositionValidateTheirVectors) {
  MachineConfiguration const c = tableC(false);
  Vector const bad(0, 0, 1.0000001e9);
  std::wstring const text = L"Invalid vector coordinates.";
  EXPECT_EQ(text, scriptFailure([&] { c.getOrientation(bad); }));
  EXPECT_EQ(text, scriptFailure([&] { c.getOrientationABC(bad); }));
  EXPECT_EQ(text, scriptFailure([&] { c.getRemainingOrientation(bad, Matrix()); }));
  EXPECT_EQ(text, scriptFailure([&] { c.getRemainingOrientationABC(bad, Matrix()); }));
  EXPECT_EQ(text, scriptFailure([&] { c.getPosition(bad, Vector()); }));
  EXPECT_EQ(text, scriptFailure([&] { c.getPosition(Vector(), bad); }));
  // The optimised forms do not validate.
  EXPECT_EQ(L"", scriptFailure([&] { c.getOptimizedPosition(bad, Vector(), 0, 1, false); }));
}

TEST(MachineConfigurationPosition, OptimizeTypeThreeLeavesTablesAloneAndDirectionsSkipThePivot) {
  MachineConfiguration const c = tableC(false);
  Vector const abc(0, 0, kPi / 2);
  expectNear(Vector(110, 0, 5), c.getOptimizedPosition(Vector(110, 0, 5), abc, 0, 3, false), 0);
  // A direction turns without the pivot: (1, 0, 0) forward becomes (0, -1, 0).
  expectNear(Vector(0, -1, 0), c.getOptimizedDirection(kX, abc, false, false));
  expectNear(Vector(0, 1, 0), c.getOptimizedDirection(kX, abc, true, false));
}

TEST(MachineConfigurationPosition, ToolLengthIsTakenInTheScriptUnit) {
  MachineConfiguration c(Axis(false, kX, kOrigin, 0));
  c.getAxisU().setTCPEnabled(false);
  c.setInchMode(true);
  c.setToolLength(1);  // 25.4 mm
  // A = 90 degrees turns the tool (0, 0, 25.4) about -X onto (0, 25.4, 0):
  // one inch in the script's unit.
  expectNear(Vector(0, 1, 0), c.getOptimizedPosition(Vector(), Vector(kPi / 2, 0, 0), 0, 1, false));
}

}  // namespace
