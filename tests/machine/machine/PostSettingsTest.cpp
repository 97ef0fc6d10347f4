#include "machine/machine/PostSettings.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "support/JsonText.h"
#include "support/SameJson.h"

using machine::PostSetting;
using machine::PostSettings;
using mtkit_test::parseJson;
using mtkit_test::sameJson;
using Orvo::Variant;

namespace {

/// A feature with a path, so that its settings are written.
PostSettings withPath() {
  PostSettings p;
  p.setPostPath("mill.cps");
  return p;
}

/// The "coolant" / "coolants" array of the written tree.
Json::Value coolantList(PostSettings const& p) { return p.settingsParametersToJSON()["coolant"]["coolants"]; }

}  // namespace

TEST(PostSettings, TypeIdAndDefaults) {
  EXPECT_EQ(PostSettings::featureTypeIdStatic(), "post_settings");
  PostSettings const p;
  EXPECT_EQ(p.featureTypeId(), "post_settings");
  EXPECT_EQ(p.featureId(), "default");
  EXPECT_EQ(p.postPath(), "");
  EXPECT_TRUE(p.settings().empty());
  EXPECT_EQ(PostSettings("second").featureId(), "second");
}

TEST(PostSettings, WithoutPathWritesJsonNullAlsoWithSettings) {
  PostSettings p;
  EXPECT_TRUE(p.getPersistData().isNull());
  p.setPostSetting("units.metric", Variant(true), true);
  EXPECT_TRUE(p.getPersistData().isNull());
  p.setPostPath("mill.cps");
  EXPECT_FALSE(p.getPersistData().isNull());
}

TEST(PostSettings, PathWithoutSettingsWritesPathOnly) {
  EXPECT_TRUE(sameJson(withPath().getPersistData(), R"({"path": "mill.cps"})"));
  // Without "path" nothing else is read.
  PostSettings const p("default", parseJson(R"({"settings": {"a": {"value": 1}}, "settings_version": 1})"));
  EXPECT_EQ(p.postPath(), "");
  EXPECT_TRUE(p.settings().empty());
}

TEST(PostSettings, SettingsWithoutSettingsVersionIsIgnored) {
  PostSettings const p("default", parseJson(R"({"path": "mill.cps", "settings": {"a": {"value": 1, "enabled": true}}})"));
  EXPECT_EQ(p.postPath(), "mill.cps");
  EXPECT_TRUE(p.settings().empty());
  EXPECT_TRUE(sameJson(p.getPersistData(), R"({"path": "mill.cps"})"));
}

TEST(PostSettings, OtherSettingsVersionDropsTheTreeSilentlyAndKeepsThePath) {
  PostSettings const two("default", parseJson(R"({"path": "p", "settings": {"a": {"value": 1}}, "settings_version": 2})"));
  EXPECT_EQ(two.postPath(), "p");
  EXPECT_TRUE(two.settings().empty());
  PostSettings const one("default", parseJson(R"({"path": "p", "settings": {"a": {"value": 1}}, "settings_version": 1})"));
  EXPECT_EQ(one.settings().size(), 1u);
}

TEST(PostSettings, SettingWithOnePointWritesTwoLevelTreeWithLeafAndReadsBackUnderSameName) {
  PostSettings p = withPath();
  p.setPostSetting("units.metric", Variant(L"mm"), true);
  Json::Value const out = p.getPersistData();
  EXPECT_TRUE(sameJson(out, R"({"path": "mill.cps", "settings_version": 1, "settings": {
      "coolant": {"coolants": [null]},
      "units": {"metric": {"value": "mm", "enabled": true}}}})"));
  PostSettings const back("default", out);
  EXPECT_EQ(back.settings().size(), 1u);
  EXPECT_EQ(back.getPostSetting("units.metric"), (PostSetting{Variant(L"mm"), true}));
}

TEST(PostSettings, CoolantsZeroAndOneWriteInTheOrderOneZero) {
  PostSettings p = withPath();
  p.setPostSetting("coolant.coolants.0.on", Variant(8), true);
  p.setPostSetting("coolant.coolants.1.on", Variant(L"[7, 8]"), false);
  p.setPostSetting("coolant.coolants.1.off", Variant(9), true);
  EXPECT_TRUE(sameJson(coolantList(p), R"([
      {"id": 1, "on": {"value": [7, 8], "enabled": false}, "off": {"value": 9, "enabled": true}},
      {"id": 0, "on": {"value": 8, "enabled": true}}])"));
}

