#include "util/utility/WideStringParser.h"

#include "util/utility/Messages.h"

#include <gtest/gtest.h>

#include <charconv>
#include <clocale>
#include <cstdint>
#include <cwchar>
#include <cstring>
#include <string>
#include <string_view>

namespace {

using Orvo::WideStringParser;

TEST(WideStringParser, ReadsANumberAndTheUnitThatFollowsIt) {
  WideStringParser p(L"10mm");
  double value = 0;
  ASSERT_TRUE(p.readNumber(value));
  EXPECT_EQ(10.0, value);
  EXPECT_FALSE(p.isAtEnd());
  EXPECT_FALSE(p.isAtSpace());
  EXPECT_EQ(L"mm", p.readWord());
  EXPECT_TRUE(p.isAtEnd());
}

TEST(WideStringParser, AWordEndsAtTheNextSpace) {
  WideStringParser p(L"in/min rest");
  EXPECT_EQ(L"in/min", p.readWord());
  EXPECT_TRUE(p.isAtSpace());
  p.skipSpaces();
  EXPECT_EQ(4u, p.getRemainder().size());
  EXPECT_EQ(L"rest", p.readWord());
  EXPECT_TRUE(p.isAtEnd());
  EXPECT_EQ(L"", p.readWord());
}

TEST(WideStringParser, SkipsEveryAsciiSpaceKindButNothingElse) {
  WideStringParser p(L" \t\n\v\f\rx\u00a0");
  p.skipSpaces();
  EXPECT_EQ(6u, p.getPosition());
  EXPECT_EQ(L"x\u00a0", p.readWord());  // a no-break space is no space here
}

TEST(WideStringParser, NumberForms) {
  struct Case {
    wchar_t const* text;
    double value;
    std::size_t length;
  };
  Case const cases[] = {
      {L"0", 0.0, 1},           {L"-2.5", -2.5, 4},     {L"+3", 3.0, 2},       {L".5", 0.5, 2},
      {L"5.", 5.0, 2},          {L"1e3", 1000.0, 3},    {L"1E-3", 0.001, 4},   {L"2.5e+2x", 250.0, 6},
      {L"1em", 1.0, 1},         {L"1e", 1.0, 1},        {L"1e+", 1.0, 1},      {L"7 8", 7.0, 1},
      {L"0.1", 0.1, 3},         {L"-0", -0.0, 2},       {L"12.5.3", 12.5, 4},
  };
  for (Case const& c : cases) {
    WideStringParser p(c.text);
    double value = 99;
    ASSERT_TRUE(p.readNumber(value)) << std::string(c.text, c.text + std::wcslen(c.text));
    EXPECT_EQ(c.value, value);
    EXPECT_EQ(c.length, p.getPosition());
  }
}

TEST(WideStringParser, WithoutANumberNothingMoves) {
  for (wchar_t const* text : {L"", L"mm", L" 1", L".", L"-", L"+.", L"e5", L"inf", L"nan", L"0x1p3"}) {
    WideStringParser p(text);
    double value = 99;
    bool const read = p.readNumber(value);
    if (std::wstring(text) == L"0x1p3") {
      // Only the 0 is a number: hexadecimal is not read.
      EXPECT_TRUE(read);
      EXPECT_EQ(0.0, value);
      EXPECT_EQ(L"x1p3", p.getRemainder());
      continue;
    }
    EXPECT_FALSE(read);
    EXPECT_EQ(99.0, value);
    EXPECT_EQ(0u, p.getPosition());
  }
}

TEST(WideStringParser, ANumberBeyondADoubleIsNoNumber) {
  WideStringParser p(L"1e400");
  double value = 99;
  EXPECT_FALSE(p.readNumber(value));
  EXPECT_EQ(99.0, value);
  EXPECT_EQ(0u, p.getPosition());
}

TEST(WideStringParser, NumbersAreReadTheSameInEveryLocale) {
  // A locale with a decimal comma, where one is installed.
  char const* const before = std::setlocale(LC_NUMERIC, nullptr);
  std::string const saved = before ? before : "C";
  std::setlocale(LC_NUMERIC, "de_DE.UTF-8");
  WideStringParser p(L"2.5,1");
  double value = 0;
  bool const read = p.readNumber(value);
  std::setlocale(LC_NUMERIC, saved.c_str());
  ASSERT_TRUE(read);
  EXPECT_EQ(2.5, value);
  EXPECT_EQ(L",1", p.getRemainder());
}

TEST(WideStringParser, NarrowTextReadsTheSameNumbersToTheBitAndStopsAtTheSamePlace) {
  for (char const* text : {"0", "-0", "+1", "10mm", ".5", "5.", "-.5e1x", "1e", "1e+", "1em", "1E-3", "2.5e+2",
                           "1e308", "1e309", "1e-400", "4.9406564584124654e-324", "0.30000000000000004",
                           "123456789012345678901234567890123456789012345678901234567890123456789012345",
                           "+", "-", ".", "e5", " 1", "x", "", "1\xC2\xB5m", "\xD9\xA1" "1", "7\xFF"}) {
    std::string const narrow = text;
    std::wstring const wide = Orvo::Messages::utf8ToWide(narrow);
    double fromNarrow = -1;
    double fromWide = -1;
    std::size_t narrowPosition = 0;
    std::size_t widePosition = 0;
    bool const narrowRead = WideStringParser::readNumber(std::string_view(narrow), narrowPosition, fromNarrow);
    bool const wideRead = WideStringParser::readNumber(std::wstring_view(wide), widePosition, fromWide);
    WideStringParser parser(wide);
    double fromParser = -1;
    bool const parserRead = parser.readNumber(fromParser);
    EXPECT_EQ(narrowRead, wideRead) << text;
    EXPECT_EQ(wideRead, parserRead) << text;
    EXPECT_EQ(std::memcmp(&fromNarrow, &fromWide, sizeof fromNarrow), 0) << text;
    EXPECT_EQ(std::memcmp(&fromWide, &fromParser, sizeof fromWide), 0) << text;
    // Numbers are ASCII, so a byte and a character are the same count.
    EXPECT_EQ(narrowPosition, widePosition) << text;
    EXPECT_EQ(widePosition, parser.getPosition()) << text;
  }
  // Read from where the position says, and moved past the number only.
  std::size_t position = 3;
  double value = 0;
  ASSERT_TRUE(WideStringParser::readNumber(std::string_view("ab 2.5e1mm"), position, value));
  EXPECT_EQ(25.0, value);
  EXPECT_EQ(8u, position);
  // A number longer than any buffer still reads (the digits of 1e75).
  std::string const longNumber = "1" + std::string(75, '0');
  position = 0;
  ASSERT_TRUE(WideStringParser::readNumber(std::string_view(longNumber), position, value));
  EXPECT_EQ(1e75, value);
  EXPECT_EQ(76u, position);
}

}  // namespace

