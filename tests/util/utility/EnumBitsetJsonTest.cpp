#include "util/utility/EnumBitsetJson.h"

#include <gtest/gtest.h>

#include "machine/machine/MachineCoolant.h"
#include "support/AssertRecorder.h"
#include "support/JsonText.h"

using machine::MachineCoolant;
using Bits = Orvo::EnumBitset<MachineCoolant>;

namespace {
std::string loadError(std::string const& json) {
  try {
    Orvo::EnumBitsetJson::load<MachineCoolant>(mtkit_test::parseJson(json));
  } catch (std::runtime_error const& e) {
    return e.what();
  }
  return "";
}
}  // namespace

TEST(EnumBitsetJson, EmptyValuesLeaveAllBitsClear) {
  for (char const* json : {"null", "[]", "{}", "\"\""})
    EXPECT_TRUE(Orvo::EnumBitsetJson::load<MachineCoolant>(mtkit_test::parseJson(json)).none()) << json;
}

TEST(EnumBitsetJson, StringOrArraySetsNamedBits) {
  Bits const one = Orvo::EnumBitsetJson::load<MachineCoolant>(mtkit_test::parseJson("\"mist\""));
  EXPECT_TRUE(one.test(MachineCoolant::MIST));
  EXPECT_EQ(one.count(), 1u);
  Bits const two = Orvo::EnumBitsetJson::load<MachineCoolant>(mtkit_test::parseJson(R"(["suction", "flood", "suction"])"));
  EXPECT_TRUE(two.test(MachineCoolant::SUCTION));
  EXPECT_TRUE(two.test(MachineCoolant::FLOOD));
  EXPECT_EQ(two.count(), 2u);
}

TEST(EnumBitsetJson, OtherKindsAndUnknownWordsThrow) {
  EXPECT_EQ(loadError("5"), "Expected string or array node.");
  EXPECT_EQ(loadError("true"), "Expected string or array node.");
  EXPECT_EQ(loadError(R"({"a": 1})"), "Expected string or array node.");
  EXPECT_EQ(loadError("\"oil\""), "oil is not supported");
  EXPECT_EQ(loadError(R"(["flood", "Flood", {}])"), "Flood is not supported");
  EXPECT_EQ(loadError("[1]"), "1 is not supported");
}

TEST(EnumBitsetJson, SavesWordsInKeyMapOrderOrNull) {
  Bits bits;
  EXPECT_TRUE(Orvo::EnumBitsetJson::save(bits).isNull());
  bits.set(MachineCoolant::FLOOD_THROUGH_TOOL).set(MachineCoolant::AIR).set(MachineCoolant::FLOOD);
  EXPECT_EQ(Orvo::EnumBitsetJson::save(bits), mtkit_test::parseJson(R"(["air", "flood", "flood_through_tool"])"));
}

TEST(EnumBitsetJson, BitAccessOutsideSizeBreaksAssertion) {
  mtkit_test::AssertRecorder rec;
  Bits bits;
  try {
    bits.test(static_cast<MachineCoolant>(8));
  } catch (std::exception const&) {
  }
  EXPECT_EQ(rec.takeTexts(), std::vector<std::string>{"EXPECTS:f < size()"});
}
