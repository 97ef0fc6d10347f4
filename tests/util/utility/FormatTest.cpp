#include "util/utility/Format.h"
#include "util/utility/Messages.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <string_view>

#include <limits>

#include "util/utility/FileSystem.h"
#include "util/utility/ParseException.h"

using Orvo::Format;

TEST(FormatTest, PosixTextIsTheShortestThatReadsBack) {
  EXPECT_EQ(Format::getAsPosixWString(1000.0), L"1000");
  EXPECT_EQ(Format::getAsPosixWString(0.1), L"0.1");
  EXPECT_EQ(Format::getAsPosixWString(-2.5), L"-2.5");
  EXPECT_EQ(Format::getAsPosixWString(0.17453292519943295), L"0.17453292519943295");
  EXPECT_EQ(Format::getAsPosixWString(std::numeric_limits<double>::infinity()), L"inf");
}

TEST(FormatTest, UnsignedTakesDigitsOnly) {
  EXPECT_EQ(Format::parseUnsigned(L"0"), 0u);
  EXPECT_EQ(Format::parseUnsigned(L"4294967295"), 4294967295u);
  for (wchar_t const* bad : {L"", L"-1", L"+1", L" 1", L"1 ", L"1.0", L"4294967296", L"12a"})
    EXPECT_THROW(Format::parseUnsigned(bad), Orvo::ParseException) << bad;
}

TEST(FormatTest, DoubleTakesTheWholeText) {
  EXPECT_DOUBLE_EQ(Format::parseDouble(L"-0.5"), -0.5);
  EXPECT_DOUBLE_EQ(Format::parseDouble(L"1e3"), 1000.0);
  for (wchar_t const* bad : {L"", L"1,5", L"1 ", L"x", L"1.0mm"})
    EXPECT_THROW(Format::parseDouble(bad), Orvo::ParseException) << bad;
}

TEST(FormatTest, Utf8TextReadsAsTheSameWideText) {
  EXPECT_EQ(Format::parseUnsigned(std::string_view("4294967295")), 4294967295u);
  EXPECT_EQ(Format::parseUnsigned(std::string_view("0")), 0u);
  EXPECT_DOUBLE_EQ(Format::parseDouble(std::string_view("-0.5")), -0.5);
  EXPECT_DOUBLE_EQ(Format::parseDouble(std::string_view("2.5e-3")), 0.0025);
  // Each text read both ways: the same value, or a failure both times.
  for (char const* text : {"", "0", "17", "-1", "+1", " 1", "1 ", "1.0", "4294967296", "12a", "1e3", "-0.5",
                           ".5", "5.", "1,5", "x", "1.0mm", "inf", "nan", "1e400", "1\xC2\xB2", "\xD9\xA1",
                           "1\xFF"}) {
    std::wstring const wide = Orvo::Messages::utf8ToWide(text);
    for (bool const asUnsigned : {true, false}) {
      double fromUtf8 = 0;
      double fromWide = 0;
      bool utf8Failed = false;
      bool wideFailed = false;
      try {
        fromUtf8 = asUnsigned ? Format::parseUnsigned(std::string_view(text)) : Format::parseDouble(std::string_view(text));
      } catch (Orvo::ParseException const&) {
        utf8Failed = true;
      }
      try {
        fromWide = asUnsigned ? Format::parseUnsigned(wide) : Format::parseDouble(wide);
      } catch (Orvo::ParseException const&) {
        wideFailed = true;
      }
      EXPECT_EQ(utf8Failed, wideFailed) << text << (asUnsigned ? " unsigned" : " double");
      if (!utf8Failed && !wideFailed) {
        EXPECT_EQ(std::memcmp(&fromUtf8, &fromWide, sizeof fromUtf8), 0) << text;
      }
    }
  }
}

TEST(FormatTest, FileSystemPaths) {
  using Orvo::FileSystem;
  EXPECT_EQ(FileSystem::getFolderFromPath(L"/a/b/machine.xml"), L"/a/b");
  EXPECT_EQ(FileSystem::getFolderFromPath(L"machine.xml"), L"");
  EXPECT_EQ(FileSystem::getFolderFromPath(L"/machine.xml"), L"/");
  EXPECT_EQ(FileSystem::getCombinedPath(L"/a/b", L"base.xml"), L"/a/b/base.xml");
  EXPECT_EQ(FileSystem::getCombinedPath(L"/a/b/", L"../base.xml"), L"/a/b/../base.xml");
  EXPECT_EQ(FileSystem::getCombinedPath(L"/a/b", L"/c/base.xml"), L"/c/base.xml");
  EXPECT_EQ(FileSystem::getCombinedPath(L"", L"base.xml"), L"base.xml");
  EXPECT_FALSE(FileSystem::isFile(L"/nonexistent/machine.xml"));
  EXPECT_FALSE(FileSystem::isFile(L"/tmp"));
}
