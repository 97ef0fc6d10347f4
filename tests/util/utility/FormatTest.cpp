#include "util/utility/Format.h"

#include <gtest/gtest.h>

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
