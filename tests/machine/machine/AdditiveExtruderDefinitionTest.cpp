#include "machine/machine/AdditiveExtruderDefinition.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <stdexcept>

#include "support/JsonText.h"
#include "support/SameJson.h"

using machine::AdditiveExtruderDefinition;
using mtkit_test::parseJson;
using mtkit_test::sameJson;

TEST(AdditiveExtruderDefinition, TypeIdAndDefaults) {
  EXPECT_EQ(AdditiveExtruderDefinition::featureTypeIdStatic(), "additive_extruder");
  AdditiveExtruderDefinition const e;
  EXPECT_EQ(e.name(), "");
  EXPECT_EQ(e.diameter(), 0.0);
  EXPECT_EQ(e.filamentDiameter(), 0.0);
  EXPECT_FALSE(e.fanEnabled());
  EXPECT_EQ(e.maxVolPerSec(), 0.0);
  EXPECT_EQ(e.maxTemp(), 0.0);
  EXPECT_EQ(e.offset().x, 0.0);
  EXPECT_EQ(e.offset().y, 0.0);
  EXPECT_EQ(e.offset().z, 0.0);
}

TEST(AdditiveExtruderDefinition, DefaultWritesJsonNull) {
  EXPECT_TRUE(AdditiveExtruderDefinition().getPersistData().isNull());
  EXPECT_TRUE(AdditiveExtruderDefinition("default", parseJson("{}")).getPersistData().isNull());
}

TEST(AdditiveExtruderDefinition, ReadsEveryKeyAndWritesWhatDiffers) {
  std::string const text = R"({"name": "E0", "diameter": 0.4, "filament_diameter": 1.75, "fan_enabled": true,
                               "max_volume_per_sec": 12, "max_temp": 260, "offset": [1, -2, 0.5]})";
  AdditiveExtruderDefinition const e("left", parseJson(text));
  EXPECT_EQ(e.name(), "E0");
  EXPECT_EQ(e.diameter(), 0.4);
  EXPECT_EQ(e.filamentDiameter(), 1.75);
  EXPECT_TRUE(e.fanEnabled());
  EXPECT_EQ(e.maxVolPerSec(), 12.0);
  EXPECT_EQ(e.maxTemp(), 260.0);
  EXPECT_EQ(e.offset().x, 1.0);
  EXPECT_EQ(e.offset().y, -2.0);
  EXPECT_EQ(e.offset().z, 0.5);
  EXPECT_TRUE(sameJson(e.getPersistData(), parseJson(text)));
}

TEST(AdditiveExtruderDefinition, OffsetWithOneNonZeroComponentIsWrittenAndFanNonZeroIsTrue) {
  AdditiveExtruderDefinition e("default", parseJson(R"({"fan_enabled": 3, "offset": [0, 0, 0]})"));
  EXPECT_TRUE(e.fanEnabled());
  EXPECT_TRUE(sameJson(e.getPersistData(), parseJson(R"({"fan_enabled": true})")));
  e.setOffset(Orvo::Vector3D(0, 0, -4));
  e.setFanEnabled(false);
  EXPECT_TRUE(sameJson(e.getPersistData(), parseJson(R"({"offset": [0, 0, -4]})")));
}

TEST(AdditiveExtruderDefinition, NanIsWritten) {
  AdditiveExtruderDefinition e;
  e.setMaxTemp(std::numeric_limits<double>::quiet_NaN());
  Json::Value const out = e.getPersistData();
  ASSERT_TRUE(out.isMember("max_temp"));
  EXPECT_TRUE(std::isnan(out["max_temp"].asDouble()));
}

TEST(AdditiveExtruderDefinition, OffsetWithTwoNumbersFailsWithExpectedA3DVector) {
  try {
    AdditiveExtruderDefinition("default", parseJson(R"({"offset": [1, 2]})"));
    FAIL() << "no exception";
  } catch (std::runtime_error const& e) {
    EXPECT_STREQ(e.what(), "Expected a 3D vector.");
  }
  EXPECT_THROW(AdditiveExtruderDefinition("d", parseJson(R"({"offset": [1, 2, "3"]})")), std::runtime_error);
  EXPECT_THROW(AdditiveExtruderDefinition("d", parseJson(R"({"name": 5})")), std::runtime_error);
}

TEST(AdditiveExtruderDefinition, SettersAndCopy) {
  AdditiveExtruderDefinition e;
  e.setName("hot end");
  e.setDiameter(0.6);
  e.setFilamentDiameter(2.85);
  e.setMaxVolPerSec(20);
  e.setMaxTemp(300);
  AdditiveExtruderDefinition const copy(machine::CopyTag{}, e);
  EXPECT_TRUE(sameJson(copy.getPersistData(), parseJson(R"({"name": "hot end", "diameter": 0.6, "filament_diameter": 2.85,
                                                 "max_volume_per_sec": 20, "max_temp": 300})")));
}
