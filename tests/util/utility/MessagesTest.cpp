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
