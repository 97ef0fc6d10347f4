#include "machine/machine/AdditivePlatformDefinition.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "support/JsonText.h"
#include "support/SameJson.h"

using machine::AdditivePlatformDefinition;
using machine::AdditivePlatformDimensions;
using machine::AdditivePlatformMeshOptions;
using mtkit_test::parseJson;
using mtkit_test::sameJson;

TEST(AdditivePlatformDefinition, TypeIdAndDefaultWritesJsonNull) {
  EXPECT_EQ(AdditivePlatformDefinition::featureTypeIdStatic(), "platform");
  AdditivePlatformDefinition const p;
  EXPECT_FALSE(p.dimensions().has_value());
  EXPECT_FALSE(p.meshOptions().has_value());
  EXPECT_TRUE(p.getPersistData().isNull());
  EXPECT_TRUE(AdditivePlatformDefinition("default", parseJson("{}")).getPersistData().isNull());
}

TEST(AdditivePlatformDefinition, EmptyDimensionsGivePresentGroupWithFrameAndCeilingFiveAndAllSixKeysWrittenBack) {
  AdditivePlatformDefinition const p("default", parseJson(R"({"dimensions": {}})"));
  ASSERT_TRUE(p.dimensions().has_value());
  EXPECT_FALSE(p.meshOptions().has_value());
  AdditivePlatformDimensions const d = *p.dimensions();
  EXPECT_EQ(d.frameWidth, 5.0);
  EXPECT_EQ(d.ceilingClearance, 5.0);
  EXPECT_EQ(d.clearance, 0.0);
  EXPECT_EQ(d.cornerRadius, 0.0);
  EXPECT_EQ(d.origin, Orvo::Point3D(0, 0, 0));
  EXPECT_TRUE(sameJson(p.getPersistData(), parseJson(R"({"dimensions": {"size": [0, 0, 0], "origin": [0, 0, 0], "clearance": 0,
      "frame_width": 5, "ceiling_clearance": 5, "corner_radius": 0}})")));
  EXPECT_EQ(p.getPersistData()["dimensions"].size(), 6u);
}

TEST(AdditivePlatformDefinition, EmptyMeshOptionsArePresentAndWrittenWhole) {
  AdditivePlatformDefinition const p("default", parseJson(R"({"platform_mesh": {}})"));
  ASSERT_TRUE(p.meshOptions().has_value());
  EXPECT_EQ(*p.meshOptions(), AdditivePlatformMeshOptions{});
  EXPECT_TRUE(sameJson(p.getPersistData(), parseJson(R"({"platform_mesh": {"positioning": false, "scaling": false, "mesh": "",
      "model": "", "no_build_zone_mesh": "", "no_build_zone_model": ""}})")));
}

TEST(AdditivePlatformDefinition, ReadsBothGroupsWholeAndWritesThemBack) {
  std::string const text = R"({
    "dimensions": {"size": [250, 210, 200], "origin": [-125, -105, 0], "clearance": 2, "frame_width": 8,
                   "ceiling_clearance": 10, "corner_radius": 3},
    "platform_mesh": {"positioning": true, "scaling": true, "mesh": "bed.stl", "model": "bed", "no_build_zone_mesh": "clips.stl",
                      "no_build_zone_model": "clips"}})";
  AdditivePlatformDefinition const p("bed", parseJson(text));
  AdditivePlatformDimensions const d = *p.dimensions();
  EXPECT_EQ(d.size.x, 250.0);
  EXPECT_EQ(d.size.y, 210.0);
  EXPECT_EQ(d.size.z, 200.0);
  EXPECT_EQ(d.origin, Orvo::Point3D(-125, -105, 0));
  EXPECT_EQ(d.clearance, 2.0);
  EXPECT_EQ(d.frameWidth, 8.0);
  EXPECT_EQ(d.ceilingClearance, 10.0);
  EXPECT_EQ(d.cornerRadius, 3.0);
  AdditivePlatformMeshOptions const m = *p.meshOptions();
  EXPECT_TRUE(m.positioning);
  EXPECT_TRUE(m.scaling);
  EXPECT_EQ(m.mesh, "bed.stl");
  EXPECT_EQ(m.model, "bed");
  EXPECT_EQ(m.noBuildZoneMesh, "clips.stl");
  EXPECT_EQ(m.noBuildZoneModel, "clips");
  EXPECT_TRUE(sameJson(p.getPersistData(), parseJson(text)));
}

TEST(AdditivePlatformDefinition, SettersMakeTheGroupPresentAndCopyKeepsIt) {
  AdditivePlatformDefinition p;
  AdditivePlatformMeshOptions options;
  options.mesh = "plate.stl";
  p.setMeshOptions(options);
  AdditivePlatformDimensions dims;
  dims.cornerRadius = 1.5;
  p.setDimensions(dims);
  AdditivePlatformDefinition const copy(machine::CopyTag{}, p);
  ASSERT_TRUE(copy.dimensions().has_value());
  EXPECT_EQ(copy.dimensions()->cornerRadius, 1.5);
  EXPECT_EQ(copy.meshOptions()->mesh, "plate.stl");
  EXPECT_EQ(copy.getPersistData()["platform_mesh"]["mesh"].asString(), "plate.stl");
}

TEST(AdditivePlatformDefinition, BadSizeFailsWithExpectedA3DVector) {
  try {
    AdditivePlatformDefinition("default", parseJson(R"({"dimensions": {"size": [1, 2]}})"));
    FAIL() << "no exception";
  } catch (std::runtime_error const& e) {
    EXPECT_STREQ(e.what(), "Expected a 3D vector.");
  }
  EXPECT_THROW(AdditivePlatformDefinition("d", parseJson(R"({"platform_mesh": {"mesh": 1}})")), std::runtime_error);
}