namespace {

// The value strtod-style conversion gives the whole text, independently of
// the scanner: std::from_chars, correctly rounded.
double correctlyRounded(std::string const& text) {
  std::string unsignedText = text;
  bool const negative = !text.empty() && text[0] == '-';
  if (!text.empty() && (text[0] == '-' || text[0] == '+')) unsignedText = text.substr(1);
  double value = 0;
  std::from_chars(unsignedText.data(), unsignedText.data() + unsignedText.size(), value);
  return negative ? -value : value;
}

}  // namespace

TEST(WideStringParser, ShortDecimalsReadToTheCorrectlyRoundedDouble) {
  // Decimals of up to 15 digits without an exponent take a shorter way than
  // the general conversion; every one must be the same double. The cases
  // where a quotient of two exact doubles is most easily wrong: many
  // fraction digits, values just below and above powers of ten, 15 digits.
  for (char const* text : {"0.1", "0.2", "0.3", "0.7", "1.1", "2.675", "0.001", "-0.001", "0.000000000000001",
                           "999999999999999", "99999999999999.9", "0.999999999999999", "123456.789012345",
                           "9007199254740.993", "4503599627370.497", "-400", "+30", "1.", "-0", "0.04",
                           "3600", "1000000000000000", "0.1234567890123456"}) {
    std::size_t position = 0;
    double value = -1;
    ASSERT_TRUE(WideStringParser::readNumber(std::string_view(text), position, value)) << text;
    double const expected = correctlyRounded(text);
    EXPECT_EQ(std::memcmp(&value, &expected, sizeof value), 0) << text << ": " << value << " vs " << expected;
    EXPECT_EQ(position, std::strlen(text)) << text;
  }
  // Two hundred thousand pseudo-random decimals of 1 to 15 digits, the point
  // anywhere.
  std::uint64_t state = 88172645463325252ull;
  auto next = [&state] {
    state ^= state << 13;
    state ^= state >> 7;
    state ^= state << 17;
    return state;
  };
  int mismatches = 0;
  for (int i = 0; i < 200000; ++i) {
    int const digits = 1 + static_cast<int>(next() % 15);
    int const point = static_cast<int>(next() % static_cast<std::uint64_t>(digits + 1));
    std::string text = next() % 2 ? "-" : "";
    for (int d = 0; d < digits; ++d) {
      if (d == point) text += '.';
      text += static_cast<char>('0' + next() % 10);
    }
    std::size_t position = 0;
    double value = 0;
    if (!WideStringParser::readNumber(std::string_view(text), position, value)) {
      ++mismatches;
      continue;
    }
    double const expected = correctlyRounded(text);
    if (std::memcmp(&value, &expected, sizeof value) != 0 && mismatches++ < 5) ADD_FAILURE() << text;
  }
  EXPECT_EQ(mismatches, 0);
}
