#include "machine/machine/MachineDefinition.h"

#include <gtest/gtest.h>

#include "machine/machine/UnknownMachineFeatureDefinition.h"

using machine::MachineDefinition;
using machine::MachineFeatureDefinition;
using machine::UnknownMachineFeatureDefinition;

namespace {

std::unique_ptr<MachineFeatureDefinition> feature(std::string const& type, std::string const& id, int marker = 0) {
  Json::Value body;
  body["marker"] = marker;
  return std::make_unique<UnknownMachineFeatureDefinition>(type, id, body);
}

std::vector<std::string> ids(MachineDefinition const& m) {
  std::vector<std::string> out;
  for (auto const& f : m.getFeatures()) out.push_back(f.featureTypeId() + "/" + f.featureId());
  return out;
}

}  // namespace

TEST(MachineDefinition, EmptyDefinitionPersistsOnlyGeneral) {
  MachineDefinition const m;
  Json::Value const data = m.getPersistData();
  ASSERT_TRUE(data.isObject());
  EXPECT_EQ(data.getMemberNames(), std::vector<std::string>{"general"});
  EXPECT_EQ(data["general"].getMemberNames(), (std::vector<std::string>{"capabilities", "minimumRevision"}));
  EXPECT_TRUE(data["general"]["capabilities"].isNull());
  EXPECT_EQ(data["general"]["minimumRevision"].asInt(), 45805);
}

TEST(MachineDefinition, DefaultFeatureIsFirstOfTypeThenNamedThenNull) {
  {
    MachineDefinition m;
    m.putFeature(feature("controller", "x"));
    m.putFeature(feature("kinematics", "a"));
    m.putFeature(feature("kinematics", "b"));
    ASSERT_NE(m.getDefaultFeature("kinematics"), nullptr);
    EXPECT_EQ(m.getDefaultFeature("kinematics")->featureId(), "a");
  }
  {
    MachineDefinition m;
    m.putFeature(feature("kinematics", "a"));
    m.putFeature(feature("kinematics", "b"));
    m.setDefaultFeature("kinematics", "b");
    ASSERT_NE(m.getDefaultFeature("kinematics"), nullptr);
    EXPECT_EQ(m.getDefaultFeature("kinematics")->featureId(), "b");
  }
  {
    MachineDefinition m;
    m.putFeature(feature("kinematics", "a"));
    m.putFeature(feature("kinematics", "b"));
    m.setDefaultFeature("kinematics", "c");
    EXPECT_EQ(m.getDefaultFeature("kinematics"), nullptr);
  }
  MachineDefinition const empty;
  EXPECT_EQ(empty.getDefaultFeature("kinematics"), nullptr);
}

TEST(MachineDefinition, SetDefaultFeatureTwiceKeepsFirstId) {
  MachineDefinition m;
  m.putFeature(feature("kinematics", "a"));
  m.putFeature(feature("kinematics", "b"));
  m.setDefaultFeature("kinematics", "b");
  m.setDefaultFeature("kinematics", "a");
  EXPECT_EQ(m.defaults().at("kinematics"), "b");
  EXPECT_EQ(m.getDefaultFeature("kinematics")->featureId(), "b");
}

TEST(MachineDefinition, RemovingDefaultFeatureRemovesItsDefaultEntry) {
  MachineDefinition m;
  m.putFeature(feature("kinematics", "a"));
  m.putFeature(feature("kinematics", "b"));
  m.putFeature(feature("kinematics", "c"));
  m.setDefaultFeature("kinematics", "b");
  m.removeFeature(m.getFeature("kinematics", "b"));
  EXPECT_TRUE(m.defaults().empty());
  EXPECT_EQ(ids(m), (std::vector<std::string>{"kinematics/a", "kinematics/c"}));
  EXPECT_EQ(m.getDefaultFeature("kinematics")->featureId(), "a");
}

TEST(MachineDefinition, RemovingNonDefaultFeatureKeepsDefaultAndForeignPointerDoesNothing) {
  MachineDefinition m;
  m.putFeature(feature("kinematics", "a"));
  m.putFeature(feature("kinematics", "b"));
  m.setDefaultFeature("kinematics", "b");
  m.removeFeature(m.getFeature("kinematics", "a"));
  EXPECT_EQ(m.defaults().at("kinematics"), "b");
  auto const stranger = feature("kinematics", "b");
  m.removeFeature(stranger.get());
  EXPECT_EQ(ids(m), std::vector<std::string>{"kinematics/b"});
}

TEST(MachineDefinition, PutFeatureOfEqualTypeAndIdKeepsPosition) {
  MachineDefinition m;
  m.putFeature(feature("kinematics", "a", 1));
  m.putFeature(feature("controller", "a", 2));
  m.putFeature(feature("kinematics", "b", 3));
  auto replaced = m.putFeature(feature("kinematics", "a", 4));
  ASSERT_NE(replaced, nullptr);
  EXPECT_EQ(replaced->getPersistData()["marker"].asInt(), 1);
  EXPECT_EQ(ids(m), (std::vector<std::string>{"kinematics/a", "controller/a", "kinematics/b"}));
  EXPECT_EQ(m.getFeature("kinematics", "a")->getPersistData()["marker"].asInt(), 4);
  EXPECT_EQ(m.putFeature(feature("kinematics", "c")), nullptr);
  EXPECT_EQ(ids(m).back(), "kinematics/c");
}

TEST(MachineDefinition, PersistDataGathersFeaturesByTypeAndId) {
  MachineDefinition m;
  m.setVendor("Acme");
  m.setCapability(machine::MachineCapability::TURNING, true);
  m.setCapability(machine::MachineCapability::MILLING, true);
  m.putFeature(feature("kinematics", "a", 1));
  m.putFeature(feature("kinematics", "b", 2));
  m.setDefaultFeature("kinematics", "b");
  Json::Value const data = m.getPersistData();
  EXPECT_EQ(data["general"]["vendor"].asString(), "Acme");
  EXPECT_FALSE(data["general"].isMember("model"));
  ASSERT_EQ(data["general"]["capabilities"].size(), 2u);
  EXPECT_EQ(data["general"]["capabilities"][0].asString(), "milling");
  EXPECT_EQ(data["general"]["capabilities"][1].asString(), "turning");
  EXPECT_EQ(data["defaults"]["kinematics"].asString(), "b");
  EXPECT_EQ(data["kinematics"]["a"]["marker"].asInt(), 1);
  EXPECT_EQ(data["kinematics"]["b"]["marker"].asInt(), 2);
}

TEST(MachineDefinition, CopyTagCopyIsDeep) {
  MachineDefinition m;
  m.setModel("M1");
  m.putFeature(feature("kinematics", "a", 1));
  m.setDefaultFeature("kinematics", "a");
  MachineDefinition copy(machine::CopyTag{}, m);
  EXPECT_NE(copy.getFeature("kinematics", "a"), m.getFeature("kinematics", "a"));
  EXPECT_TRUE(copy.getFeature("kinematics", "a")->equals(*m.getFeature("kinematics", "a"), 0.0));
  EXPECT_EQ(copy.model(), "M1");
  EXPECT_EQ(copy.defaults(), m.defaults());
  m.removeFeature(m.getFeature("kinematics", "a"));
  EXPECT_NE(copy.getFeature("kinematics", "a"), nullptr);
}
