#include "machine/machine/AdditiveLimitsDefinition.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "support/JsonText.h"
#include "support/SameJson.h"

using machine::AdditiveLimitsDefinition;
using mtkit_test::parseJson;
using mtkit_test::sameJson;

TEST(AdditiveLimitsDefinition, TypeIdAndDefaults) {
  EXPECT_EQ(AdditiveLimitsDefinition::featureTypeIdStatic(), "limits");
  AdditiveLimitsDefinition const l;
  EXPECT_EQ(l.bedTempMax(), 0.0);
  EXPECT_EQ(l.speedXYMax(), 0.0);
  EXPECT_EQ(l.speedZMax(), 0.0);
  EXPECT_EQ(l.accelerationXYMax(), 3000.0);
  EXPECT_EQ(l.accelerationZMax(), 200.0);
  EXPECT_EQ(l.homePosition(), Orvo::Point3D(0, 0, 0));
  EXPECT_EQ(l.parkPosition(), Orvo::Point3D(0, 0, 0));
}

TEST(AdditiveLimitsDefinition, DefaultWritesJsonNullAndAccelerationZ200IsLostOnTheWayBack) {
  EXPECT_TRUE(AdditiveLimitsDefinition().getPersistData().isNull());
  AdditiveLimitsDefinition const l("default", parseJson(R"({"acceleration_z_max": 200, "speed_z_max": 5})"));
  EXPECT_EQ(l.accelerationZMax(), 200.0);
  EXPECT_TRUE(sameJson(l.getPersistData(), parseJson(R"({"speed_z_max": 5})")));
}

TEST(AdditiveLimitsDefinition, AccelerationAtDefaultIsLeftOutAndZeroIsWritten) {
  AdditiveLimitsDefinition l("default", parseJson(R"({"acceleration_xy_max": 3000, "acceleration_z_max": 0})"));
  EXPECT_EQ(l.accelerationZMax(), 0.0);
  EXPECT_TRUE(sameJson(l.getPersistData(), parseJson(R"({"acceleration_z_max": 0})")));
}

TEST(AdditiveLimitsDefinition, ReadsEveryKeyAndWritesItBack) {
  std::string const text = R"({"bed_temp_max": 110, "speed_xy_max": 250, "speed_z_max": 12, "acceleration_xy_max": 5000,
                               "acceleration_z_max": 150, "home_position": [0, 0, 250], "park_position": [-10, 200, 0]})";
  AdditiveLimitsDefinition const l("default", parseJson(text));
  EXPECT_EQ(l.bedTempMax(), 110.0);
  EXPECT_EQ(l.speedXYMax(), 250.0);
  EXPECT_EQ(l.speedZMax(), 12.0);
  EXPECT_EQ(l.accelerationXYMax(), 5000.0);
  EXPECT_EQ(l.accelerationZMax(), 150.0);
  EXPECT_EQ(l.homePosition(), Orvo::Point3D(0, 0, 250));
  EXPECT_EQ(l.parkPosition(), Orvo::Point3D(-10, 200, 0));
  EXPECT_TRUE(sameJson(l.getPersistData(), parseJson(text)));
}

TEST(AdditiveLimitsDefinition, PositionThatIsNotThreeNumbersFails) {
  try {
    AdditiveLimitsDefinition("default", parseJson(R"({"park_position": [1, 2, 3, 4]})"));
    FAIL() << "no exception";
  } catch (std::runtime_error const& e) {
    EXPECT_STREQ(e.what(), "Expected a 3D vector.");
  }
  EXPECT_THROW(AdditiveLimitsDefinition("d", parseJson(R"({"home_position": {"x": 1}})")), std::runtime_error);
}

TEST(AdditiveLimitsDefinition, SettersAndCopy) {
  AdditiveLimitsDefinition l;
  l.setBedTempMax(90);
  l.setSpeedXYMax(100);
  l.setSpeedZMax(10);
  l.setAccelerationXYMax(2000);
  l.setAccelerationZMax(100);
  l.setHomePosition(Orvo::Point3D(1, 2, 3));
  l.setParkPosition(Orvo::Point3D(0, 0, 9));
  AdditiveLimitsDefinition const copy(machine::CopyTag{}, l);
  EXPECT_TRUE(sameJson(copy.getPersistData(),
            parseJson(R"({"bed_temp_max": 90, "speed_xy_max": 100, "speed_z_max": 10, "acceleration_xy_max": 2000,
                          "acceleration_z_max": 100, "home_position": [1, 2, 3], "park_position": [0, 0, 9]})")));
}
