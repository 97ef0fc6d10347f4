#include "machine/machine/ResetAxisPreference.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "support/PersistSamples.h"

using machine::ResetAxisPreference;
using machine::ResetAxisValue;

namespace {

std::string outOfRangeText(std::string const& text) {
  try {
    ResetAxisPreference preference(text);
  } catch (std::out_of_range const& e) {
    return e.what();
  }
  return "<no throw>";
}

}  // namespace

TEST(ResetAxisPreference, WordsOfEachValue) {
  EXPECT_EQ(ResetAxisPreference(ResetAxisValue::NEVER).toString(), "never");
  EXPECT_EQ(ResetAxisPreference(ResetAxisValue::BEFORE_EVERY_OPERATION).toString(), "before every operation");
  EXPECT_EQ(ResetAxisPreference(ResetAxisValue::ON_REWIND).toString(), "on rewind");
  EXPECT_EQ(ResetAxisPreference(ResetAxisValue::BEFORE_AND_ON_REWIND).toString(), "before and on rewind");
  EXPECT_EQ(ResetAxisPreference(ResetAxisValue::ON_REWIND).toWString(), L"on rewind");
}

TEST(ResetAxisPreference, EnumeratorValues) {
  EXPECT_EQ(static_cast<int>(ResetAxisValue::NEVER), 0);
  EXPECT_EQ(static_cast<int>(ResetAxisValue::BEFORE_EVERY_OPERATION), 1);
  EXPECT_EQ(static_cast<int>(ResetAxisValue::ON_REWIND), 2);
  EXPECT_EQ(static_cast<int>(ResetAxisValue::BEFORE_AND_ON_REWIND), 3);
}

TEST(ResetAxisPreference, WordsReadBack) {
  for (auto value : {ResetAxisValue::NEVER, ResetAxisValue::BEFORE_EVERY_OPERATION, ResetAxisValue::ON_REWIND,
                     ResetAxisValue::BEFORE_AND_ON_REWIND}) {
    ResetAxisPreference const preference(value);
    EXPECT_EQ(ResetAxisPreference(preference.toString()).value(), value);
  }
}

TEST(ResetAxisPreference, UnknownTextThrows) {
  EXPECT_EQ(outOfRangeText("always"), "invalid map<K, T> key");
  EXPECT_EQ(outOfRangeText("Never"), "invalid map<K, T> key");
  EXPECT_EQ(outOfRangeText(""), "invalid map<K, T> key");
  EXPECT_EQ(outOfRangeText("no preference"), "invalid map<K, T> key");
}

TEST(ResetAxisPreference, Equality) {
  EXPECT_EQ(ResetAxisPreference("on rewind"), ResetAxisPreference(ResetAxisValue::ON_REWIND));
  EXPECT_NE(ResetAxisPreference(ResetAxisValue::NEVER), ResetAxisPreference(ResetAxisValue::ON_REWIND));
  EXPECT_EQ(ResetAxisPreference(), ResetAxisPreference(ResetAxisValue::NEVER));
}

// Persistence

TEST(ResetAxisPreference, PersistsMValueAsTheEnumerationResetAxisValueFrom0To3) {
  EXPECT_STREQ(ResetAxisPreference::iceValueEnum.name(), "ResetAxisValue");
  EXPECT_EQ(ResetAxisPreference::iceValueEnum.minimum(), 0);
  EXPECT_EQ(ResetAxisPreference::iceValueEnum.maximum(), 3);
  EXPECT_STREQ(ResetAxisPreference::iceStaticClass.name(), "ResetAxisPreference");
  for (int v = 0; v <= 3; ++v) {
    ResetAxisPreference preference(static_cast<ResetAxisValue>(v));
    EXPECT_EQ(mtkit_test::throughJson(preference), preference);
    EXPECT_EQ(mtkit_test::throughBinary(preference), preference);
  }
  ResetAxisPreference preference(ResetAxisValue::ON_REWIND);
  Json::Value document = persist::JsonPersistWriter::writeDocument(preference);
  document["root"]["m_value"] = -1;
  EXPECT_EQ(mtkit_test::jsonReadError<ResetAxisPreference>(persist::JsonPersistWriter::toText(document)),
            "persist JSON: at root.m_value: expected an integer of the enumeration ResetAxisValue from 0 to 3, found "
            "-1");
}
