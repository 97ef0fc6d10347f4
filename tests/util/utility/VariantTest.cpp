#include "util/utility/Variant.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <limits>

using Orvo::Variant;

TEST(Variant, DoublesPrintInShortestRoundTripForm) {
  EXPECT_EQ(Variant(0.1).getAsMessage(), L"0.1");
  EXPECT_EQ(Variant(1.0).getAsMessage(), L"1");
  EXPECT_EQ(Variant(-2.5).getAsMessage(), L"-2.5");
  EXPECT_EQ(Variant(1e-20).getAsMessage(), L"1e-20");
  EXPECT_EQ(Variant(std::numeric_limits<double>::quiet_NaN()).getAsMessage(), L"nan");
  EXPECT_EQ(Variant(-std::numeric_limits<double>::infinity()).getAsMessage(), L"-inf");
}

TEST(Variant, DoublesPrintTheSameUnderADecimalCommaLocale) {
  char const* const old = std::setlocale(LC_NUMERIC, nullptr);
  std::string const saved = old ? old : "C";
  if (!std::setlocale(LC_NUMERIC, "de_DE.UTF-8") && !std::setlocale(LC_NUMERIC, "fr_FR.UTF-8"))
    GTEST_SKIP() << "no locale with a decimal comma installed";
  EXPECT_EQ(Variant(0.5).getAsMessage(), L"0.5");
  std::setlocale(LC_NUMERIC, saved.c_str());
}

TEST(Variant, OtherKindsPrint) {
  EXPECT_EQ(Variant().getAsMessage(), L"");
  EXPECT_EQ(Variant(true).getAsMessage(), L"true");
  EXPECT_EQ(Variant(-42).getAsMessage(), L"-42");
  EXPECT_EQ(Variant(L"text").getAsMessage(), L"text");
  EXPECT_EQ(Variant(std::string("\xC3\xA9t\xC3\xA9")).getAsMessage(), L"\u00e9t\u00e9");
}

TEST(Variant, SubstitutionFillsNumberedPlaceholders) {
  EXPECT_EQ(Variant::getSubstitution(L"(%1, %2, %3)", {Variant(1.0), Variant(0.5), Variant(-3.0)}),
            L"(1, 0.5, -3)");
  EXPECT_EQ(Variant::getSubstitution(L"%2 before %1", {Variant(L"a"), Variant(L"b")}), L"b before a");
}

TEST(Variant, SubstitutionKeepsUnmatchedPlaceholders) {
  EXPECT_EQ(Variant::getSubstitution(L"%1 %3 100% %%", {Variant(7)}), L"7 %3 100% %");
}

TEST(Variant, ConversionsBetweenKinds) {
  EXPECT_EQ(Variant(2.9).asInt(), 2);
  EXPECT_EQ(Variant(3).asDouble(), 3.0);
  EXPECT_TRUE(Variant(1).asBool());
  EXPECT_EQ(Variant(L"12").asInt(), 12);
  EXPECT_TRUE(Variant(1) != Variant(1.0));
  EXPECT_TRUE(Variant(L"x") == Variant("x"));
}
