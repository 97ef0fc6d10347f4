#include "machine/machine/PostMachineConfig/Axis.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string>

#include "machine/machine/AxisConfiguration.h"
#include "machine/machine/InfiniteRotaryAxisDefinition.h"
#include "machine/machine/LimitedRotaryAxisDefinition.h"
#include "machine/machine/LinearAxisDefinition.h"
#include "support/AssertRecorder.h"
#include "util/utility/ScriptException.h"
#include "util/utility/Speed.h"

namespace {

using com::vantora::Matrix;
using com::vantora::Vector;
using com::vantora::post::Axis;
using com::vantora::post::Range;
using com::vantora::post::UnitConsumer;

constexpr double kPi = 3.141592653589793;
constexpr double kTwoPi = 6.283185307179586;
constexpr double kInchToMm = 25.4;
constexpr double kMmToInch = 0.03937007874015748;

std::wstring scriptFailure(std::function<void()> const& f) {
  try {
    f();
  } catch (Orvo::ScriptException const& e) {
    return e.getMessage();
  }
  return std::wstring();
}

void expectVector(Vector const& v, double x, double y, double z, double tolerance = 0) {
  EXPECT_NEAR(x, v.x, tolerance);
  EXPECT_NEAR(y, v.y, tolerance);
  EXPECT_NEAR(z, v.z, tolerance);
}

/// An enabled rotational head axis about Z (coordinate 2, C).
Axis rotary(Range const& range = Range()) { return Axis(false, Vector(0, 0, 1), Vector(), 2, range); }

/// An enabled linear head axis along X.
Axis linearX() {
  Axis a(false, Vector(1, 0, 0), Vector(), 0);
  a.setActuator(Axis::LINEAR);
  return a;
}

Range turns(double a, double b) { return Range(a, b, Range::ROTATIONAL); }

// Construction.

TEST(PostAxis, ADefaultAxisIsDisabled) {
  Axis const a;
  EXPECT_FALSE(a.isEnabled());
  EXPECT_EQ(1, a.getValidityStatus());
  EXPECT_EQ(1u, a.getActuator());
  EXPECT_TRUE(a.isRotational());
  EXPECT_TRUE(a.isHead());
  EXPECT_FALSE(a.isTable());
  expectVector(a.getAxis(), 0, 0, 0);
  expectVector(a.getOffset(), 0, 0, 0);
  expectVector(a.getEffectiveAxis(), 0, 0, 0);
  EXPECT_EQ(0.0, a.getHomePosition());
  EXPECT_FALSE(a.hasHomePosition());
  EXPECT_EQ(0.0, a.getDisplacement());
  EXPECT_EQ(-1, a.getCoordinate());
  EXPECT_EQ(-1, a.getCoordinate2());
  EXPECT_FALSE(a.isCyclic());
  EXPECT_TRUE(a.isTCPEnabled());
  EXPECT_TRUE(a.getRange().isNonRange());
  EXPECT_EQ(0, a.getPreference());
  EXPECT_EQ(0.0, a.getResolution());
  EXPECT_EQ(0.0, a.getMaximumFeed());
  EXPECT_EQ(0.0, a.getRapidFeed());
  EXPECT_EQ(L"", a.getName());
  EXPECT_EQ(0, a.getReset());
  EXPECT_EQ(0, a.getControlType());
  EXPECT_EQ(Orvo::MachinePartId(), a.getMachinePartId());
  EXPECT_EQ(0.0, a.getToolChangePosition());
  EXPECT_FALSE(a.hasToolChangePosition());
  EXPECT_FALSE(a.isAggregate());
  EXPECT_STREQ("ScriptObject", a.getBaseClass());
}

TEST(PostAxis, TheConstructorsMakeAnEnabledRotationalAxisWithANormalisedVector) {
  Axis const a(false, Vector(0, 0, 2), Vector(1, 2, 3), 2);
  EXPECT_TRUE(a.isEnabled());
  EXPECT_TRUE(a.isRotational());
  expectVector(a.getAxis(), 0, 0, 1);
  expectVector(a.getOffset(), 1, 2, 3);
  EXPECT_EQ(2, a.getCoordinate());
  EXPECT_TRUE(a.getRange().isNonRange());
  Axis const b(true, Vector(3, 0, 4), Vector(), 0, turns(-1, 1));
  expectVector(b.getAxis(), 0.6, 0, 0.8);
  EXPECT_EQ(-1.0, b.getRange().getMinimum());
  EXPECT_EQ(1.0, b.getRange().getMaximum());
}

TEST(PostAxis, TheEffectiveAxisIsTheAxisForATableAndItsNegativeForAHead) {
  Axis head(false, Vector(0, 1, 0), Vector(), 1);
  expectVector(head.getEffectiveAxis(), 0, -1, 0);
  Axis table(true, Vector(0, 1, 0), Vector(), 1);
  expectVector(table.getEffectiveAxis(), 0, 1, 0);
  head.setTable(true);
  expectVector(head.getEffectiveAxis(), 0, 1, 0);
  head.setAxis(Vector(0, 0, 2));  // stored as given
  expectVector(head.getAxis(), 0, 0, 2);
  expectVector(head.getEffectiveAxis(), 0, 0, 2);
  head.setTable(false);
  expectVector(head.getEffectiveAxis(), 0, 0, -2);
}

TEST(PostAxis, AnAggregateAxisHasARangeOfOnePoint) {
  EXPECT_TRUE(rotary(turns(0.5, 0.5)).isAggregate());
  EXPECT_FALSE(rotary(turns(0.5, 0.6)).isAggregate());
  EXPECT_FALSE(rotary().isAggregate());
  Axis a = rotary();
  a.setRange(turns(1, 1));
  EXPECT_TRUE(a.isAggregate());
  a.setRange(Range());
  EXPECT_FALSE(a.isAggregate());
}

TEST(PostAxis, ACopyIsTwoMoreConsumersItselfAndItsRange) {
  Axis const a = rotary(turns(0, 1));
  std::size_t const before = UnitConsumer::getNumberOfConsumers();
  {
    Axis const copy(a);
    EXPECT_EQ(before + 2, UnitConsumer::getNumberOfConsumers());
    EXPECT_EQ(1.0, copy.getRange().getMaximum());
  }
  EXPECT_EQ(before, UnitConsumer::getNumberOfConsumers());
}

TEST(PostAxis, ACopyHasEveryField) {
  Axis a(true, Vector(0, 1, 0), Vector(1, 2, 3), 1, turns(-1, 2));
  a.setHomePosition(0.5);
  a.setDisplacement(0.25);
  a.setCyclic(true);
  a.setTCPEnabled(false);
  a.setPreference(-1);
  a.setResolution(0.01);
  a.setMaximumFeed(10);
  a.setRapidFeed(20);
  a.setName(L"B");
  a.setReset(3);
  a.setControlType(4);
  a.setMachinePartId(Orvo::MachinePartId("b"));
  a.setToolChangePosition(0.75);
  a.setInchMode(true);
  Axis const copy(a);
  EXPECT_TRUE(copy.isInchMode());
  EXPECT_TRUE(copy.isEnabled());
  EXPECT_EQ(1u, copy.getActuator());
  EXPECT_TRUE(copy.isTable());
  expectVector(copy.getAxis(), 0, 1, 0);
  expectVector(copy.getOffset(), 1, 2, 3);
  EXPECT_EQ(0.5, copy.getHomePosition());
  EXPECT_TRUE(copy.hasHomePosition());
  EXPECT_EQ(0.25, copy.getDisplacement());
  EXPECT_EQ(1, copy.getCoordinate());
  EXPECT_TRUE(copy.isCyclic());
  EXPECT_FALSE(copy.isTCPEnabled());
  EXPECT_EQ(-1.0, copy.getRange().getMinimum());
  EXPECT_EQ(2.0, copy.getRange().getMaximum());
  EXPECT_EQ(-1, copy.getPreference());
  EXPECT_EQ(0.01, copy.getResolution());
  EXPECT_EQ(10.0, copy.getMaximumFeed());
  EXPECT_EQ(20.0, copy.getRapidFeed());
  EXPECT_EQ(L"B", copy.getName());
  EXPECT_EQ(3, copy.getReset());
  EXPECT_EQ(4, copy.getControlType());
  EXPECT_EQ(Orvo::MachinePartId("b"), copy.getMachinePartId());
  EXPECT_EQ(0.75, copy.getToolChangePosition());
  EXPECT_TRUE(copy.hasToolChangePosition());
  expectVector(copy.getEffectiveAxis(), 0, 1, 0);
  EXPECT_FALSE(copy.isAggregate());
  Axis assigned;
  assigned = a;
  EXPECT_EQ(L"B", assigned.getName());
  EXPECT_EQ(-1, assigned.getPreference());
  EXPECT_TRUE(assigned.isEnabled());
  EXPECT_TRUE(rotary(turns(1, 1)).isAggregate());
  Axis const aggregateCopy(rotary(turns(1, 1)));
  EXPECT_TRUE(aggregateCopy.isAggregate());
}

TEST(PostAxis, AnAxisTakesItsTwoPlacesOnTheListTogetherOrNotAtAll) {
  std::size_t const before = UnitConsumer::getNumberOfConsumers();
  UnitConsumer::setListLimitUnderTest(before + 1);
  EXPECT_THROW(Axis(), std::length_error);
  EXPECT_EQ(before, UnitConsumer::getNumberOfConsumers());
  UnitConsumer::setListLimitUnderTest(before + 2);
  {
    Axis const a;
    EXPECT_EQ(before + 2, UnitConsumer::getNumberOfConsumers());
    EXPECT_THROW(Axis copy(a), std::length_error);
    EXPECT_EQ(before + 2, UnitConsumer::getNumberOfConsumers());
  }
  UnitConsumer::setListLimitUnderTest(0);
  EXPECT_EQ(before, UnitConsumer::getNumberOfConsumers());
}

// Validity.

TEST(PostAxis, ValidityStatusesInTheirOrder) {
  Axis a = rotary();
  EXPECT_EQ(0, a.getValidityStatus());
  a.setRapidFeed(-1);
  EXPECT_EQ(5, a.getValidityStatus());
  EXPECT_FALSE(a.isEnabled());
  a.setMaximumFeed(-1);
  EXPECT_EQ(4, a.getValidityStatus());
  a.setResolution(-1);
  EXPECT_EQ(3, a.getValidityStatus());
  a.setCoordinate(3);
  EXPECT_EQ(2, a.getValidityStatus());
  a.setCoordinate(-1);  // read as unsigned, above 2
  EXPECT_EQ(2, a.getValidityStatus());
  a.setAxis(Vector());
  EXPECT_EQ(1, a.getValidityStatus());
  a.setAxis(Vector(1e-300, 0, 0));  // not zero at all
  a.setCoordinate(0);
  a.setResolution(0);
  a.setMaximumFeed(0);
  a.setRapidFeed(0);
  EXPECT_EQ(0, a.getValidityStatus());
  EXPECT_TRUE(a.isEnabled());
}

TEST(PostAxis, StatusDescriptions) {
  EXPECT_EQ(L"", Axis::getStatusDescription(0));
  EXPECT_EQ(L"Invalid vector.", Axis::getStatusDescription(1));
  EXPECT_EQ(L"Invalid coordinate.", Axis::getStatusDescription(2));
  EXPECT_EQ(L"Invalid resolution.", Axis::getStatusDescription(3));
  EXPECT_EQ(L"Invalid maximum feed.", Axis::getStatusDescription(4));
  EXPECT_EQ(L"Invalid rapid feed.", Axis::getStatusDescription(5));
  EXPECT_EQ(L"Unknown status.", Axis::getStatusDescription(6));
  EXPECT_EQ(L"Unknown status.", Axis::getStatusDescription(-1));
}

TEST(PostAxis, SettersThatTouchTheChecksUpdateEnabled) {
  Axis a = rotary();
  a.setCoordinate(5);
  EXPECT_FALSE(a.isEnabled());
  a.setCoordinate(1);
  EXPECT_TRUE(a.isEnabled());
  a.setAxis(Vector());
  EXPECT_FALSE(a.isEnabled());
  a.setAxis(Vector(1, 0, 0));
  EXPECT_TRUE(a.isEnabled());
}

// Kind and behaviour.

TEST(PostAxis, SetActuatorTakesZeroOrOne) {
  Axis a = rotary();
  a.setActuator(0);
  EXPECT_TRUE(a.isLinear());
  EXPECT_FALSE(a.isRotational());
  EXPECT_EQ(L"Invalid axis actuator.", scriptFailure([&] { a.setActuator(2); }));
  EXPECT_EQ(0u, a.getActuator());
  a.setActuator(1);
  EXPECT_TRUE(a.isRotational());
  EXPECT_EQ(0u, static_cast<unsigned int>(Axis::LINEAR));
  EXPECT_EQ(1u, static_cast<unsigned int>(Axis::ROTATIONAL));
}

TEST(PostAxis, SetControlTypeKeepsAnInvalidValueAfterFailing) {
  Axis a = rotary();
  a.setControlType(5);
  EXPECT_TRUE(a.isManual());
  a.setControlType(0);
  EXPECT_FALSE(a.isManual());
  EXPECT_EQ(L"Axis.setControlType() Control type is invalid", scriptFailure([&] { a.setControlType(6); }));
  EXPECT_EQ(6, a.getControlType());
}

TEST(PostAxis, SetPreferenceMinusOneThenGetPreferenceYieldsMinusOne) {
  Axis a = rotary();
  a.setPreference(-1);
  EXPECT_EQ(-1, a.getPreference());
  a.setPreference(1);
  EXPECT_EQ(1, a.getPreference());
  a.setPreference(0);
  EXPECT_EQ(0, a.getPreference());
}

TEST(PostAxis, OtherPreferencesFail) {
  Axis a = rotary();
  a.setPreference(1);
  EXPECT_EQ(L"Invalid angle preference.", scriptFailure([&] { a.setPreference(2); }));
  EXPECT_EQ(L"Invalid angle preference.", scriptFailure([&] { a.setPreference(-2); }));
  EXPECT_EQ(1, a.getPreference());
}

TEST(PostAxis, ResetIsZeroToThree) {
  Axis a = rotary();
  for (int reset : {0, 1, 2, 3}) {
    a.setReset(reset);
    EXPECT_EQ(reset, a.getReset());
  }
  EXPECT_EQ(L"Invalid reset behavior.", scriptFailure([&] { a.setReset(4); }));
  EXPECT_EQ(L"Invalid reset behavior.", scriptFailure([&] { a.setReset(-1); }));
  EXPECT_EQ(3, a.getReset());
}

TEST(PostAxis, CyclicAndTCPNeedARotationalAxis) {
  Axis a = linearX();
  EXPECT_EQ(L"Actuator must be rotational.", scriptFailure([&] { a.setCyclic(true); }));
  EXPECT_EQ(L"Actuator must be rotational.", scriptFailure([&] { a.setTCPEnabled(true); }));
  EXPECT_FALSE(a.isCyclic());
  EXPECT_FALSE(a.isTCPEnabled());
}

TEST(PostAxis, IsCyclicForAnEnabledRotationalAxisWithoutRangeOrWithTheFlag) {
  Axis a = rotary();
  EXPECT_TRUE(a.isCyclic());
  a.setRange(turns(0, kTwoPi));
  EXPECT_FALSE(a.isCyclic());
  a.setCyclic(true);
  EXPECT_TRUE(a.isCyclic());
  a.setCoordinate(-1);
  EXPECT_FALSE(a.isCyclic());
}

TEST(PostAxis, TCPFollowsTheFlagOnARotationalAxis) {
  Axis a = rotary();
  EXPECT_TRUE(a.isTCPEnabled());
  a.setTCPEnabled(false);
  EXPECT_FALSE(a.isTCPEnabled());
}

// Coordinates and names.

TEST(PostAxis, GetCoordinateIsMinusOneForADisabledAxisGetCoordinate2IsAsStored) {
  Axis a = rotary();
  a.setAxis(Vector());
  EXPECT_EQ(-1, a.getCoordinate());
  EXPECT_EQ(2, a.getCoordinate2());
  EXPECT_EQ(0.0, a.getCoordinateOfVector(Vector(1, 2, 3)));
  a.setAxis(Vector(0, 0, 1));
  EXPECT_EQ(2, a.getCoordinate());
  EXPECT_EQ(3.0, a.getCoordinateOfVector(Vector(1, 2, 3)));
  a.setCoordinate(0);
  EXPECT_EQ(1.0, a.getCoordinateOfVector(Vector(1, 2, 3)));
}

TEST(PostAxis, FallbackNamesFollowActuatorAndCoordinate) {
  Axis a = linearX();
  for (int c : {0, 1, 2}) {
    a.setCoordinate(c);
    a.setActuator(Axis::LINEAR);
    EXPECT_EQ(std::wstring(1, L"XYZ"[c]), a.getNameFallbackOnly());
    a.setActuator(Axis::ROTATIONAL);
    EXPECT_EQ(std::wstring(1, L"ABC"[c]), a.getNameFallbackOnly());
  }
}

TEST(PostAxis, ADisabledRotationalAxisAnswersZ) {
  Axis const a;
  EXPECT_EQ(L"Z", a.getNameFallbackOnly());
  EXPECT_EQ(L"Z", a.getNameFallback());
  EXPECT_EQ("Z", a.getNameFallbackUTF8());
}

TEST(PostAxis, ADisabledLinearAxisHasNoFallbackLetter) {
  Axis a;
  a.setActuator(Axis::LINEAR);
  EXPECT_EQ(L"", a.getNameFallbackOnly());
  EXPECT_EQ("", a.getNameFallbackOnlyUTF8());
}

TEST(PostAxis, TheNameComesBeforeTheFallback) {
  Axis a = rotary();
  EXPECT_EQ(L"C", a.getNameFallback());
  a.setName(L"Dreh\u00e4");
  EXPECT_EQ(L"Dreh\u00e4", a.getName());
  EXPECT_EQ(L"Dreh\u00e4", a.getNameFallback());
  EXPECT_EQ("Dreh\xC3\xA4", a.getNameFallbackUTF8());
  EXPECT_EQ(L"C", a.getNameFallbackOnly());
  EXPECT_EQ("C", a.getNameFallbackOnlyUTF8());
}

TEST(PostAxis, MachinePartId) {
  Axis a = rotary();
  a.setMachinePartId(Orvo::MachinePartId("table_c"));
  EXPECT_EQ(Orvo::MachinePartId("table_c"), a.getMachinePartId());
}

// Units.

TEST(PostAxis, ALinearAxisMapsPositionsResolutionAndFeedsThroughTheLengthFactors) {
  Axis a = linearX();
  a.setInchMode(true);
  a.setOffset(Vector(1, 2, 0));
  a.setHomePosition(1);
  a.setDisplacement(2);
  a.setToolChangePosition(-1);
  a.setResolution(0.5);
  a.setMaximumFeed(10);
  a.setRapidFeed(100);
  EXPECT_TRUE(a.hasHomePosition());
  EXPECT_TRUE(a.hasToolChangePosition());
  EXPECT_EQ(kInchToMm * kMmToInch, a.getHomePosition());
  a.setInchMode(false);
  expectVector(a.getOffset(), 25.4, 50.8, 0);
  EXPECT_EQ(25.4, a.getHomePosition());
  EXPECT_EQ(50.8, a.getDisplacement());
  EXPECT_EQ(-25.4, a.getToolChangePosition());
  EXPECT_EQ(12.7, a.getResolution());
  EXPECT_EQ(254.0, a.getMaximumFeed());
  EXPECT_EQ(2540.0, a.getRapidFeed());
}

TEST(PostAxis, ARotationalAxisIsNeverRescaled) {
  Axis a = rotary();
  a.setInchMode(true);
  a.setOffset(Vector(1, 2, 3));
  a.setHomePosition(0.5);
  a.setDisplacement(0.25);
  a.setToolChangePosition(1.5);
  a.setResolution(0.01);
  a.setMaximumFeed(10);
  a.setRapidFeed(20);
  a.setInchMode(false);
  expectVector(a.getOffset(), 1, 2, 3);
  EXPECT_EQ(0.5, a.getHomePosition());
  EXPECT_EQ(0.25, a.getDisplacement());
  EXPECT_EQ(1.5, a.getToolChangePosition());
  EXPECT_EQ(0.01, a.getResolution());
  EXPECT_EQ(10.0, a.getMaximumFeed());
  EXPECT_EQ(20.0, a.getRapidFeed());
}

// Rotation.

TEST(PostAxis, GetAxisRotationTurnsAboutTheEffectiveAxis) {
  Axis const head = rotary();  // effective axis -Z
  Matrix const m = head.getAxisRotation(kPi / 2);
  // A quarter turn about -Z takes +X to -Y.
  EXPECT_NEAR(0.0, m[0][0], 1e-15);
  EXPECT_NEAR(-1.0, m[1][0], 1e-15);
  EXPECT_NEAR(0.0, m[2][0], 1e-15);
  EXPECT_NEAR(1.0, m[2][2], 1e-15);
  EXPECT_TRUE(linearX().getAxisRotation(1).isIdentity());
}

// Range and resolution.

TEST(PostAxis, IsSupportedWithoutRangeAlwaysWithOneWithin1eMinus6) {
  EXPECT_TRUE(rotary().isSupported(1e9));
  Axis const a = rotary(turns(0, 1));
  EXPECT_TRUE(a.isSupported(0.5));
  EXPECT_TRUE(a.isSupported(1 + 0.9e-6));
  EXPECT_FALSE(a.isSupported(1 + 1.1e-6));
}

TEST(PostAxis, IsSupportedAndClampMapALinearValueFirst) {
  Axis a = linearX();
  a.setRange(Range(0, 25.4, Range::LINEAR));
  a.setInchMode(true);
  EXPECT_TRUE(a.isSupported(1));
  EXPECT_FALSE(a.isSupported(1.01));
  // Clamped to 25.4 mm, given back in inches.
  EXPECT_EQ(25.4 * kMmToInch, a.clamp(2));
  EXPECT_EQ(12.7 * kMmToInch, a.clamp(0.5));  // 0.5 inches there and back
}

TEST(PostAxis, ClampLeavesAValueWithoutRange) {
  EXPECT_EQ(7.0, rotary().clamp(7));
  EXPECT_EQ(1.0, rotary(turns(-1, 1)).clamp(7));
  EXPECT_EQ(-1.0, rotary(turns(-1, 1)).clamp(-7));
}

TEST(PostAxis, ClampToResolutionRoundsHalvesAwayFromZero) {
  Axis a = rotary();
  a.setResolution(0.5);
  EXPECT_EQ(1.5, a.clampToResolution(1.25));
  EXPECT_EQ(-1.5, a.clampToResolution(-1.25));
  EXPECT_EQ(1.0, a.clampToResolution(1.2));
}

TEST(PostAxis, AZeroResolutionLeavesClampToResolutionTheIdentityInInternalUnitsInInchModeItsResultIsMillimetres) {
  Axis a = linearX();
  EXPECT_EQ(1.2345, a.clampToResolution(1.2345));
  a.setInchMode(true);
  EXPECT_EQ(25.4, a.clampToResolution(1));
  a.setResolution(0.5);  // 12.7 mm
  EXPECT_EQ(12.7 * 2, a.clampToResolution(1));
}

TEST(PostAxis, GetResolutionErrorIsTheValueLessItsRounding) {
  Axis a = rotary();
  EXPECT_EQ(0.0, a.getResolutionError(1.3));
  a.setResolution(0.5);
  EXPECT_EQ(1.3 - 1.5, a.getResolutionError(1.3));
  EXPECT_EQ(0.0, a.getResolutionError(2.5));
}

// Remapping.

TEST(PostAxis, RemapOperationsRefuseADisabledOrLinearAxis) {
  Axis const disabled;
  Axis const linear = linearX();
  EXPECT_EQ(L"Axis.remapToRange() not allowed on invalid axis.", scriptFailure([&] { disabled.remapToRange(1); }));
  EXPECT_EQ(L"Axis.remapToRange() requires rotational actuator.", scriptFailure([&] { linear.remapToRange(1); }));
  EXPECT_EQ(L"Axis.remapToRange2() not allowed on invalid axis.",
            scriptFailure([&] { disabled.remapToRange2(1, 0); }));
  EXPECT_EQ(L"Axis.remapToRange2() requires rotational actuator.",
            scriptFailure([&] { linear.remapToRange2(1, 0); }));
  EXPECT_EQ(L"Axis.remapToRange3() not allowed on invalid axis.",
            scriptFailure([&] { disabled.remapToRange3(1, 0); }));
  EXPECT_EQ(L"Axis.remapToRange3() requires rotational actuator.",
            scriptFailure([&] { linear.remapToRange3(1, 0); }));
  EXPECT_EQ(L"Axis.reduce() not allowed on invalid axis.", scriptFailure([&] { disabled.reduce(1); }));
  EXPECT_EQ(L"Axis.reduce() requires rotational actuator.", scriptFailure([&] { linear.reduce(1); }));
  EXPECT_EQ(1.0, disabled.remapToRangeNoException(1));
  EXPECT_EQ(1.0, linear.remapToRangeNoException(1));
}

TEST(PostAxis, RemapToRangeBringsAValueInByWholeTurns) {
  Axis const a = rotary(turns(0, kTwoPi));
  EXPECT_EQ(7 - kTwoPi, a.remapToRange(7));
  EXPECT_EQ(-1 + kTwoPi, a.remapToRange(-1));
  EXPECT_EQ(3.0, a.remapToRange(3));
  EXPECT_EQ(100.0, rotary().remapToRange(100));
}

TEST(PostAxis, RemapToRangeFailsWhenNoTurnFits) {
  Axis const a = rotary(turns(0, 1));
  EXPECT_EQ(L"Rotation is not possible for axis.", scriptFailure([&] { a.remapToRange(3); }));
  EXPECT_EQ(3.0, a.remapToRangeNoException(3));
}

TEST(PostAxis, RemapToRangeOnAnAggregateAxisReturnsItsInputEvenOutsideTheRange) {
  Axis const a = rotary(turns(1, 1));
  ASSERT_TRUE(a.isAggregate());
  EXPECT_EQ(5.0, a.remapToRange(5));
  EXPECT_EQ(1.0 + kTwoPi, a.remapToRange(1.0 + kTwoPi));
  EXPECT_EQ(5.0, a.remapToRangeNoException(5));
}

TEST(PostAxis, RemapToRangeOfMinusOneWithAPreferenceOfPlusOneAndARangeOfMinusPiToTwoPiYieldsTwoPiMinusOne) {
  Axis a = rotary(turns(-kPi, kTwoPi));
  a.setPreference(1);
  EXPECT_EQ(kTwoPi - 1, a.remapToRange(-1));
  EXPECT_EQ(kTwoPi - 1, a.remapToRangeNoException(-1));
}

TEST(PostAxis, ANegativePreferenceTakesTheTurnBelowWhereTheRangeAllows) {
  Axis a = rotary(turns(-kTwoPi, kPi));
  a.setPreference(-1);
  EXPECT_EQ(1 - kTwoPi, a.remapToRange(1));
  a.setRange(turns(-1, kPi));  // a turn below is outside
  EXPECT_EQ(1.0, a.remapToRange(1));
  a.setRange(Range());  // without a range every turn is allowed
  EXPECT_EQ(1 - kTwoPi, a.remapToRange(1));
  EXPECT_EQ(-1.0, a.remapToRange(-1));
}

TEST(PostAxis, RemapToRange2TakesTheTurnNearestTheOrigin) {
  Axis const a = rotary(turns(0, 20));
  // atOrAbove(-1, 12 - pi) is two turns up, and that is at or below 12 + pi.
  EXPECT_EQ(-1 + kTwoPi + kTwoPi, a.remapToRange2(-1, 12));
  EXPECT_EQ(-1 + kTwoPi, a.remapToRange(-1));
  EXPECT_EQ(5.0, a.remapToRange2(5, 12));  // supported as it is
  EXPECT_EQ(L"Rotation is not possible for axis.",
            scriptFailure([&] { rotary(turns(0, 1)).remapToRange2(3, 3); }));
}

TEST(PostAxis, RemapToRange2DoesNotTreatAnAggregateAxisApart) {
  Axis const a = rotary(turns(1, 1));
  EXPECT_NEAR(1.0, a.remapToRange2(1 + kTwoPi, 1), 1e-14);
}

TEST(PostAxis, RemapToRange2AppliesThePreference) {
  Axis a = rotary(turns(-kPi, kTwoPi));
  a.setPreference(1);
  EXPECT_EQ(kTwoPi - 1, a.remapToRange2(-1, -1));
}

TEST(PostAxis, RemapToRange3NeverFailsOnAValueTheRangeExcludesItReturnsItsInput) {
  Axis const a = rotary(turns(0, 1));
  EXPECT_EQ(3.0, a.remapToRange3(3, 0));
  EXPECT_EQ(-2.0, a.remapToRange3(-2, 5));
}

TEST(PostAxis, RemapToRange3TakesTheTurnNearestTheOriginWithoutPreference) {
  Axis a = rotary(turns(-kPi, kTwoPi));
  a.setPreference(1);
  EXPECT_EQ(-1.0, a.remapToRange3(-1, 0));
  EXPECT_EQ(-1 + kTwoPi, a.remapToRange3(-1, 5));
  // Without a range the axis counts as cyclic and moves too.
  EXPECT_EQ(-1 + kTwoPi + kTwoPi, rotary().remapToRange3(-1, 12));
}

// Reduce.

TEST(PostAxis, ReduceOf7OnACyclicAxisWithoutRangeYields7MinusTwoPi) {
  Axis const a = rotary();
  ASSERT_TRUE(a.isCyclic());
  EXPECT_EQ(7 - kTwoPi, a.reduce(7));
}

TEST(PostAxis, ReduceOnAnAxisLimitedTo0ToTwoPiWithValue3Point5Yields3Point5) {
  EXPECT_EQ(3.5, rotary(turns(0, kTwoPi)).reduce(3.5));
}

TEST(PostAxis, ReduceBringsAnAngleIntoMinusPiToPi) {
  Axis const a = rotary();
  EXPECT_EQ(-7 + kTwoPi, a.reduce(-7));
  EXPECT_EQ(kPi, a.reduce(kPi));      // pi itself stays
  EXPECT_EQ(kPi, a.reduce(-kPi));     // -pi goes up a turn
  EXPECT_EQ(1.0, a.reduce(1));
  EXPECT_EQ(20 - 3 * kTwoPi, a.reduce(20));
  EXPECT_EQ(-20 + 3 * kTwoPi, a.reduce(-20));
}

TEST(PostAxis, ReduceStopsWhereTheRangeRefusesTheNextTurn) {
  Axis const a = rotary(turns(3, 10));
  EXPECT_EQ(9.5 - kTwoPi, a.reduce(9.5));
}

TEST(PostAxis, ReduceSnapsTheResultToARangeEnd) {
  // An aggregate axis hands the value on unchanged; a value just beside its
  // point snaps to it.
  EXPECT_EQ(1.0, rotary(turns(1, 1)).reduce(1 + 5e-6));
}

TEST(PostAxis, ReduceOfAFarValueWithoutRange) {
  Axis const a = rotary();
  double const r = a.reduce(1e9);
  EXPECT_GT(r, -kPi);
  EXPECT_LE(r, kPi);
  double const turnsMoved = (1e9 - r) / kTwoPi;
  EXPECT_NEAR(std::round(turnsMoved), turnsMoved, 1e-6);
  double const infinity = std::numeric_limits<double>::infinity();
  EXPECT_EQ(infinity, a.reduce(infinity));
  EXPECT_TRUE(std::isnan(a.reduce(std::numeric_limits<double>::quiet_NaN())));
}

TEST(PostAxis, ReduceFailsWhereRemapToRangeFails) {
  EXPECT_EQ(L"Rotation is not possible for axis.", scriptFailure([&] { rotary(turns(0, 1)).reduce(3); }));
}

// Made from a machine definition.

// Filled in place: a configuration is copied only with a CopyTag.
void configure(machine::AxisConfiguration& c) {
  c.setMaxNormalSpeed(Orvo::Quantity::Speed(3600));
  c.setMaxRapidSpeed(Orvo::Quantity::Speed(7200));
  c.setWhenToReset(machine::ResetAxisPreference(machine::ResetAxisValue::ON_REWIND));
  c.setPreference(machine::AnglePreference(machine::AnglePreferenceValue::NEGATIVE));
  c.setTCPEnabled(false);
  c.setName(Orvo::AxisName("C1"));
  c.setHome(Orvo::AxisValue(20));
}

TEST(PostAxis, CreateFromALinearHeadAxisDefinition) {
  machine::LinearAxisDefinition const d(machine::ControlType::DRIVEN, 0, 5, Orvo::AxisName("Y"), Orvo::AxisValue(0.01),
                                        Orvo::Vector3D(0, 1, 0), Orvo::AxisValue(-100), Orvo::AxisValue(200));
  Axis const a = Axis::createFromAxisDefinition(d, nullptr, false, Orvo::MachinePartId("y"));
  EXPECT_TRUE(a.isEnabled());
  EXPECT_TRUE(a.isLinear());
  EXPECT_TRUE(a.isHead());
  expectVector(a.getAxis(), 0, 1, 0);
  expectVector(a.getEffectiveAxis(), 0, -1, 0);
  EXPECT_EQ(1, a.getCoordinate());
  EXPECT_EQ(-100.0, a.getRange().getMinimum());
  EXPECT_EQ(200.0, a.getRange().getMaximum());
  EXPECT_EQ(Range::LINEAR, a.getRange().getActuator());
  EXPECT_EQ(0.01, a.getResolution());
  expectVector(a.getOffset(), 0, 0, 0);
  EXPECT_EQ(5.0, a.getHomePosition());
  EXPECT_FALSE(a.hasHomePosition());
  EXPECT_EQ(5.0, a.getToolChangePosition());  // the home, as the runtime axis has it
  EXPECT_TRUE(a.hasToolChangePosition());
  EXPECT_EQ(L"Y", a.getName());
  EXPECT_EQ(Orvo::MachinePartId("y"), a.getMachinePartId());
  EXPECT_EQ(0, a.getControlType());
  EXPECT_EQ(0.0, a.getMaximumFeed());
  EXPECT_EQ(0, a.getReset());
}

TEST(PostAxis, CreateFromALinearTableAxisReversesItsDirection) {
  machine::LinearAxisDefinition const d(machine::ControlType::MANUAL, 0, 0, std::nullopt, std::nullopt,
                                        Orvo::Vector3D(1, 0, 0), std::nullopt, std::nullopt);
  Axis const a = Axis::createFromAxisDefinition(d, nullptr, true, Orvo::MachinePartId("x"));
  expectVector(a.getAxis(), -1, 0, 0);
  expectVector(a.getEffectiveAxis(), -1, 0, 0);
  EXPECT_EQ(0, a.getCoordinate());
  EXPECT_TRUE(a.getRange().isNonRange());  // no limits
  EXPECT_EQ(0.0, a.getResolution());
  EXPECT_EQ(L"", a.getName());
  EXPECT_TRUE(a.isManual());
}

TEST(PostAxis, CreateFromARotaryTableAxisTurnsDegreesIntoRadians) {
  machine::LimitedRotaryAxisDefinition const d(machine::ControlType::DRIVEN, 0, 10, Orvo::AxisName("C"),
                                               Orvo::AxisValue(0.001), Orvo::Point3D(1, 2, 3),
                                               Orvo::Vector3D(0, 0, 1), Orvo::AxisValue(-90), Orvo::AxisValue(90));
  machine::AxisConfiguration c;
  configure(c);
  Axis const a = Axis::createFromAxisDefinition(d, &c, true, Orvo::MachinePartId("c"));
  EXPECT_TRUE(a.isEnabled());
  EXPECT_TRUE(a.isRotational());
  EXPECT_TRUE(a.isTable());
  // A rotary axis is reversed in either place; on the table it acts as it is.
  expectVector(a.getAxis(), 0, 0, -1);
  expectVector(a.getEffectiveAxis(), 0, 0, -1);
  EXPECT_EQ(2, a.getCoordinate());
  EXPECT_DOUBLE_EQ(-kPi / 2, a.getRange().getMinimum());
  EXPECT_DOUBLE_EQ(kPi / 2, a.getRange().getMaximum());
  EXPECT_EQ(Range::ROTATIONAL, a.getRange().getActuator());
  EXPECT_DOUBLE_EQ(0.001 * kPi / 180, a.getResolution());
  expectVector(a.getOffset(), 1, 2, 3);  // the point, as there is no offset
  EXPECT_DOUBLE_EQ(20 * kPi / 180, a.getHomePosition());  // the configuration's home
  EXPECT_FALSE(a.hasHomePosition());
  EXPECT_DOUBLE_EQ(10 * kPi / 180, a.getToolChangePosition());  // the definition's home
  EXPECT_TRUE(a.hasToolChangePosition());
  EXPECT_EQ(L"C1", a.getName());
  EXPECT_DOUBLE_EQ(3600 * kPi / 180, a.getMaximumFeed());
  EXPECT_DOUBLE_EQ(7200 * kPi / 180, a.getRapidFeed());
  EXPECT_EQ(2, a.getReset());
  EXPECT_EQ(-1, a.getPreference());
  EXPECT_FALSE(a.isCyclic());
  EXPECT_FALSE(a.isTCPEnabled());
}

TEST(PostAxis, CreateFromACyclicRotaryHeadAxis) {
  machine::InfiniteRotaryAxisDefinition d(machine::ControlType::DRIVEN, 0, 0, std::nullopt, std::nullopt,
                                          Orvo::Point3D(1, 2, 3), Orvo::Vector3D(0, 0, 1));
  d.setOffset(Orvo::Point3D(5, 0, 0));
  machine::AxisConfiguration c;
  c.setWrapAroundAtRange(Orvo::AxisValueRange(Orvo::AxisValue(0), Orvo::AxisValue(360)));
  c.setCoordinate(0);
  Axis const a = Axis::createFromAxisDefinition(d, &c, false, Orvo::MachinePartId("c"));
  expectVector(a.getAxis(), 0, 0, -1);
  expectVector(a.getEffectiveAxis(), 0, 0, 1);
  EXPECT_EQ(0, a.getCoordinate());  // the configuration's coordinate
  EXPECT_EQ(0.0, a.getRange().getMinimum());
  EXPECT_DOUBLE_EQ(kTwoPi, a.getRange().getMaximum());
  EXPECT_TRUE(a.isCyclic());
  EXPECT_TRUE(a.isTCPEnabled());
  expectVector(a.getOffset(), 5, 0, 0);  // the offset before the point
  EXPECT_EQ(0, a.getPreference());
}

TEST(PostAxis, CreateFindsTheCoordinateWithin1eMinus6) {
  auto const coordinateFor = [](Orvo::Vector3D const& direction) {
    machine::LinearAxisDefinition const d(machine::ControlType::DRIVEN, 0, 0, std::nullopt, std::nullopt, direction,
                                          std::nullopt, std::nullopt);
    return Axis::createFromAxisDefinition(d, nullptr, false, Orvo::MachinePartId("p")).getCoordinate2();
  };
  // Normalised, 1e-3 aside leaves x 5e-7 short of 1, and 2e-3 leaves it 2e-6 short.
  EXPECT_EQ(0, coordinateFor(Orvo::Vector3D(1, 1e-3, 0)));
  EXPECT_EQ(-1, coordinateFor(Orvo::Vector3D(1, 2e-3, 0)));
  EXPECT_EQ(2, coordinateFor(Orvo::Vector3D(0, 0, -1)));
  EXPECT_EQ(-1, coordinateFor(Orvo::Vector3D(0.6, 0.8, 0)));
}

}  // namespace
