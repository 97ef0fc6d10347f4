#include "machine/machine/UnknownMachineFeatureDefinition.h"

#include <json/reader.h>
#include <gtest/gtest.h>

#include <sstream>

#include "machine/machine/MachineDefinition.h"
#include "support/AssertRecorder.h"

using machine::UnknownMachineFeatureDefinition;

namespace {
Json::Value parse(std::string const& text) {
  Json::Value v;
  std::istringstream in(text);
  EXPECT_TRUE(Json::parseFromStream(Json::CharReaderBuilder(), in, &v, nullptr));
  return v;
}
}  // namespace

TEST(UnknownMachineFeatureDefinition, WritesBackExactJsonUnderOwnTypeAndIdAndCloneKeepsThem) {
  Json::Value const body = parse(R"({"z": [1, 2.5, "x"], "a": {"b": null, "c": true}})");
  UnknownMachineFeatureDefinition const f("widgets", "left", body);
  EXPECT_EQ(f.featureTypeId(), "widgets");
  EXPECT_EQ(f.featureId(), "left");
  EXPECT_EQ(f.getPersistData(), body);

  machine::MachineDefinition m;
  m.putFeature(f.clone());
  EXPECT_EQ(m.getPersistData()["widgets"]["left"], body);

  std::unique_ptr<UnknownMachineFeatureDefinition> const copy = f.clone();
  EXPECT_EQ(copy->featureTypeId(), "widgets");
  EXPECT_EQ(copy->featureId(), "left");
  EXPECT_EQ(copy->getPersistData(), body);
  std::unique_ptr<machine::MachineFeatureDefinition> const baseCopy =
      static_cast<machine::MachineFeatureDefinition const&>(f).clone();
  EXPECT_EQ(baseCopy->featureTypeId(), "widgets");
}

TEST(UnknownMachineFeatureDefinition, StaticFeatureIdAssertsAndAnswersUnknown) {
  mtkit_test::AssertRecorder rec;
  EXPECT_EQ(UnknownMachineFeatureDefinition::featureTypeIdStatic(), "unknown");
  EXPECT_EQ(rec.takeTexts(), std::vector<std::string>{"Unknown Feature should not use Static Feature ID"});
}

TEST(UnknownMachineFeatureDefinition, CopyAndMoveKeepTypeAndBody) {
  UnknownMachineFeatureDefinition a("t", "id", Json::Value(3));
  UnknownMachineFeatureDefinition b = a;
  UnknownMachineFeatureDefinition c = std::move(a);
  EXPECT_EQ(b.featureTypeId(), "t");
  EXPECT_EQ(c.getPersistData().asInt(), 3);
  UnknownMachineFeatureDefinition d("u", "v", Json::Value());
  d = b;
  EXPECT_EQ(d.featureTypeId(), "t");
  EXPECT_EQ(d.featureId(), "id");
}

TEST(MachineFeatureDefinition, EqualsWithinTolerancePassesAndBeyondFails) {
  Json::Value one;
  one["x"] = 1.0;
  Json::Value two;
  two["x"] = 1.0005;
  UnknownMachineFeatureDefinition const a("t", "a", one);
  UnknownMachineFeatureDefinition const b("other", "b", two);
  EXPECT_TRUE(a.equals(b, 1e-3));
  EXPECT_FALSE(a.equals(b, 1e-4));
  EXPECT_EQ(machine::MachineFeatureDefinition::defaultId, "default");
}
