#include "machine/machine/MachineGeneralDefinition.h"

#include <gtest/gtest.h>

#include <stdexcept>

using machine::MachineCapability;
using machine::MachineGeneralDefinition;

namespace {
std::string loadError(Json::Value const& data) {
  MachineGeneralDefinition g;
  try {
    g.loadPersistData(data);
  } catch (std::runtime_error const& e) {
    return e.what();
  }
  return "";
}
}  // namespace

TEST(MachineGeneralDefinition, RevisionAtLimitLoadsAndAboveFails) {
  Json::Value data;
  data["minimumRevision"] = 45805;
  EXPECT_EQ(loadError(data), "");
  data["minimumRevision"] = 45806;
  EXPECT_EQ(loadError(data), "The machine has newer version, and cannot be loaded.");
  data["minimumRevision"] = -1;
  EXPECT_EQ(loadError(data), "The machine has newer version, and cannot be loaded.");
  EXPECT_EQ(loadError(Json::Value(Json::objectValue)), "");
}

TEST(MachineGeneralDefinition, NonStringTextFailsWithQuotedKeyBeforeRevision) {
  Json::Value data;
  data["model"] = 7;
  data["minimumRevision"] = 99999;
  EXPECT_EQ(loadError(data), "'model' is expected to be a string");
  data["vendor"] = Json::Value(Json::arrayValue);
  EXPECT_EQ(loadError(data), "'vendor' is expected to be a string");
  Json::Value d2;
  d2["description"] = true;
  EXPECT_EQ(loadError(d2), "'description' is expected to be a string");
}

TEST(MachineGeneralDefinition, CapabilitiesLoadFromStringArrayOrNull) {
  MachineGeneralDefinition g("v", "m", "d", {});
  Json::Value data;
  data["capabilities"] = "turning";
  g.loadPersistData(data);
  EXPECT_TRUE(g.supportsCapability(MachineCapability::TURNING));
  EXPECT_EQ(g.capabilities().count(), 1u);
  EXPECT_EQ(g.vendor(), "");  // a missing text replaces what was there

  data["capabilities"] = Json::Value(Json::arrayValue);
  data["capabilities"].append("additive");
  data["capabilities"].append("inspection");
  g.loadPersistData(data);
  EXPECT_TRUE(g.supportsCapability(MachineCapability::ADDITIVE));
  EXPECT_TRUE(g.supportsCapability(MachineCapability::INSPECTION));
  EXPECT_FALSE(g.supportsCapability(MachineCapability::TURNING));

  data["capabilities"] = "";
  g.loadPersistData(data);
  EXPECT_TRUE(g.capabilities().none());
  data["capabilities"] = Json::Value(Json::objectValue);
  g.loadPersistData(data);
  EXPECT_TRUE(g.capabilities().none());
}

TEST(MachineGeneralDefinition, BadCapabilitiesFailWithTheirMessages) {
  Json::Value data;
  data["capabilities"] = 3;
  EXPECT_EQ(loadError(data), "Expected string or array node.");
  data["capabilities"] = "welding";
  EXPECT_EQ(loadError(data), "welding is not supported");
  data["capabilities"] = Json::Value(Json::arrayValue);
  data["capabilities"].append("milling");
  data["capabilities"].append("Milling");
  EXPECT_EQ(loadError(data), "Milling is not supported");
}

TEST(MachineGeneralDefinition, PersistDataWritesTextsWhenSetAndAlwaysCapabilitiesAndRevision) {
  MachineGeneralDefinition g;
  g.setVendor("V");
  g.setDescription("D");
  g.setCapability(MachineCapability::CUTTING, true);
  g.setCapability(MachineCapability::ADDITIVE, true);
  Json::Value const data = g.getPersistData();
  EXPECT_EQ(data.getMemberNames(),
            (std::vector<std::string>{"capabilities", "description", "minimumRevision", "vendor"}));
  ASSERT_EQ(data["capabilities"].size(), 2u);
  EXPECT_EQ(data["capabilities"][0].asString(), "additive");
  EXPECT_EQ(data["capabilities"][1].asString(), "cutting");
  EXPECT_EQ(data["minimumRevision"].asUInt(), 45805u);
  MachineGeneralDefinition back;
  back.loadPersistData(data);
  EXPECT_EQ(back.vendor(), "V");
  EXPECT_EQ(back.description(), "D");
  EXPECT_EQ(back.capabilities(), g.capabilities());
}
