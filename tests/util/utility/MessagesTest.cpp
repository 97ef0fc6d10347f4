#include "util/utility/Messages.h"

#include <gtest/gtest.h>

using Orvo::Messages;

TEST(Messages, Utf8RoundTrip) {
  std::string const s = "A\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80";  // A, e-acute, euro, emoji
  std::wstring const w = Messages::utf8ToWide(s);
  EXPECT_EQ(Messages::wideToUtf8(w), s);
}

TEST(Messages, MalformedUtf8BecomesReplacementCharacter) {
  std::wstring const w = Messages::utf8ToWide(std::string("a\xFF" "b\xC3", 4));
  EXPECT_EQ(w, L"a\uFFFDb\uFFFD");
}

TEST(Messages, OverlongEncodingIsRefused) {
  EXPECT_EQ(Messages::utf8ToWide("\xC0\xAF"), L"\uFFFD\uFFFD");
}

TEST(Messages, WideToUtf8EncodesOneToFourBytesAndReplacesSurrogatesAndValuesBeyondUnicode) {
  // U+0041, U+00E9, U+20AC, U+1F600, then a lone surrogate and 0x110000.
  std::wstring const wide{L'A', wchar_t(0xE9), wchar_t(0x20AC), wchar_t(0x1F600), wchar_t(0xD800), wchar_t(0x110000)};
  EXPECT_EQ(Messages::wideToUtf8(wide),
            "A\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"
            "\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(Messages, AppendWideAsUtf8KeepsWhatTheStringHeld) {
  std::string out = "x=";
  Messages::appendWideAsUtf8(std::wstring{wchar_t(0xE9)}, out);
  EXPECT_EQ(out, "x=\xC3\xA9");
}

TEST(Messages, IsValidUtf8AcceptsWellFormedText) {
  EXPECT_TRUE(Messages::isValidUtf8(""));
  EXPECT_TRUE(Messages::isValidUtf8("plain"));
  EXPECT_TRUE(Messages::isValidUtf8("A\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"));
  // The last code point, U+10FFFF, and one past the surrogates, U+E000.
  EXPECT_TRUE(Messages::isValidUtf8("\xF4\x8F\xBF\xBF\xEE\x80\x80"));
  EXPECT_TRUE(Messages::isValidUtf8(std::string_view("a\0b", 3)));
}

TEST(Messages, IsValidUtf8RefusesWhatUtf8ToWideWouldReplace) {
  for (std::string const& bad : {std::string("\xFF"), std::string("\x80"), std::string("a\xC3"),
                                 std::string("\xC3(", 2), std::string("\xC0\xAF"), std::string("\xE0\x80\xAF"),
                                 std::string("\xED\xA0\x80"), std::string("\xF4\x90\x80\x80"),
                                 std::string("\xF8\x88\x80\x80\x80")}) {
    EXPECT_FALSE(Messages::isValidUtf8(bad)) << bad.size();
    EXPECT_NE(Messages::utf8ToWide(bad).find(L'\uFFFD'), std::wstring::npos) << bad.size();
  }
}

TEST(Messages, FromUTF8ToWideUnicodeDecodesAsUtf8ToWide) {
  EXPECT_EQ(L"A\u00e9\u20ac\U0001F600", Messages::fromUTF8ToWideUnicode("A\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"));
  EXPECT_EQ(L"a\uFFFD", Messages::fromUTF8ToWideUnicode("a\xFF"));
}

TEST(Messages, AsciiRunsAndWhatFollowsThemConvertBothWays) {
  std::string const s = "machine \xC3\xA9 end";
  EXPECT_EQ(Messages::utf8ToWide(s), L"machine \u00e9 end");
  EXPECT_EQ(Messages::wideToUtf8(L"machine \u00e9 end"), s);
  EXPECT_EQ(Messages::utf8ToWide("plain"), L"plain");
  EXPECT_EQ(Messages::wideToUtf8(L"plain"), "plain");
  std::string out = "x=";
  Messages::appendWideAsUtf8(L"ab\u00e9c", out);
  EXPECT_EQ(out, "x=ab\xC3\xA9" "c");
}

TEST(Messages, AppendUtf8AsWideKeepsWhatTheStringHeld) {
  std::wstring out = L"x=";
  Messages::appendUtf8AsWide("ab\xC3\xA9\xFF" "c", out);
  EXPECT_EQ(out, L"x=ab\u00e9\uFFFDc");
  Messages::appendUtf8AsWide("", out);
  EXPECT_EQ(out, L"x=ab\u00e9\uFFFDc");
}

TEST(Messages, WideToUtf8IsTheSameWhereverTheFirstOtherCharacterFalls) {
  // ASCII is copied in blocks; a character outside ASCII at any place in or
  // around a block, or none, gives the text encoded character by character.
  for (std::size_t size = 0; size <= 40; ++size) {
    for (std::size_t at = 0; at <= size; ++at) {
      std::wstring wide;
      std::string expected;
      for (std::size_t i = 0; i < size; ++i) {
        if (i == at) {
          wide.push_back(L'\u00e9');
          expected += "\xC3\xA9";
        } else {
          wchar_t const c = static_cast<wchar_t>('a' + i % 26);
          wide.push_back(c);
          expected.push_back(static_cast<char>('a' + i % 26));
        }
      }
      std::string out = "x";
      Messages::appendWideAsUtf8(wide, out);
      EXPECT_EQ(out, "x" + expected) << size << " " << at;
      EXPECT_EQ(Messages::wideToUtf8(wide), expected) << size << " " << at;
    }
  }
  // Characters that only look small in some lanes: 0x80, 0x100, 0x10000 and
  // one beyond Unicode, each alone in a block of ASCII.
  for (wchar_t const c : {wchar_t(0x80), wchar_t(0x100), wchar_t(0x10000), static_cast<wchar_t>(0x7FFFFFFF)}) {
    std::wstring wide(16, L'a');
    wide[9] = c;
    std::string const out = Messages::wideToUtf8(wide);
    EXPECT_EQ(out.substr(0, 9), std::string(9, 'a'));
    EXPECT_EQ(out.substr(out.size() - 6), std::string(6, 'a'));
    EXPECT_GT(out.size(), 16u) << static_cast<unsigned long>(c);
  }
}
