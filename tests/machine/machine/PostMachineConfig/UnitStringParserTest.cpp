// Numbers with units read from wide text and from UTF-8: the same status and
// the same value to the bit, for every unit word of every kind and for the
// odd forms; and the values themselves, worked out by hand.

#include "machine/machine/PostMachineConfig/UnitStringParser.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "util/utility/Messages.h"

using com::vantora::post::UnitStringParser;

namespace {

constexpr UnitStringParser::Kind kKinds[] = {
    UnitStringParser::SPATIAL, UnitStringParser::ANGULAR, UnitStringParser::SPATIAL_FEEDRATE,
    UnitStringParser::ANGULAR_FEEDRATE, UnitStringParser::POWER, UnitStringParser::TIME,
    UnitStringParser::WEIGHT, UnitStringParser::SPINDLE_SPEED,
};

std::uint64_t bitsOf(double value) {
  std::uint64_t bits = 0;
  std::memcpy(&bits, &value, sizeof bits);
  return bits;
}

struct Read {
  UnitStringParser::Status status;
  double value;
};

Read readWide(UnitStringParser::Kind kind, std::wstring const& text) {
  double value = -12345;  // left alone unless the read succeeds
  UnitStringParser::Status const status = UnitStringParser::parse(kind, std::wstring_view(text), value);
  return {status, value};
}

Read readUtf8(UnitStringParser::Kind kind, std::string const& text) {
  double value = -12345;
  UnitStringParser::Status const status = UnitStringParser::parse(kind, std::string_view(text), value);
  return {status, value};
}

// Every unit word of every kind, the compound ones with every divisor, some
// words of other kinds, and numbers in every form, alone and with units.
std::vector<std::string> table() {
  std::vector<std::string> const units = {
      "", "nm", "um", "mm", "cm", "m", "in", "yd", "mil", "thou", "ft", "rad", "deg", "grad", "rpm", "MW",
      "kW", "W", "hp", "s", "min", "h", "kg", "g", "mg", "t", "oz", "lb", "MM", "Mm", "mm/", "/min", "/",
      "mm/min/s", "inch", "e", "e5", "x",
  };
  std::vector<std::string> const compoundFirst = {"nm", "um", "mm", "cm", "m", "in", "yd", "mil", "thou",
                                                  "ft", "rad", "deg", "grad", "kg", "rpm"};
  std::vector<std::string> const divisors = {"s", "min", "h", "ms", ""};
  std::vector<std::string> const numbers = {
      "0", "-0", "1", "10", "+10", "-10", "0.1", ".5", "5.", "-.5", "+.5", "1e3", "1E3", "1e-3", "1e+3",
      "2.5e2", "1e", "1e+", "1em", "1e308", "1e309", "-1e309", "1e-400", "123456789012345678901234567890",
      "0.30000000000000004", "4.9406564584124654e-324",
  };
  std::vector<std::string> texts;
  for (std::string const& number : numbers) {
    for (std::string const& unit : units) texts.push_back(number + unit);
    for (std::string const& first : compoundFirst)
      for (std::string const& divisor : divisors) texts.push_back(number + first + "/" + divisor);
  }
  // Spaces: ASCII spaces of every kind around the text, and inside it.
  for (std::string const around : {" ", "\t", "\n", "\v", "\f", "\r", "  \t "}) {
    texts.push_back(around + "10mm");
    texts.push_back("10mm" + around);
    texts.push_back(around + "10" + around);
    texts.push_back("10" + around + "mm");
    texts.push_back(around + "1.5in/min" + around);
  }
  // Not numbers, and things left over.
  for (std::string const text : {"", " ", "mm", "+", "-", ".", "+-1", "--1", "1..2", "1 2", "10mm x", "nan",
                                  "inf", "-inf", "0x10", "1,5", "1_000", "10mm mm", "10 rpm", "\u00b5m"})
    texts.push_back(text);
  // Outside ASCII: the unit, the number, the spaces around it (a no-break
  // space is not a space), and bytes that are no UTF-8 at all.
  for (std::string const text :
       {"10\u00b5m", "10\u03bcm", "\u0661\u0660mm", "10mm\u00a0", "\u00a010mm", "10\u00b0", "10deg\u00b0",
        "1\u20060", "\u30001", "10\xff", "\xc0\xae" "5", "1\xe2\x80", "10\xed\xa0\x80mm", "10m\xc3\xa9/min",
        "10mm/\u00b5s", "\xf0\x9f\x98\x80"})
    texts.push_back(text);
  return texts;
}

TEST(UnitStringParser, NarrowAndWideReadsAreTheSameToTheBitForEveryUnitAndForm) {
  std::size_t read = 0;
  std::size_t compared = 0;
  for (std::string const& text : table()) {
    std::wstring const wide = Orvo::Messages::utf8ToWide(text);
    for (UnitStringParser::Kind const kind : kKinds) {
      Read const narrow = readUtf8(kind, text);
      Read const widened = readWide(kind, wide);
      ASSERT_EQ(narrow.status, widened.status) << "kind " << kind << ", text '" << text << "'";
      ASSERT_EQ(bitsOf(narrow.value), bitsOf(widened.value)) << "kind " << kind << ", text '" << text << "'";
      if (narrow.status == UnitStringParser::OK) ++read;
      ++compared;
    }
  }
  // The table is not all failures: each unit fits some kind, and most
  // numbers are numbers.
  EXPECT_GT(read, 1000u);
  EXPECT_GT(compared, 20000u);
}

TEST(UnitStringParser, LengthsInMillimetres) {
  struct Case {
    char const* text;
    double expected;
  };
  // Each factor of the length table, times the number.
  Case const cases[] = {
      {"2nm", 2e-6}, {"2um", 0.002}, {"2mm", 2}, {"2cm", 20}, {"2m", 2000}, {"2in", 50.8}, {"2yd", 1828.8},
      {"2mil", 0.0508}, {"2thou", 0.0508}, {"1ft", 304.79999999999995}, {"2", 2}, {" +1.5e1mm\t", 15},
  };
  for (Case const& c : cases) {
    Read const r = readUtf8(UnitStringParser::SPATIAL, c.text);
    EXPECT_EQ(UnitStringParser::OK, r.status) << c.text;
    EXPECT_DOUBLE_EQ(c.expected, r.value) << c.text;
  }
}

TEST(UnitStringParser, AnglesSpeedsPowerTimeAndWeight) {
  constexpr double kDegree = 0.017453292519943295;
  constexpr double kPi = 3.141592653589793;
  EXPECT_DOUBLE_EQ(kPi, readUtf8(UnitStringParser::ANGULAR, "180").value);
  EXPECT_DOUBLE_EQ(2.0, readUtf8(UnitStringParser::ANGULAR, "2rad").value);
  EXPECT_DOUBLE_EQ(90 * kDegree, readUtf8(UnitStringParser::ANGULAR, "90deg").value);
  EXPECT_DOUBLE_EQ(90.0, readUtf8(UnitStringParser::ANGULAR, "100grad").value);
  EXPECT_DOUBLE_EQ(60.0, readUtf8(UnitStringParser::SPATIAL_FEEDRATE, "1mm/s").value);
  EXPECT_DOUBLE_EQ(30000.0, readUtf8(UnitStringParser::SPATIAL_FEEDRATE, "30m/min").value);
  EXPECT_DOUBLE_EQ(25.4 / 60, readUtf8(UnitStringParser::SPATIAL_FEEDRATE, "1in/h").value);
  EXPECT_DOUBLE_EQ(20 * kPi, readUtf8(UnitStringParser::ANGULAR_FEEDRATE, "10rpm").value);
  EXPECT_DOUBLE_EQ(3600 * kDegree, readUtf8(UnitStringParser::ANGULAR_FEEDRATE, "3600").value);
  EXPECT_DOUBLE_EQ(60 * kDegree * 60, readUtf8(UnitStringParser::ANGULAR_FEEDRATE, "60deg/s").value);
  EXPECT_DOUBLE_EQ(25000.0, readUtf8(UnitStringParser::POWER, "25kW").value);
  EXPECT_DOUBLE_EQ(2000000.0, readUtf8(UnitStringParser::POWER, "2MW").value);
  EXPECT_DOUBLE_EQ(1492.0, readUtf8(UnitStringParser::POWER, "2hp").value);
  EXPECT_DOUBLE_EQ(7200.0, readUtf8(UnitStringParser::TIME, "2h").value);
  EXPECT_DOUBLE_EQ(120.0, readUtf8(UnitStringParser::TIME, "2min").value);
  EXPECT_DOUBLE_EQ(7500.0, readUtf8(UnitStringParser::WEIGHT, "7.5t").value);
  EXPECT_DOUBLE_EQ(0.90718474, readUtf8(UnitStringParser::WEIGHT, "2lb").value);
  EXPECT_DOUBLE_EQ(0.05669904625, readUtf8(UnitStringParser::WEIGHT, "2oz").value);
  EXPECT_DOUBLE_EQ(18000.0, readUtf8(UnitStringParser::SPINDLE_SPEED, "18000rpm").value);
}

TEST(UnitStringParser, AStrayWordWinsOverABadUnitAndAnUnknownUnitIsItsOwnFailure) {
  EXPECT_EQ(UnitStringParser::INVALID_TEXT, readUtf8(UnitStringParser::SPATIAL, "10parsec x").status);
  EXPECT_EQ(UnitStringParser::INVALID_UNIT, readUtf8(UnitStringParser::SPATIAL, "10parsec").status);
  EXPECT_EQ(UnitStringParser::INVALID_TEXT, readUtf8(UnitStringParser::SPATIAL, "10 mm").status);
  EXPECT_EQ(UnitStringParser::INVALID_TEXT, readUtf8(UnitStringParser::SPATIAL, "mm").status);
  // A feed needs the "/" of a compound unit; the spindle speed knows "rpm" alone.
  EXPECT_EQ(UnitStringParser::INVALID_UNIT, readUtf8(UnitStringParser::SPATIAL_FEEDRATE, "10mm").status);
  EXPECT_EQ(UnitStringParser::INVALID_UNIT, readUtf8(UnitStringParser::SPINDLE_SPEED, "10rad/min").status);
  // Outside ASCII nothing is a unit.
  EXPECT_EQ(UnitStringParser::INVALID_UNIT, readUtf8(UnitStringParser::SPATIAL, "10\u00b5m").status);
}

TEST(UnitStringParser, AFailedReadLeavesTheValueAlone) {
  EXPECT_EQ(-12345.0, readUtf8(UnitStringParser::SPATIAL, "10parsec").value);
  EXPECT_EQ(-12345.0, readWide(UnitStringParser::SPATIAL, L"x").value);
}

}  // namespace
