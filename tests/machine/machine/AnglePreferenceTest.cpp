#include "machine/machine/AnglePreference.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "support/PersistSamples.h"

using machine::AnglePreference;
using machine::AnglePreferenceValue;

namespace {

std::string outOfRangeText(std::string const& text) {
  try {
    AnglePreference preference(text);
  } catch (std::out_of_range const& e) {
    return e.what();
  }
  return "<no throw>";
}

}  // namespace

TEST(AnglePreference, WordsOfEachValue) {
  EXPECT_EQ(AnglePreference(AnglePreferenceValue::NEGATIVE).toString(), "negative");
  EXPECT_EQ(AnglePreference(AnglePreferenceValue::NO_PREFERENCE).toString(), "no preference");
  EXPECT_EQ(AnglePreference(AnglePreferenceValue::POSITIVE).toString(), "positive");
  EXPECT_EQ(AnglePreference(AnglePreferenceValue::NO_PREFERENCE).toWString(), L"no preference");
}

TEST(AnglePreference, EnumeratorValues) {
  EXPECT_EQ(static_cast<int>(AnglePreferenceValue::NEGATIVE), -1);
  EXPECT_EQ(static_cast<int>(AnglePreferenceValue::NO_PREFERENCE), 0);
  EXPECT_EQ(static_cast<int>(AnglePreferenceValue::POSITIVE), 1);
}

TEST(AnglePreference, NoPreferenceTextGivesNoPreference) {
  EXPECT_EQ(AnglePreference("no preference").value(), AnglePreferenceValue::NO_PREFERENCE);
  EXPECT_EQ(AnglePreference("negative").value(), AnglePreferenceValue::NEGATIVE);
  EXPECT_EQ(AnglePreference("positive").value(), AnglePreferenceValue::POSITIVE);
}

TEST(AnglePreference, AnyOtherTextThrows) {
  EXPECT_EQ(outOfRangeText("no_preference"), "invalid map<K, T> key");
  EXPECT_EQ(outOfRangeText(""), "invalid map<K, T> key");
  EXPECT_EQ(outOfRangeText("Positive"), "invalid map<K, T> key");
  EXPECT_EQ(outOfRangeText("positive "), "invalid map<K, T> key");
  EXPECT_EQ(outOfRangeText("never"), "invalid map<K, T> key");
}

TEST(AnglePreference, ValueOutsideEnumerationHasNoWord) {
  AnglePreference const odd(static_cast<AnglePreferenceValue>(7));
  EXPECT_THROW(odd.toString(), std::out_of_range);
}

TEST(AnglePreference, Equality) {
  EXPECT_EQ(AnglePreference(AnglePreferenceValue::POSITIVE), AnglePreference("positive"));
  EXPECT_NE(AnglePreference(AnglePreferenceValue::POSITIVE), AnglePreference(AnglePreferenceValue::NEGATIVE));
  EXPECT_EQ(AnglePreference(), AnglePreference(AnglePreferenceValue::NO_PREFERENCE));
}

// Persistence

TEST(AnglePreference, PersistsMValueAsTheEnumerationAnglePreferenceValueFromMinus1To1) {
  EXPECT_STREQ(AnglePreference::iceValueEnum.name(), "AnglePreferenceValue");
  EXPECT_EQ(AnglePreference::iceValueEnum.minimum(), -1);
  EXPECT_EQ(AnglePreference::iceValueEnum.maximum(), 1);
  EXPECT_STREQ(AnglePreference::iceStaticClass.name(), "AnglePreference");
  EXPECT_EQ(&AnglePreference().iceDynamicClass(), &AnglePreference::iceStaticClass);
  for (AnglePreferenceValue const v :
       {AnglePreferenceValue::NEGATIVE, AnglePreferenceValue::NO_PREFERENCE, AnglePreferenceValue::POSITIVE}) {
    AnglePreference preference(v);
    Json::Value const root = persist::JsonPersistWriter::writeDocument(preference)["root"];
    EXPECT_EQ(root["m_value"].asInt(), static_cast<int>(v));
    EXPECT_EQ(mtkit_test::throughJson(preference), preference);
    EXPECT_EQ(mtkit_test::throughBinary(preference), preference);
  }
}

TEST(AnglePreference, AStoredValueOutsideItsBoundsIsRefused) {
  AnglePreference preference(AnglePreferenceValue::POSITIVE);
  Json::Value document = persist::JsonPersistWriter::writeDocument(preference);
  document["root"]["m_value"] = 2;
  EXPECT_EQ(mtkit_test::jsonReadError<AnglePreference>(persist::JsonPersistWriter::toText(document)),
            "persist JSON: at root.m_value: expected an integer of the enumeration AnglePreferenceValue from -1 to 1, "
            "found 2");
  AnglePreference unknown(static_cast<AnglePreferenceValue>(-2));
  EXPECT_EQ(mtkit_test::persistError([&] { persist::BinaryPersistWriter::write(unknown); }),
            "persist binary: at root.m_value: cannot write -2: expected an integer of the enumeration "
            "AnglePreferenceValue from -1 to 1");
}
