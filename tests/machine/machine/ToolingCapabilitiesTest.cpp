#include "machine/machine/ToolingCapabilities.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "support/JsonText.h"
#include "support/SameJson.h"

using machine::ToolingCapabilities;
using mtkit_test::parseJson;
using mtkit_test::sameJson;

TEST(ToolingCapabilities, TypeIdAndDefaults) {
  EXPECT_EQ(ToolingCapabilities::featureTypeIdStatic(), "tooling");
  ToolingCapabilities const t;
  EXPECT_EQ(t.featureTypeId(), "tooling");
  EXPECT_EQ(t.featureId(), "default");
  EXPECT_TRUE(t.hasToolChanger());
  EXPECT_TRUE(t.supportsToolPreload());
  EXPECT_EQ(t.numberOfTools(), 100u);
}

TEST(ToolingCapabilities, EmptyObjectGivesTheDefaultsAndWritesThemAllBack) {
  ToolingCapabilities const t("mill", parseJson("{}"));
  EXPECT_EQ(t.featureId(), "mill");
  EXPECT_TRUE(t.hasToolChanger());
  EXPECT_TRUE(t.supportsToolPreload());
  EXPECT_EQ(t.numberOfTools(), 100u);
  EXPECT_TRUE(sameJson(t.getPersistData(),
            parseJson(R"({"has_tool_changer": true, "supports_tool_preload": true, "number_of_tools": 100})")));
  EXPECT_TRUE(t.getPersistData()["has_tool_changer"].isBool());
}

TEST(ToolingCapabilities, NegativeNumberOfToolsIsNotRefusedAndWrapsToLargeUnsignedOnWriting) {
  ToolingCapabilities const t("default", parseJson(R"({"number_of_tools": -1})"));
  EXPECT_EQ(t.numberOfTools(), 4294967295u);
  Json::Value const out = t.getPersistData()["number_of_tools"];
  EXPECT_TRUE(out.isUInt());
  EXPECT_EQ(out.asUInt(), 4294967295u);
  EXPECT_EQ(out.toStyledString(), "4294967295\n");
}

TEST(ToolingCapabilities, BooleansReadNonZeroAsTrue) {
  ToolingCapabilities const t("default",
                              parseJson(R"({"has_tool_changer": 0, "supports_tool_preload": 7, "number_of_tools": 12})"));
  EXPECT_FALSE(t.hasToolChanger());
  EXPECT_TRUE(t.supportsToolPreload());
  EXPECT_EQ(t.numberOfTools(), 12u);
  ToolingCapabilities const f("default", parseJson(R"({"has_tool_changer": false, "supports_tool_preload": false})"));
  EXPECT_TRUE(sameJson(f.getPersistData(),
            parseJson(R"({"has_tool_changer": false, "supports_tool_preload": false, "number_of_tools": 100})")));
}

TEST(ToolingCapabilities, WrongKindsThrow) {
  EXPECT_THROW(ToolingCapabilities("d", parseJson(R"({"has_tool_changer": "yes"})")), std::runtime_error);
  EXPECT_THROW(ToolingCapabilities("d", parseJson(R"({"number_of_tools": 2.5})")), std::runtime_error);
}

TEST(ToolingCapabilities, SettersAndCopy) {
  ToolingCapabilities t("x", parseJson("{}"));
  t.setHasToolChanger(false);
  t.setSupportsToolPreload(false);
  t.setNumberOfTools(24);
  ToolingCapabilities const copy(machine::CopyTag{}, t);
  EXPECT_EQ(copy.featureId(), "x");
  EXPECT_TRUE(sameJson(copy.getPersistData(),
            parseJson(R"({"has_tool_changer": false, "supports_tool_preload": false, "number_of_tools": 24})")));
  auto const clone = t.clone();
  EXPECT_EQ(clone->numberOfTools(), 24u);
}
