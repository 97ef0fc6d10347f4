#pragma once
// Compares JSON trees as a machine file does: numbers by value whatever their
// JSON kind (1, 1.0 and an unsigned 1 are the same), everything else exactly.

#include <gtest/gtest.h>
#include <json/value.h>

#include <string>

#include "support/JsonText.h"
#include "util/utility/JsonUtils.h"

namespace mtkit_test {

inline ::testing::AssertionResult sameJson(Json::Value const& actual, Json::Value const& expected) {
  if (Orvo::JsonUtils::areEqual(actual, expected, 0.0)) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << "actual:\n" << actual.toStyledString() << "expected:\n" << expected.toStyledString();
}

inline ::testing::AssertionResult sameJson(Json::Value const& actual, std::string const& expectedText) {
  return sameJson(actual, parseJson(expectedText));
}

/// Text literals are JSON to parse, not JSON strings.
inline ::testing::AssertionResult sameJson(Json::Value const& actual, char const* expectedText) {
  return sameJson(actual, parseJson(expectedText));
}

}  // namespace mtkit_test
