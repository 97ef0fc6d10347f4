// The unit strings of MachineConfiguration: getAsSpatial and its kin.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "machine/machine/PostMachineConfig/MachineConfiguration.h"
#include "support/ScriptFailureText.h"
#include "util/utility/Messages.h"
#include "util/utility/Variant.h"

using com::vantora::post::MachineConfiguration;
using mtkit_test::scriptFailure;

namespace {

using Parser = std::function<double(std::wstring const&)>;

struct Unit {
  wchar_t const* word;
  double factor;
};

// The factors, written out here rather than taken from the code.
std::vector<Unit> const kLengths = {
    {L"nm", 1e-6}, {L"um", 0.001}, {L"mm", 1},          {L"cm", 10},        {L"m", 1000},
    {L"in", 25.4}, {L"yd", 914.4}, {L"mil", 0.0254}, {L"thou", 0.0254}, {L"ft", 304.79999999999995},
};
std::vector<Unit> const kAngles = {{L"rad", 1}, {L"deg", 0.017453292519943295}, {L"grad", 0.9}};
std::vector<Unit> const kDivisors = {{L"s", 0.016666666666666666}, {L"min", 1}, {L"h", 60}};
std::vector<Unit> const kPowers = {{L"MW", 1000000}, {L"kW", 1000}, {L"W", 1}, {L"hp", 746}};
std::vector<Unit> const kTimes = {{L"s", 1}, {L"min", 60}, {L"h", 3600}};
std::vector<Unit> const kWeights = {{L"kg", 1},    {L"g", 0.001},           {L"mg", 1e-6},
                                    {L"t", 1000}, {L"oz", 0.028349523125}, {L"lb", 0.45359237}};

/// The distance between two doubles in units in the last place.
std::int64_t ulpDistance(double a, double b) {
  if (a == b) return 0;
  auto const ordered = [](double d) {
    std::int64_t i;
    std::memcpy(&i, &d, sizeof i);
    return i < 0 ? std::numeric_limits<std::int64_t>::min() - i : i;
  };
  std::int64_t const d = ordered(a) - ordered(b);
  return d < 0 ? -d : d;
}

/// `value` as the library prints doubles for scripts and messages.
std::wstring written(double value) { return Orvo::Messages::utf8ToWide(Orvo::Variant::formatDouble(value)); }

// Edge cases.

TEST(MachineConfigurationUnits, SpatialOf1inIs25Point4FeedrateOf1mmPerSIs60AngularOf180IsPiAndSpatialOf1SpaceInFails) {
  EXPECT_EQ(25.4, MachineConfiguration::getAsSpatial(L"1in"));
  EXPECT_EQ(60.0, MachineConfiguration::getAsSpatialFeedrate(L"1mm/s"));
  EXPECT_EQ(M_PI, MachineConfiguration::getAsAngular(L"180"));
  EXPECT_EQ(L"Invalid spatial.", scriptFailure([] { MachineConfiguration::getAsSpatial(L"1 in"); }));
}

// Reading.

TEST(MachineConfigurationUnits, SpacesAroundTheWholeAreSkipped) {
  EXPECT_EQ(2540.0, MachineConfiguration::getAsSpatial(L"  100in \t"));
  EXPECT_EQ(-3.5, MachineConfiguration::getAsSpatial(L"\n-3.5"));
  EXPECT_EQ(1500.0, MachineConfiguration::getAsSpatial(L"1.5e3 "));
  EXPECT_EQ(7.0, MachineConfiguration::getAsTime(L"7"));
}

TEST(MachineConfigurationUnits, ABareNumberTakesTheDefaultUnit) {
  EXPECT_EQ(12.5, MachineConfiguration::getAsSpatial(L"12.5"));
  EXPECT_EQ(90 * 0.017453292519943295, MachineConfiguration::getAsAngular(L"90"));
  EXPECT_EQ(12.5, MachineConfiguration::getAsSpatialFeedrate(L"12.5"));
  EXPECT_EQ(360 * 0.017453292519943295, MachineConfiguration::getAsAngularFeedrate(L"360"));
  EXPECT_EQ(12.5, MachineConfiguration::getAsPower(L"12.5"));
  EXPECT_EQ(12.5, MachineConfiguration::getAsTime(L"12.5"));
  EXPECT_EQ(12.5, MachineConfiguration::getAsWeight(L"12.5"));
  EXPECT_EQ(12000.0, MachineConfiguration::getAsSpindleSpeed(L"12000"));
}

TEST(MachineConfigurationUnits, EachOperationFailsWithItsOwnTextWhenSomethingFollows) {
  struct Case {
    Parser parse;
    wchar_t const* text;
    wchar_t const* failure;
  };
  Case const cases[] = {
      {MachineConfiguration::getAsSpatial, L"1 mm", L"Invalid spatial."},
      {MachineConfiguration::getAsAngular, L"1 deg", L"Invalid angle."},
      {MachineConfiguration::getAsSpatialFeedrate, L"1 mm/min", L"Invalid feedrate."},
      {MachineConfiguration::getAsAngularFeedrate, L"1 rpm", L"Invalid angular speed."},
      {MachineConfiguration::getAsPower, L"1 kW", L"Invalid power."},
      {MachineConfiguration::getAsTime, L"1 s", L"Invalid time."},
      {MachineConfiguration::getAsWeight, L"1 kg", L"Invalid weight."},
      {MachineConfiguration::getAsSpindleSpeed, L"1 rpm", L"Invalid spindle speed."},
  };
  for (Case const& c : cases) {
    EXPECT_EQ(c.failure, scriptFailure([&] { c.parse(c.text); })) << Orvo::Messages::wideToUtf8(c.text);
    // Without a number, or with a second value, the same.
    EXPECT_EQ(c.failure, scriptFailure([&] { c.parse(L"abc"); }));
    EXPECT_EQ(c.failure, scriptFailure([&] { c.parse(L""); }));
    EXPECT_EQ(c.failure, scriptFailure([&] { c.parse(L"1 2"); }));
  }
}

TEST(MachineConfigurationUnits, StrayWordIsTheOperationsFailureEvenWithAnUnknownUnit) {
  EXPECT_EQ(L"Invalid spatial.", scriptFailure([] { MachineConfiguration::getAsSpatial(L"1furlong x"); }));
}

TEST(MachineConfigurationUnits, UnknownUnitFailsWithInvalidUnit) {
  Parser const parsers[] = {MachineConfiguration::getAsSpatial,         MachineConfiguration::getAsAngular,
                            MachineConfiguration::getAsSpatialFeedrate, MachineConfiguration::getAsAngularFeedrate,
                            MachineConfiguration::getAsPower,           MachineConfiguration::getAsTime,
                            MachineConfiguration::getAsWeight,          MachineConfiguration::getAsSpindleSpeed};
  for (auto const& parse : parsers) {
    EXPECT_EQ(L"Invalid unit.", scriptFailure([&] { parse(L"1furlong"); }));
  }
  // Units are matched exactly.
  EXPECT_EQ(L"Invalid unit.", scriptFailure([] { MachineConfiguration::getAsSpatial(L"1MM"); }));
  EXPECT_EQ(L"Invalid unit.", scriptFailure([] { MachineConfiguration::getAsPower(L"1kw"); }));
  EXPECT_EQ(L"Invalid unit.", scriptFailure([] { MachineConfiguration::getAsSpindleSpeed(L"1rps"); }));
  // A unit of another kind.
  EXPECT_EQ(L"Invalid unit.", scriptFailure([] { MachineConfiguration::getAsSpatial(L"1deg"); }));
  EXPECT_EQ(L"Invalid unit.", scriptFailure([] { MachineConfiguration::getAsAngular(L"1mm"); }));
  EXPECT_EQ(L"Invalid unit.", scriptFailure([] { MachineConfiguration::getAsTime(L"1kg"); }));
}

TEST(MachineConfigurationUnits, CompoundUnitNeedsASlashAndKnownParts) {
  EXPECT_EQ(L"Invalid unit.", scriptFailure([] { MachineConfiguration::getAsSpatialFeedrate(L"1mm"); }));
  EXPECT_EQ(L"Invalid unit.", scriptFailure([] { MachineConfiguration::getAsSpatialFeedrate(L"1mm/"); }));
  EXPECT_EQ(L"Invalid unit.", scriptFailure([] { MachineConfiguration::getAsSpatialFeedrate(L"1/min"); }));
  EXPECT_EQ(L"Invalid unit.", scriptFailure([] { MachineConfiguration::getAsSpatialFeedrate(L"1mm/sec"); }));
  EXPECT_EQ(L"Invalid unit.", scriptFailure([] { MachineConfiguration::getAsSpatialFeedrate(L"1mm/min/s"); }));
  EXPECT_EQ(L"Invalid unit.", scriptFailure([] { MachineConfiguration::getAsSpatialFeedrate(L"1deg/min"); }));
  EXPECT_EQ(L"Invalid unit.", scriptFailure([] { MachineConfiguration::getAsAngularFeedrate(L"1deg"); }));
  EXPECT_EQ(L"Invalid unit.", scriptFailure([] { MachineConfiguration::getAsAngularFeedrate(L"1mm/min"); }));
  EXPECT_EQ(L"Invalid unit.", scriptFailure([] { MachineConfiguration::getAsAngularFeedrate(L"1rpm/s"); }));
}

// Factors.

TEST(MachineConfigurationUnits, LengthFactors) {
  EXPECT_EQ(1e-6, MachineConfiguration::getAsSpatial(L"1nm"));
  EXPECT_EQ(0.001, MachineConfiguration::getAsSpatial(L"1um"));
  EXPECT_EQ(1.0, MachineConfiguration::getAsSpatial(L"1mm"));
  EXPECT_EQ(10.0, MachineConfiguration::getAsSpatial(L"1cm"));
  EXPECT_EQ(1000.0, MachineConfiguration::getAsSpatial(L"1m"));
  EXPECT_EQ(25.4, MachineConfiguration::getAsSpatial(L"1in"));
  EXPECT_EQ(914.4, MachineConfiguration::getAsSpatial(L"1yd"));
  EXPECT_EQ(0.0254, MachineConfiguration::getAsSpatial(L"1mil"));
  EXPECT_EQ(0.0254, MachineConfiguration::getAsSpatial(L"1thou"));
  // 12 times 25.4 as the double product gives it, not 304.8.
  EXPECT_EQ(304.79999999999995, MachineConfiguration::getAsSpatial(L"1ft"));
  EXPECT_NE(304.8, MachineConfiguration::getAsSpatial(L"1ft"));
}

TEST(MachineConfigurationUnits, AngleFactorsWithGradAsNinetyForAHundred) {
  EXPECT_EQ(1.0, MachineConfiguration::getAsAngular(L"1rad"));
  EXPECT_EQ(0.017453292519943295, MachineConfiguration::getAsAngular(L"1deg"));
  EXPECT_EQ(0.9, MachineConfiguration::getAsAngular(L"1grad"));
  // Not converted to radians: 100grad is 90, not pi / 2.
  EXPECT_EQ(90.0, MachineConfiguration::getAsAngular(L"100grad"));
}

TEST(MachineConfigurationUnits, SpatialFeedrateFactorsArePerMinute) {
  EXPECT_EQ(1.0 / 0.016666666666666666, MachineConfiguration::getAsSpatialFeedrate(L"1mm/s"));
  EXPECT_EQ(1.0, MachineConfiguration::getAsSpatialFeedrate(L"1mm/min"));
  EXPECT_EQ(1.0 / 60, MachineConfiguration::getAsSpatialFeedrate(L"1mm/h"));
  EXPECT_EQ(25.4, MachineConfiguration::getAsSpatialFeedrate(L"1in/min"));
  EXPECT_EQ(1000.0 / 0.016666666666666666, MachineConfiguration::getAsSpatialFeedrate(L"1m/s"));
  EXPECT_EQ(2 * 304.79999999999995 / 60, MachineConfiguration::getAsSpatialFeedrate(L"2ft/h"));
}

TEST(MachineConfigurationUnits, AngularFeedrateFactors) {
  EXPECT_EQ(2 * M_PI, MachineConfiguration::getAsAngularFeedrate(L"1rpm"));
  EXPECT_EQ(6.283185307179586, MachineConfiguration::getAsAngularFeedrate(L"1rpm"));
  EXPECT_EQ(0.017453292519943295, MachineConfiguration::getAsAngularFeedrate(L"1deg/min"));
  EXPECT_EQ(0.017453292519943295 / 0.016666666666666666, MachineConfiguration::getAsAngularFeedrate(L"1deg/s"));
  EXPECT_EQ(1.0 / 60, MachineConfiguration::getAsAngularFeedrate(L"1rad/h"));
  EXPECT_EQ(0.9, MachineConfiguration::getAsAngularFeedrate(L"1grad/min"));
}

TEST(MachineConfigurationUnits, PowerTimeWeightAndSpindleSpeedFactors) {
  EXPECT_EQ(1000000.0, MachineConfiguration::getAsPower(L"1MW"));
  EXPECT_EQ(1000.0, MachineConfiguration::getAsPower(L"1kW"));
  EXPECT_EQ(1.0, MachineConfiguration::getAsPower(L"1W"));
  EXPECT_EQ(746.0, MachineConfiguration::getAsPower(L"1hp"));
  EXPECT_EQ(1.0, MachineConfiguration::getAsTime(L"1s"));
  EXPECT_EQ(60.0, MachineConfiguration::getAsTime(L"1min"));
  EXPECT_EQ(3600.0, MachineConfiguration::getAsTime(L"1h"));
  EXPECT_EQ(1.0, MachineConfiguration::getAsWeight(L"1kg"));
  EXPECT_EQ(0.001, MachineConfiguration::getAsWeight(L"1g"));
  EXPECT_EQ(1e-6, MachineConfiguration::getAsWeight(L"1mg"));
  EXPECT_EQ(1000.0, MachineConfiguration::getAsWeight(L"1t"));
  EXPECT_EQ(0.028349523125, MachineConfiguration::getAsWeight(L"1oz"));
  EXPECT_EQ(0.45359237, MachineConfiguration::getAsWeight(L"1lb"));
  EXPECT_EQ(8000.0, MachineConfiguration::getAsSpindleSpeed(L"8000rpm"));
}

// Round trip of the library's own number text.

/// Values of every magnitude scripts meet, and a few awkward ones.
std::vector<double> sampleValues() {
  std::mt19937_64 random(20261125);
  std::uniform_real_distribution<double> mantissa(-10, 10);
  std::uniform_int_distribution<int> exponent(-12, 12);
  std::vector<double> values = {0.0, 1.0, -1.0, 0.1, 1.0 / 3, 123456.789, 1e-300, 2.5e300};
  for (int i = 0; i < 200; ++i) values.push_back(mantissa(random) * std::pow(10.0, exponent(random)));
  return values;
}

void expectRoundTrip(Parser const& parse, std::wstring const& unit, double multiplier, double divisor) {
  for (double const v : sampleValues()) {
    std::wstring const text = written(v) + unit;
    double const expected = v * multiplier / divisor;
    if (!std::isfinite(expected)) continue;
    double const got = parse(text);
    EXPECT_LE(ulpDistance(expected, got), 1) << Orvo::Messages::wideToUtf8(text) << " gave " << got
                                             << " for " << expected;
  }
}

TEST(MachineConfigurationUnitsProperty, EveryUnitWordReadsTheLibrarysNumberTextBackWithinOneUlp) {
  for (Unit const& u : kLengths) expectRoundTrip(MachineConfiguration::getAsSpatial, u.word, u.factor, 1);
  for (Unit const& u : kAngles) expectRoundTrip(MachineConfiguration::getAsAngular, u.word, u.factor, 1);
  for (Unit const& u : kPowers) expectRoundTrip(MachineConfiguration::getAsPower, u.word, u.factor, 1);
  for (Unit const& u : kTimes) expectRoundTrip(MachineConfiguration::getAsTime, u.word, u.factor, 1);
  for (Unit const& u : kWeights) expectRoundTrip(MachineConfiguration::getAsWeight, u.word, u.factor, 1);
  expectRoundTrip(MachineConfiguration::getAsSpindleSpeed, L"rpm", 1, 1);
  expectRoundTrip(MachineConfiguration::getAsAngularFeedrate, L"rpm", 2 * M_PI, 1);
  for (Unit const& d : kDivisors) {
    for (Unit const& u : kLengths) {
      expectRoundTrip(MachineConfiguration::getAsSpatialFeedrate, std::wstring(u.word) + L"/" + d.word, u.factor,
                      d.factor);
    }
    for (Unit const& u : kAngles) {
      expectRoundTrip(MachineConfiguration::getAsAngularFeedrate, std::wstring(u.word) + L"/" + d.word, u.factor,
                      d.factor);
    }
  }
}

TEST(MachineConfigurationUnitsProperty, BareNumbersReadBackWithTheirDefaultUnit) {
  expectRoundTrip(MachineConfiguration::getAsSpatial, L"", 1, 1);
  expectRoundTrip(MachineConfiguration::getAsAngular, L"", 0.017453292519943295, 1);
  expectRoundTrip(MachineConfiguration::getAsSpatialFeedrate, L"", 1, 1);
  expectRoundTrip(MachineConfiguration::getAsAngularFeedrate, L"", 0.017453292519943295, 1);
  expectRoundTrip(MachineConfiguration::getAsPower, L"", 1, 1);
  expectRoundTrip(MachineConfiguration::getAsTime, L"", 1, 1);
  expectRoundTrip(MachineConfiguration::getAsWeight, L"", 1, 1);
  expectRoundTrip(MachineConfiguration::getAsSpindleSpeed, L"", 1, 1);
}

}  // namespace