TEST(PostSettings, CoolantsZeroAndTwoWriteInTheOrderOneStubTwoZero) {
  PostSettings p = withPath();
  p.setPostSetting("coolant.coolants.0.off", Variant(9), true);
  p.setPostSetting("coolant.coolants.2.on", Variant(L"M7 on"), true);
  EXPECT_TRUE(sameJson(coolantList(p), R"([
      {"id": 1},
      {"id": 2, "on": {"value": "M7 on", "enabled": true}},
      {"id": 0, "off": {"value": 9, "enabled": true}}])"));
}

TEST(PostSettings, NoCoolantSettingsGiveOneJsonNull) {
  PostSettings p = withPath();
  p.setPostSetting("x", Variant(1), false);
  EXPECT_TRUE(sameJson(coolantList(p), "[null]"));
}

TEST(PostSettings, LoneCoolantOtherThanZeroIsLostBecauseTheLoopStopsBelowTheMapSize) {
  // One coolant makes a map of size 1, so the loop from 1 never runs; only
  // the entry 0, made empty, is appended.
  PostSettings p = withPath();
  p.setPostSetting("coolant.coolants.1.on", Variant(7), true);
  EXPECT_TRUE(sameJson(coolantList(p), "[null]"));
  PostSettings zero = withPath();
  zero.setPostSetting("coolant.coolants.0.on", Variant(7), true);
  EXPECT_TRUE(sameJson(coolantList(zero), R"([{"id": 0, "on": {"value": 7, "enabled": true}}])"));
}

TEST(PostSettings, CoolantSettingWithEmptyValueIsLeftOut) {
  PostSettings p = withPath();
  p.setPostSetting("coolant.coolants.0.on", Variant(5), true);
  p.setPostSetting("coolant.coolants.0.off", Variant(), true);
  p.setPostSetting("coolant.coolants.2.on", Variant(L""), true);
  // Coolant 2 is gone whole, so only 0 is in the map.
  EXPECT_TRUE(sameJson(coolantList(p), R"([{"id": 0, "on": {"value": 5, "enabled": true}}])"));
}

TEST(PostSettings, LeafArrayOfIntegersReadsAsBracketedTextWrittenAsStringOutsideCoolantsAndArrayInside) {
  PostSettings const p("default", parseJson(R"({"path": "p", "settings_version": 1, "settings": {
      "list": {"value": [1, 2, 3], "enabled": true},
      "empty": {"value": [], "enabled": true},
      "coolant": {"coolants": [{"id": 0, "on": {"value": 9, "enabled": false}},
                               {"id": 1, "on": {"value": [7, 8], "enabled": true}}]}}})"));
  EXPECT_EQ(p.getPostSetting("list"), (PostSetting{Variant(L"[1, 2, 3]"), true}));
  EXPECT_EQ(p.getPostSetting("empty").value, Variant(L"[]"));
  EXPECT_EQ(p.getPostSetting("coolant.coolants.1.on"), (PostSetting{Variant(L"[7, 8]"), true}));
  EXPECT_EQ(p.getPostSetting("coolant.coolants.0.on"), (PostSetting{Variant(9), false}));
  Json::Value const tree = p.settingsParametersToJSON();
  EXPECT_TRUE(sameJson(tree["list"], R"({"value": "[1, 2, 3]", "enabled": true})"));
  EXPECT_TRUE(sameJson(tree["coolant"]["coolants"], R"([{"id": 1, "on": {"value": [7, 8], "enabled": true}},
                                                        {"id": 0, "on": {"value": 9, "enabled": false}}])"));
}

TEST(PostSettings, GetPostSettingOfUnknownNameGivesEmptyValueNotError) {
  PostSettings const p;
  PostSetting const s = p.getPostSetting("no.such.setting");
  EXPECT_TRUE(s.value.isEmpty());
  EXPECT_FALSE(s.enabled);
}

TEST(PostSettings, CoolantElementWithoutIdGivesNameWithTwoPointsInARow) {
  PostSettings const p("default", parseJson(R"({"path": "p", "settings_version": 1,
      "settings": {"coolant": {"coolants": [{"on": {"value": 5, "enabled": true}}, {"id": "3", "off": {"value": 6}}]}}})"));
  EXPECT_EQ(p.getPostSetting("coolant.coolants..on"), (PostSetting{Variant(5), true}));
  EXPECT_EQ(p.getPostSetting("coolant.coolants.3.off"), (PostSetting{Variant(6), false}));
  EXPECT_EQ(p.settings().size(), 2u);
}

