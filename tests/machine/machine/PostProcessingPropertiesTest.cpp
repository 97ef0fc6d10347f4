#include "machine/machine/PostProcessingProperties.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "support/JsonText.h"
#include "support/SameJson.h"

using machine::PostProcessingProperties;
using mtkit_test::parseJson;
using mtkit_test::sameJson;
using Orvo::Variant;

TEST(PostProcessingProperties, TypeIdAndDefaultsWriteJsonNull) {
  EXPECT_EQ(PostProcessingProperties::featureTypeIdStatic(), "post");
  PostProcessingProperties const p;
  EXPECT_EQ(p.featureTypeId(), "post");
  EXPECT_EQ(p.postPath(), "");
  EXPECT_EQ(p.outputFolder(), "");
  EXPECT_TRUE(p.properties().empty());
  EXPECT_TRUE(p.getPersistData().isNull());
  EXPECT_EQ(PostProcessingProperties("other").featureId(), "other");
}

TEST(PostProcessingProperties, ReadsPathPropertiesAndFolderAndWritesThemBack) {
  std::string const text = R"({"path": "mill.cps", "output_folder": "/nc/out",
      "properties": {"flag": true, "count": 3, "tolerance": 0.01, "comment": "first op", "nothing": null}})";
  PostProcessingProperties const p("default", parseJson(text));
  EXPECT_EQ(p.postPath(), "mill.cps");
  EXPECT_EQ(p.outputFolder(), "/nc/out");
  EXPECT_EQ(p.propertyValue("flag"), Variant(true));
  EXPECT_EQ(p.propertyValue("count"), Variant(3));
  EXPECT_EQ(p.propertyValue("tolerance"), Variant(0.01));
  EXPECT_EQ(p.propertyValue("comment"), Variant(L"first op"));
  EXPECT_TRUE(p.propertyValue("nothing").isEmpty());
  EXPECT_EQ(p.properties().size(), 5u);
  EXPECT_TRUE(sameJson(p.getPersistData(), text));
}

TEST(PostProcessingProperties, PropertiesWithoutPathAreNotReadAndFolderIsIndependent) {
  PostProcessingProperties const p("default", parseJson(R"({"properties": {"a": 1}, "output_folder": "out"})"));
  EXPECT_TRUE(p.properties().empty());
  EXPECT_EQ(p.outputFolder(), "out");
  EXPECT_TRUE(sameJson(p.getPersistData(), R"({"output_folder": "out"})"));
}

TEST(PostProcessingProperties, PropertiesAreWrittenOnlyBesideAPath) {
  PostProcessingProperties p;
  p.setProperty("a", Variant(1));
  EXPECT_TRUE(p.getPersistData().isNull());
  p.setPostPath("x.cps");
  EXPECT_TRUE(sameJson(p.getPersistData(), R"({"path": "x.cps", "properties": {"a": 1}})"));
  p.clearProperties();
  EXPECT_TRUE(sameJson(p.getPersistData(), R"({"path": "x.cps"})"));
  p.setOutputFolder("o");
  EXPECT_TRUE(sameJson(p.getPersistData(), R"({"path": "x.cps", "output_folder": "o"})"));
}

TEST(PostProcessingProperties, PropertyValueOfUnknownNameIsEmptyAndSetPropertyOverwrites) {
  PostProcessingProperties p;
  EXPECT_TRUE(p.propertyValue("none").isEmpty());
  p.setProperty("a", Variant(1));
  p.setProperty("a", Variant(L"two"));
  EXPECT_EQ(p.propertyValue("a"), Variant(L"two"));
  EXPECT_EQ(p.properties().size(), 1u);
}

TEST(PostProcessingProperties, AsVariableSetSetsEachPropertyUnderItsWideName) {
  PostProcessingProperties p;
  p.setProperty("zeta", Variant(2.5));
  p.setProperty("alpha", Variant(L"x"));
  p.setProperty("gr\xc3\xbc\xc3\x9f" "e", Variant(true));
  Orvo::VariableSet const set = p.asVariableSet();
  EXPECT_EQ(set.named().size(), 3u);
  EXPECT_EQ(set.get(L"zeta"), Variant(2.5));
  EXPECT_EQ(set.get(L"alpha"), Variant(L"x"));
  EXPECT_EQ(set.get(L"gr\u00fc\u00dfe"), Variant(true));
  EXPECT_EQ(set.size(), 0u);
}

TEST(PostProcessingProperties, WrongKindsThrow) {
  EXPECT_THROW(PostProcessingProperties("d", parseJson(R"({"path": 1})")), std::runtime_error);
  EXPECT_THROW(PostProcessingProperties("d", parseJson(R"({"output_folder": false})")), std::runtime_error);
  try {
    PostProcessingProperties("d", parseJson(R"({"path": "p", "properties": {"a": [1]}})"));
    FAIL() << "no exception";
  } catch (std::runtime_error const& e) {
    EXPECT_STREQ(e.what(), "Expected a scalar value.");
  }
  // A "properties" that isn't an object is ignored.
  EXPECT_TRUE(PostProcessingProperties("d", parseJson(R"({"path": "p", "properties": [1]})")).properties().empty());
}

TEST(PostProcessingProperties, CopyKeepsEverything) {
  PostProcessingProperties p("x", parseJson(R"({"path": "p", "properties": {"a": 1}, "output_folder": "o"})"));
  PostProcessingProperties const copy(machine::CopyTag{}, p);
  EXPECT_EQ(copy.featureId(), "x");
  EXPECT_TRUE(copy.equals(p, 0.0));
  EXPECT_EQ(copy.propertyValue("a"), Variant(1));
}
