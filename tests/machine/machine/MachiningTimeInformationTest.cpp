#include "machine/machine/MachiningTimeInformation.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "support/JsonText.h"
#include "support/SameJson.h"

using machine::MachiningTimeInformation;
using mtkit_test::parseJson;
using mtkit_test::sameJson;

TEST(MachiningTimeInformation, TypeIdAndDefaults) {
  EXPECT_EQ(MachiningTimeInformation::featureTypeIdStatic(), "machining");
  MachiningTimeInformation const m;
  EXPECT_EQ(m.featureTypeId(), "machining");
  EXPECT_EQ(m.feedrateRatio(), 1.0);
  EXPECT_EQ(m.toolChangeTime(), 15.0);
}

TEST(MachiningTimeInformation, EmptyObjectGivesTheDefaultsAndWritesThemAllBack) {
  MachiningTimeInformation const m("default", parseJson("{}"));
  EXPECT_EQ(m.feedrateRatio(), 1.0);
  EXPECT_EQ(m.toolChangeTime(), 15.0);
  EXPECT_TRUE(sameJson(m.getPersistData(), parseJson(R"({"feedrate_ratio": 1.0, "tool_change_time": 15.0})")));
}

TEST(MachiningTimeInformation, ReadsEachKeyAndKeepsTheOtherDefault) {
  MachiningTimeInformation const m("default", parseJson(R"({"feedrate_ratio": 0.85})"));
  EXPECT_EQ(m.feedrateRatio(), 0.85);
  EXPECT_EQ(m.toolChangeTime(), 15.0);
  MachiningTimeInformation const n("default", parseJson(R"({"tool_change_time": 4})"));
  EXPECT_EQ(n.feedrateRatio(), 1.0);
  EXPECT_EQ(n.toolChangeTime(), 4.0);
  EXPECT_THROW(MachiningTimeInformation("d", parseJson(R"({"feedrate_ratio": "fast"})")), std::runtime_error);
}

TEST(MachiningTimeInformation, SettersAndCopy) {
  MachiningTimeInformation m;
  m.setFeedrateRatio(0.5);
  m.setToolChangeTime(7.25);
  MachiningTimeInformation const copy(machine::CopyTag{}, m);
  EXPECT_TRUE(sameJson(copy.getPersistData(), parseJson(R"({"feedrate_ratio": 0.5, "tool_change_time": 7.25})")));
}