TEST(PostSettings, ConvertCoolantGivesIntegerListOrText) {
  PostSettings p = withPath();
  p.setPostSetting("coolant.coolants.0.on", Variant(L" 12"), true);
  p.setPostSetting("coolant.coolants.0.off", Variant(L"-4"), true);
  p.setPostSetting("coolant.coolants.1.on", Variant(L"[1,2 , 30 ]"), true);
  p.setPostSetting("coolant.coolants.1.off", Variant(L"12 flood"), true);
  p.setPostSetting("coolant.coolants.2.on", Variant(L"[1, x]"), true);
  p.setPostSetting("coolant.coolants.2.off", Variant(L"[]"), true);
  p.setPostSetting("coolant.coolants.3.on", Variant(2.5), true);
  EXPECT_TRUE(sameJson(coolantList(p), R"([
      {"id": 1, "on": {"value": [1, 2, 30], "enabled": true}, "off": {"value": "12 flood", "enabled": true}},
      {"id": 2, "on": {"value": "[1, x]", "enabled": true}, "off": {"value": "[]", "enabled": true}},
      {"id": 3, "on": {"value": "2.5", "enabled": true}},
      {"id": 0, "on": {"value": 12, "enabled": true}, "off": {"value": -4, "enabled": true}}])"));
}

TEST(PostSettings, OverlongNumberInCoolantListRaisesStoiOutOfRange) {
  PostSettings p = withPath();
  p.setPostSetting("coolant.coolants.0.on", Variant(L"[1, 99999999999]"), true);
  try {
    p.getPersistData();
    FAIL() << "no exception";
  } catch (std::out_of_range const& e) {
    EXPECT_STREQ(e.what(), "stoi argument out of range");
  }
}

TEST(PostSettings, CoolantNameWithoutNumberThrowsOnWriting) {
  PostSettings p = withPath();
  p.setPostSetting("coolant.coolants.x.on", Variant(1), true);
  EXPECT_THROW(p.getPersistData(), std::invalid_argument);
}

TEST(PostSettings, SideIsOnWhenTheNameEndsInOnElseOff) {
  PostSettings p = withPath();
  p.setPostSetting("coolant.coolants.0.on", Variant(1), true);
  p.setPostSetting("coolant.coolants.0.other", Variant(2), false);
  EXPECT_TRUE(sameJson(coolantList(p), R"([{"id": 0, "on": {"value": 1, "enabled": true},
                                                     "off": {"value": 2, "enabled": false}}])"));
}

TEST(PostSettings, PlainScalarOrArrayInTheTreeFailsTheRead) {
  for (char const* tree : {R"({"a": 5})", R"({"a": {"b": "text"}})", R"({"a": true})", R"({"a": [1, 2]})"}) {
    std::string const text = std::string(R"({"path": "p", "settings_version": 1, "settings": )") + tree + "}";
    EXPECT_THROW(PostSettings("default", parseJson(text)), std::exception) << tree;
  }
}

TEST(PostSettings, LeafWithoutEnabledReadsAsFalseAndNestedNamesJoinWithPoints) {
  PostSettings p;
  p.settingsJSONtoParameters("", parseJson(R"({"a": {"b": {"c": {"value": 2.5}}, "d": {"value": "x", "enabled": true}}})"));
  EXPECT_EQ(p.getPostSetting("a.b.c"), (PostSetting{Variant(2.5), false}));
  EXPECT_EQ(p.getPostSetting("a.d"), (PostSetting{Variant(L"x"), true}));
  p.settingsJSONtoParameters("pre", parseJson(R"({"q": {"value": null, "enabled": true}})"));
  EXPECT_EQ(p.getPostSetting("pre.q"), (PostSetting{Variant(), true}));
  p.clearSettings();
  EXPECT_TRUE(p.settings().empty());
}

TEST(PostSettings, CopyKeepsPathAndSettings) {
  PostSettings p = withPath();
  p.setPostSetting("a.b", Variant(3), true);
  p.setPostSetting("a.b", Variant(4), false);
  PostSettings const copy(machine::CopyTag{}, p);
  EXPECT_EQ(copy.postPath(), "mill.cps");
  EXPECT_EQ(copy.getPostSetting("a.b"), (PostSetting{Variant(4), false}));
  EXPECT_TRUE(copy.equals(p, 0.0));
}

TEST(PostSettings, ANameWithANulByteIsWrittenAtItsPointsAndDoesNotRunAway) {
  // jsoncpp's Path would stop at the NUL without moving on; the name is
  // split at its points instead, the NUL kept in its level's key.
  PostSettings p;
  std::string const name("additive.laye\0r_pause", 21);
  p.setPostSetting(name, Orvo::Variant("M0"), false);
  p.setPostSetting("additive..bed_heating", Orvo::Variant(true), true);
  Json::Value const tree = p.settingsParametersToJSON();
  Json::Value const& layer = tree["additive"][std::string("laye\0r_pause", 12)];
  EXPECT_EQ(layer["value"].asString(), "M0");
  EXPECT_FALSE(layer["enabled"].asBool());
  // An empty level between two points is skipped, as Path skips it.
  EXPECT_TRUE(tree["additive"]["bed_heating"]["value"].asBool());
}
