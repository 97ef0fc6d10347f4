#include "util/utility/WideStringParser.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cwchar>
#include <string>

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

}  // namespace
