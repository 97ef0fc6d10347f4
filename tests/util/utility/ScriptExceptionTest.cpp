#include "util/utility/ScriptException.h"

#include <gtest/gtest.h>

#include <exception>
#include <string>
#include <type_traits>

#include "util/utility/ScriptObject.h"

namespace {

TEST(ScriptException, DerivesFromStdException) {
  static_assert(std::is_base_of<std::exception, Orvo::ScriptException>::value, "a std::exception");
  try {
    throw Orvo::ScriptException(L"Invalid row.");
  } catch (std::exception const& e) {
    EXPECT_STREQ("Invalid row.", e.what());
    return;
  }
  FAIL() << "not caught as std::exception";
}

TEST(ScriptException, GetMessageGivesTheWideText) {
  Orvo::ScriptException const e(L"Invalid vector coordinates.");
  EXPECT_EQ(std::wstring(L"Invalid vector coordinates."), e.getMessage());
}

TEST(ScriptException, WhatGivesUtf8) {
  Orvo::ScriptException const e(L"Winkel \u00e4 \u20ac");
  EXPECT_EQ(std::string("Winkel \xc3\xa4 \xe2\x82\xac"), std::string(e.what()));
  EXPECT_EQ(std::wstring(L"Winkel \u00e4 \u20ac"), e.getMessage());
}

TEST(ScriptException, CopyKeepsBothForms) {
  Orvo::ScriptException const e(L"Not supported.");
  Orvo::ScriptException const copy(e);
  EXPECT_STREQ("Not supported.", copy.what());
  EXPECT_EQ(std::wstring(L"Not supported."), copy.getMessage());
}

TEST(ScriptObject, RootHasNoBaseClass) {
  Orvo::ScriptObject const o;
  EXPECT_STREQ("", o.getBaseClass());
  static_assert(std::has_virtual_destructor<Orvo::ScriptObject>::value, "virtual destructor");
}

}  // namespace
