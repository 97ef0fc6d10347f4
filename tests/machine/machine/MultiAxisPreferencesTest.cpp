#include "machine/machine/MultiAxisPreferences.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "machine/machine/MachineDefinitionReader.h"
#include "machine/machine/MachineDefinitionWriter.h"
#include "support/JsonText.h"
#include "support/SameJson.h"

using com::vantora::Vector;
using machine::MultiAxisPreferences;
using mtkit_test::parseJson;
using mtkit_test::sameJson;
using Feedrate = MultiAxisPreferences::Feedrate;
using Retract = MultiAxisPreferences::RetractAndReconfigure;
using Singularity = MultiAxisPreferences::Singularity;

namespace {

MultiAxisPreferences read(char const* text) { return MultiAxisPreferences("default", parseJson(text)); }

/// The text of the std::runtime_error that reading `text` throws, or "" when
/// it reads.
std::string readFailure(std::string const& text) {
  try {
    MultiAxisPreferences("default", parseJson(text));
  } catch (std::runtime_error const& e) {
    return e.what();
  }
  return std::string();
}

std::vector<std::string> keys(Json::Value const& value) { return value.getMemberNames(); }

bool sameVector(Vector const& v, double x, double y, double z) { return v.x == x && v.y == y && v.z == z; }

}  // namespace

// Type, defaults, accessors.

TEST(MultiAxisPreferences, TypeIdIsMultiaxis) {
  EXPECT_EQ(MultiAxisPreferences::featureTypeIdStatic(), "multiaxis");
  MultiAxisPreferences const m;
  EXPECT_EQ(m.featureTypeId(), "multiaxis");
  EXPECT_EQ(m.featureId(), "default");
  EXPECT_EQ(MultiAxisPreferences("second", parseJson("{}")).featureId(), "second");
}

TEST(MultiAxisPreferences, DefaultConstructedHasNoVirtualToolTipTiltedWorkplaneAndNoOptions) {
  MultiAxisPreferences const m;
  EXPECT_FALSE(m.useVirtualToolTip());
  EXPECT_TRUE(m.useTiltedWorkplane());
  EXPECT_FALSE(m.singularity().has_value());
  EXPECT_FALSE(m.feedrateOptions().has_value());
  EXPECT_FALSE(m.retractAndReconfigure().has_value());
}

TEST(MultiAxisPreferences, SettersMakeEachOptionPresent) {
  MultiAxisPreferences m;
  m.setUseVirtualToolTip(true);
  m.setUseTiltedWorkplane(false);
  Singularity s;
  s.setMethod(1);
  m.setSingularity(s);
  Feedrate f;
  f.setMaximumFeedrate(500);
  m.setFeedrateOptions(f);
  Retract r;
  r.setSafeRetractDistance(12);
  m.setRetractAndReconfigure(r);
  EXPECT_TRUE(m.useVirtualToolTip());
  EXPECT_FALSE(m.useTiltedWorkplane());
  ASSERT_TRUE(m.singularity().has_value());
  EXPECT_EQ(m.singularity()->getMethod(), 1);
  ASSERT_TRUE(m.feedrateOptions().has_value());
  EXPECT_EQ(m.feedrateOptions()->getMaximumFeedrate(), 500.0);
  ASSERT_TRUE(m.retractAndReconfigure().has_value());
  EXPECT_EQ(m.retractAndReconfigure()->getSafeRetractDistance(), 12.0);
}

TEST(MultiAxisPreferences, AccessorsReturnCopies) {
  MultiAxisPreferences m;
  m.setSingularity(Singularity());
  auto copy = m.singularity();
  copy->setCone(1.0);
  EXPECT_EQ(m.singularity()->getCone(), 0.05235987755982988);
}

TEST(MultiAxisPreferences, CopyTagAndCloneKeepEverything) {
  MultiAxisPreferences m("mine", parseJson(R"({"virtual_tool_tip": true, "use_tilted_workplane": false,
      "singularity": {"method": "linear"}, "feedrate": {"method": "DPM"}, "retract_and_reconfigure": {"enabled": true}})"));
  MultiAxisPreferences const copy(machine::CopyTag{}, m);
  auto const clone = m.clone();
  for (MultiAxisPreferences const* other : std::vector<MultiAxisPreferences const*>{&copy, clone.get()}) {
    EXPECT_EQ(other->featureId(), "mine");
    EXPECT_TRUE(other->useVirtualToolTip());
    EXPECT_FALSE(other->useTiltedWorkplane());
    EXPECT_EQ(other->singularity(), m.singularity());
    EXPECT_EQ(other->feedrateOptions(), m.feedrateOptions());
    EXPECT_EQ(other->retractAndReconfigure(), m.retractAndReconfigure());
    EXPECT_TRUE(other->equals(m, 0.0));
  }
}

// Edge cases of the file format.

TEST(MultiAxisPreferences, EmptyObjectGivesDefaultsAndWritesBackTheTwoFlagsOnly) {
  MultiAxisPreferences const m = read("{}");
  EXPECT_FALSE(m.useVirtualToolTip());
  EXPECT_TRUE(m.useTiltedWorkplane());
  EXPECT_FALSE(m.singularity().has_value());
  EXPECT_FALSE(m.feedrateOptions().has_value());
  EXPECT_FALSE(m.retractAndReconfigure().has_value());
  EXPECT_TRUE(sameJson(m.getPersistData(), R"({"virtual_tool_tip": false, "use_tilted_workplane": true})"));
}

TEST(MultiAxisPreferences, EmptySingularityObjectGivesTableDefaultsAndWritesAllKeys) {
  MultiAxisPreferences const m = read(R"({"singularity": {}})");
  ASSERT_TRUE(m.singularity().has_value());
  Singularity const s = *m.singularity();
  EXPECT_TRUE(s.getAdjust());
  // 3 and 10 degrees in radians; the cone as the file format has it, one
  // unit in the last place above pi / 60.
  EXPECT_EQ(s.getCone(), 0.05235987755982989);
  EXPECT_NE(s.getCone(), 0.05235987755982988);
  EXPECT_EQ(s.getAngle(), 0.17453292519943295);
  EXPECT_EQ(s.getTolerance(), 0.04);
  EXPECT_EQ(s.getMethod(), 2);
  EXPECT_EQ(s.getLinearizationTolerance(), 0.04);
  Json::Value const out = m.getPersistData();
  EXPECT_TRUE(sameJson(out["singularity"], R"({"adjust": true, "cone": 0.05235987755982989,
      "angle": 0.17453292519943295, "tolerance": 0.04, "method": "rotary", "linearization_tolerance": 0.04})"));
  EXPECT_EQ(out["singularity"]["cone"].asDouble(), 0.05235987755982989);
  EXPECT_EQ(keys(out), (std::vector<std::string>{"singularity", "use_tilted_workplane", "virtual_tool_tip"}));
}

TEST(MultiAxisPreferences, SingularityWithMethodOffLosesLinearizationToleranceOnWritingBack) {
  MultiAxisPreferences const m = read(R"({"singularity": {"method": "off", "linearization_tolerance": 0.5}})");
  EXPECT_EQ(m.singularity()->getMethod(), 0);
  EXPECT_EQ(m.singularity()->getLinearizationTolerance(), 0.5);
  Json::Value const out = m.getPersistData()["singularity"];
  EXPECT_FALSE(out.isMember("linearization_tolerance"));
  EXPECT_EQ(keys(out), (std::vector<std::string>{"adjust", "angle", "cone", "method", "tolerance"}));
  EXPECT_EQ(out["method"].asString(), "off");
  MultiAxisPreferences const linear = read(R"({"singularity": {"method": "linear", "linearization_tolerance": 0.5}})");
  EXPECT_EQ(linear.getPersistData()["singularity"]["linearization_tolerance"].asDouble(), 0.5);
  EXPECT_EQ(linear.getPersistData()["singularity"]["method"].asString(), "linear");
}

TEST(MultiAxisPreferences, FeedrateWithMethodInverseTimeLosesTypeOutputToleranceAndBpwRatio) {
  MultiAxisPreferences const m = read(R"({"feedrate": {"method": "inverse time", "max_feedrate": 999,
      "unit": "seconds", "type": "standard", "output_tolerance": 0.1, "BPW_ratio": 2}})");
  Feedrate const f = *m.feedrateOptions();
  EXPECT_EQ(f.getFeedMode(), 0);
  EXPECT_EQ(f.getMaximumFeedrate(), 999.0);
  EXPECT_EQ(f.getInverseTimeUnits(), 0);
  // Read all the same: only the writer leaves them out.
  EXPECT_EQ(f.getDPMType(), 0);
  EXPECT_EQ(f.getDPMOutputTolerance(), 0.1);
  EXPECT_EQ(f.getDPMPulseWeight(), 2.0);
  EXPECT_TRUE(sameJson(m.getPersistData()["feedrate"],
                       R"({"method": "inverse time", "max_feedrate": 999, "unit": "seconds"})"));
}

TEST(MultiAxisPreferences, FeedrateWithDpmOrFpmLosesUnit) {
  for (auto const& [word, mode] : std::vector<std::pair<std::string, int>>{{"DPM", 1}, {"FPM", 2}}) {
    SCOPED_TRACE(word);
    MultiAxisPreferences const m("default", parseJson(R"({"feedrate": {"method": ")" + word +
                                                       R"(", "max_feedrate": 50, "unit": "seconds", "type": "standard",
        "output_tolerance": 0.25, "BPW_ratio": 3}})"));
    EXPECT_EQ(m.feedrateOptions()->getFeedMode(), mode);
    EXPECT_EQ(m.feedrateOptions()->getInverseTimeUnits(), 0);
    EXPECT_TRUE(sameJson(m.getPersistData()["feedrate"], R"({"method": ")" + word + R"(", "max_feedrate": 50,
        "type": "standard", "output_tolerance": 0.25, "BPW_ratio": 3})"));
  }
}

TEST(MultiAxisPreferences, WordWithWrongCaseFails) {
  EXPECT_EQ(readFailure(R"({"feedrate": {"method": "dpm"}})"), "dpm is no supported");
  EXPECT_EQ(readFailure(R"({"singularity": {"method": "Rotary"}})"), "Rotary is no supported");
  EXPECT_EQ(readFailure(R"({"retract_and_reconfigure": {"rewind_preference": "rewindAtLinear"}})"),
            "rewindAtLinear is no supported");
  // And through the machine file reader, which ends the read with it.
  std::istringstream in(R"({"multiaxis": {"default": {"feedrate": {"method": "dpm"}}}})");
  auto result = machine::MachineDefinitionReader().read(in);
  ASSERT_TRUE(result.isError());
  EXPECT_EQ(result.getReadErrorMessage(), "Error reading Machine Definition data from machine file:\n\ndpm is no supported");
}

// Words, defaults and texts.

TEST(MultiAxisPreferences, EveryWordReadsToItsValueAndWritesBack) {
  struct Case {
    char const* option;
    char const* key;
    char const* word;
    int value;
  };
  std::vector<Case> const cases{
      {"singularity", "method", "off", 0},
      {"singularity", "method", "linear", 1},
      {"singularity", "method", "rotary", 2},
      {"feedrate", "method", "inverse time", 0},
      {"feedrate", "method", "DPM", 1},
      {"feedrate", "method", "FPM", 2},
      {"feedrate", "unit", "seconds", 0},
      {"feedrate", "unit", "minutes", 1},
      {"feedrate", "type", "standard", 0},
      {"feedrate", "type", "combination", 1},
      {"retract_and_reconfigure", "rewind_preference", "RewindAtLinear", 1},
      {"retract_and_reconfigure", "rewind_preference", "RewindAtRapid", 2},
      {"retract_and_reconfigure", "retract_preference", "RetractAtApex", 1},
      {"retract_and_reconfigure", "retract_preference", "StayAtApex", 2},
      {"retract_and_reconfigure", "rewind_strategy", "MinimizeRewinds", 0},
      {"retract_and_reconfigure", "rewind_strategy", "AxisPreference", 1},
  };
  for (Case const& c : cases) {
    SCOPED_TRACE(std::string(c.option) + "/" + c.key + " " + c.word);
    Json::Value body(Json::objectValue);
    body[c.option][c.key] = c.word;
    // "unit" is written only in inverse time, "type" only outside it.
    if (std::string(c.key) == "unit") body[c.option]["method"] = "inverse time";
    if (std::string(c.key) == "type") body[c.option]["method"] = "DPM";
    MultiAxisPreferences const m("default", body);
    int value = -1;
    if (std::string(c.option) == "singularity") value = m.singularity()->getMethod();
    if (std::string(c.option) == "feedrate") {
      Feedrate const f = *m.feedrateOptions();
      if (std::string(c.key) == "method") value = f.getFeedMode();
      if (std::string(c.key) == "unit") value = f.getInverseTimeUnits();
      if (std::string(c.key) == "type") value = f.getDPMType();
    }
    if (std::string(c.option) == "retract_and_reconfigure") {
      Retract const r = *m.retractAndReconfigure();
      if (std::string(c.key) == "rewind_preference") value = r.getRewindPreference();
      if (std::string(c.key) == "retract_preference") value = r.getRetractPreference();
      if (std::string(c.key) == "rewind_strategy") value = r.getRewindStrategy();
    }
    EXPECT_EQ(value, c.value);
    EXPECT_EQ(m.getPersistData()[c.option][c.key].asString(), c.word);
  }
}

TEST(MultiAxisPreferences, UnknownWordOfEachTableFailsWithTheWord) {
  EXPECT_EQ(readFailure(R"({"singularity": {"method": "none"}})"), "none is no supported");
  EXPECT_EQ(readFailure(R"({"feedrate": {"method": "inverse_time"}})"), "inverse_time is no supported");
  EXPECT_EQ(readFailure(R"({"feedrate": {"unit": "hours"}})"), "hours is no supported");
  EXPECT_EQ(readFailure(R"({"feedrate": {"type": ""}})"), " is no supported");
  EXPECT_EQ(readFailure(R"({"retract_and_reconfigure": {"rewind_preference": "RewindAtApex"}})"),
            "RewindAtApex is no supported");
  EXPECT_EQ(readFailure(R"({"retract_and_reconfigure": {"retract_preference": "Stay"}})"), "Stay is no supported");
  EXPECT_EQ(readFailure(R"({"retract_and_reconfigure": {"rewind_strategy": "MaximizeRewinds"}})"),
            "MaximizeRewinds is no supported");
  // A word must be a string; a number is refused by the typed read.
  EXPECT_EQ(readFailure(R"({"feedrate": {"method": 1}})"), "Expected a string.");
}

TEST(MultiAxisPreferences, ValueWithoutAWordIsWrittenAsNull) {
  MultiAxisPreferences m;
  Singularity s;
  s.setMethod(7);
  m.setSingularity(s);
  Feedrate f;
  f.setFeedMode(static_cast<Feedrate::FeedMode>(5));
  f.setDPMType(static_cast<Feedrate::DPMType>(-1));
  m.setFeedrateOptions(f);
  Retract r;
  r.setRewindPreference(0);
  r.setRetractPreference(3);
  r.setRewindStrategy(2);
  m.setRetractAndReconfigure(r);
  Json::Value const out = m.getPersistData();
  EXPECT_TRUE(out["singularity"]["method"].isNull());
  EXPECT_TRUE(out["singularity"].isMember("method"));
  // Method 7 is not 0, so its tolerance is written.
  EXPECT_TRUE(out["singularity"].isMember("linearization_tolerance"));
  EXPECT_TRUE(out["feedrate"]["method"].isNull());
  EXPECT_TRUE(out["feedrate"]["type"].isNull());
  EXPECT_FALSE(out["feedrate"].isMember("unit"));
  EXPECT_TRUE(out["retract_and_reconfigure"]["rewind_preference"].isNull());
  EXPECT_TRUE(out["retract_and_reconfigure"]["retract_preference"].isNull());
  EXPECT_TRUE(out["retract_and_reconfigure"]["rewind_strategy"].isNull());
  f.setFeedMode(Feedrate::FEED_INVERSE_TIME);
  f.setInverseTimeUnits(static_cast<Feedrate::InverseTimeUnits>(9));
  m.setFeedrateOptions(f);
  EXPECT_TRUE(m.getPersistData()["feedrate"]["unit"].isNull());
  EXPECT_TRUE(m.getPersistData()["feedrate"].isMember("unit"));
}

TEST(MultiAxisPreferences, EmptyFeedrateObjectStartsFromTheRecordsDefaults) {
  MultiAxisPreferences const m = read(R"({"feedrate": {}})");
  EXPECT_EQ(*m.feedrateOptions(), Feedrate());
  // Feed per minute, no maximum, combination, both settings unset.
  EXPECT_TRUE(sameJson(m.getPersistData()["feedrate"], R"({"method": "FPM", "max_feedrate": -1,
      "type": "combination", "output_tolerance": -1, "BPW_ratio": -1})"));
}

TEST(MultiAxisPreferences, EmptyRetractObjectGivesTheTableDefaultsAndWritesAllKeys) {
  MultiAxisPreferences const m = read(R"({"retract_and_reconfigure": {}})");
  Retract const r = *m.retractAndReconfigure();
  EXPECT_FALSE(r.getReconfigure());
  EXPECT_EQ(r.getRewindPreference(), 1);
  EXPECT_EQ(r.getRetractPreference(), 1);
  EXPECT_EQ(r.getRewindStrategy(), 0);
  EXPECT_TRUE(sameVector(r.getStockExpansion(), 0, 0, 0));
  EXPECT_EQ(r.getSafeRetractDistance(), 0.0);
  EXPECT_EQ(r.getSafeRetractFeedrate(), 0.0);
  EXPECT_EQ(r.getSafePlungeFeedrate(), 0.0);
  EXPECT_TRUE(sameJson(m.getPersistData()["retract_and_reconfigure"], R"({"enabled": false,
      "rewind_preference": "RewindAtLinear", "retract_preference": "RetractAtApex", "rewind_strategy": "MinimizeRewinds",
      "stock_expansion": [0, 0, 0], "safe_retract_distance": 0, "safe_retract_feedrate": 0,
      "safe_plunge_feedrate": 0})"));
}

TEST(MultiAxisPreferences, EveryKeyIsReadIntoItsField) {
  MultiAxisPreferences const m = read(R"({"virtual_tool_tip": true, "use_tilted_workplane": false,
      "singularity": {"adjust": false, "cone": 0.1, "angle": 0.2, "tolerance": 0.3, "method": "linear",
                      "linearization_tolerance": 0.4},
      "feedrate": {"method": "DPM", "max_feedrate": 720, "unit": "seconds", "type": "standard",
                   "output_tolerance": 0.05, "BPW_ratio": 1.5},
      "retract_and_reconfigure": {"enabled": true, "rewind_preference": "RewindAtRapid",
                                  "retract_preference": "StayAtApex", "rewind_strategy": "AxisPreference",
                                  "stock_expansion": [1, 2.5, -3], "safe_retract_distance": 25,
                                  "safe_retract_feedrate": 2000, "safe_plunge_feedrate": 300}})");
  EXPECT_TRUE(m.useVirtualToolTip());
  EXPECT_FALSE(m.useTiltedWorkplane());
  Singularity const s = *m.singularity();
  EXPECT_FALSE(s.getAdjust());
  EXPECT_EQ(s.getCone(), 0.1);
  EXPECT_EQ(s.getAngle(), 0.2);
  EXPECT_EQ(s.getTolerance(), 0.3);
  EXPECT_EQ(s.getMethod(), 1);
  EXPECT_EQ(s.getLinearizationTolerance(), 0.4);
  Feedrate const f = *m.feedrateOptions();
  EXPECT_EQ(f.getFeedMode(), Feedrate::FEED_DPM);
  EXPECT_EQ(f.getMaximumFeedrate(), 720.0);
  EXPECT_EQ(f.getInverseTimeUnits(), Feedrate::INVERSE_TIME_SECONDS);
  EXPECT_EQ(f.getDPMType(), Feedrate::DPM_STANDARD);
  EXPECT_EQ(f.getDPMOutputTolerance(), 0.05);
  EXPECT_EQ(f.getDPMPulseWeight(), 1.5);
  Retract const r = *m.retractAndReconfigure();
  EXPECT_TRUE(r.getReconfigure());
  EXPECT_EQ(r.getRewindPreference(), 2);
  EXPECT_EQ(r.getRetractPreference(), 2);
  EXPECT_EQ(r.getRewindStrategy(), 1);
  EXPECT_TRUE(sameVector(r.getStockExpansion(), 1, 2.5, -3));
  EXPECT_EQ(r.getSafeRetractDistance(), 25.0);
  EXPECT_EQ(r.getSafeRetractFeedrate(), 2000.0);
  EXPECT_EQ(r.getSafePlungeFeedrate(), 300.0);
}

TEST(MultiAxisPreferences, BooleansTakeANonZeroNumberAsTrue) {
  MultiAxisPreferences const m = read(R"({"virtual_tool_tip": 2, "use_tilted_workplane": 0,
      "singularity": {"adjust": 0}, "retract_and_reconfigure": {"enabled": -1}})");
  EXPECT_TRUE(m.useVirtualToolTip());
  EXPECT_FALSE(m.useTiltedWorkplane());
  EXPECT_FALSE(m.singularity()->getAdjust());
  EXPECT_TRUE(m.retractAndReconfigure()->getReconfigure());
  EXPECT_EQ(readFailure(R"({"virtual_tool_tip": "yes"})"), "Expected a boolean.");
  EXPECT_EQ(readFailure(R"({"singularity": {"cone": "3deg"}})"), "Expected a number.");
}

TEST(MultiAxisPreferences, StockExpansionOtherThanThreeNumbersFails) {
  EXPECT_EQ(readFailure(R"({"retract_and_reconfigure": {"stock_expansion": [1, 2]}})"), "Expected a 3D vector.");
  EXPECT_EQ(readFailure(R"({"retract_and_reconfigure": {"stock_expansion": [1, 2, 3, 4]}})"), "Expected a 3D vector.");
  EXPECT_EQ(readFailure(R"({"retract_and_reconfigure": {"stock_expansion": [1, "2", 3]}})"), "Expected a 3D vector.");
  EXPECT_EQ(readFailure(R"({"retract_and_reconfigure": {"stock_expansion": 5}})"), "Expected a 3D vector.");
  EXPECT_EQ(readFailure(R"({"retract_and_reconfigure": {"stock_expansion": [1, 2, 3]}})"), "");
}

TEST(MultiAxisPreferences, OptionKeyWithNullGivesThePresentDefaultOption) {
  MultiAxisPreferences const m = read(R"({"singularity": null, "feedrate": null, "retract_and_reconfigure": null})");
  ASSERT_TRUE(m.singularity().has_value());
  EXPECT_EQ(m.singularity()->getCone(), 0.05235987755982989);
  EXPECT_EQ(*m.feedrateOptions(), Feedrate());
  EXPECT_EQ(*m.retractAndReconfigure(), Retract());
}

TEST(MultiAxisPreferences, BodyOrOptionOfAnotherKindFails) {
  EXPECT_EQ(readFailure("3"), "Expected an object.");
  EXPECT_EQ(readFailure("[]"), "Expected an object.");
  EXPECT_EQ(readFailure(R"({"singularity": true})"), "Expected an object.");
  EXPECT_EQ(readFailure(R"({"feedrate": [1]})"), "Expected an object.");
  EXPECT_EQ(readFailure(R"({"retract_and_reconfigure": "on"})"), "Expected an object.");
  // A null body is an empty one.
  MultiAxisPreferences const m("default", Json::Value());
  EXPECT_TRUE(m.useTiltedWorkplane());
}

TEST(MultiAxisPreferences, TheMachineFileReaderBuildsIt) {
  std::istringstream in(R"({"multiaxis": {"default": {"virtual_tool_tip": true}, "other": {}}})");
  auto result = machine::MachineDefinitionReader().read(in);
  ASSERT_FALSE(result.isError());
  auto const definition = result.getMachineDefinition();
  auto const* m = dynamic_cast<MultiAxisPreferences const*>(definition->getFeature("multiaxis", "default"));
  ASSERT_NE(m, nullptr);
  EXPECT_TRUE(m->useVirtualToolTip());
  EXPECT_NE(dynamic_cast<MultiAxisPreferences const*>(definition->getFeature("multiaxis", "other")), nullptr);
}

// Random values round-trip.

namespace {

/// Values from raw std::mt19937 output, whose sequence the standard fixes.
class Random {
public:
  explicit Random(std::uint32_t seed) : m_engine(seed) {}
  double real(double lo, double hi) { return lo + (hi - lo) * (static_cast<double>(m_engine()) / 4294967295.0); }
  bool chance(double p) { return real(0, 1) < p; }
  int pick(int lo, int hi) { return lo + static_cast<int>(m_engine() % static_cast<std::uint32_t>(hi - lo + 1)); }

private:
  std::mt19937 m_engine;
};

MultiAxisPreferences randomPreferences(Random& r) {
  MultiAxisPreferences m;
  m.setUseVirtualToolTip(r.chance(0.5));
  m.setUseTiltedWorkplane(r.chance(0.5));
  if (r.chance(0.7)) {
    Singularity s;
    s.setAdjust(r.chance(0.5));
    s.setCone(r.real(0, 0.5));
    s.setAngle(r.real(0, 1.5));
    s.setTolerance(r.real(0, 1));
    s.setMethod(r.pick(0, 2));
    // A method of 0 drops the tolerance, so it is the reading default there.
    s.setLinearizationTolerance(s.getMethod() == 0 ? 0.04 : r.real(0, 1));
    m.setSingularity(s);
  }
  if (r.chance(0.7)) {
    Feedrate f;
    f.setFeedMode(static_cast<Feedrate::FeedMode>(r.pick(0, 2)));
    f.setMaximumFeedrate(r.real(-1, 10000));
    // What the mode leaves unwritten keeps the record's default.
    if (f.getFeedMode() == 0) {
      f.setInverseTimeUnits(static_cast<Feedrate::InverseTimeUnits>(r.pick(0, 1)));
    } else {
      f.setDPMType(static_cast<Feedrate::DPMType>(r.pick(0, 1)));
      f.setDPMOutputTolerance(r.real(0, 1));
      f.setDPMPulseWeight(r.real(0, 10));
    }
    m.setFeedrateOptions(f);
  }
  if (r.chance(0.7)) {
    Retract a;
    a.setReconfigure(r.chance(0.5));
    a.setRewindPreference(r.pick(1, 2));
    a.setRetractPreference(r.pick(1, 2));
    a.setRewindStrategy(r.pick(0, 1));
    a.setStockExpansion(Vector(r.real(-10, 10), r.real(-10, 10), r.real(-10, 10)));
    a.setSafeRetractDistance(r.real(0, 100));
    a.setSafeRetractFeedrate(r.real(0, 5000));
    a.setSafePlungeFeedrate(r.real(0, 5000));
    m.setRetractAndReconfigure(a);
  }
  return m;
}

}  // namespace

TEST(MultiAxisPreferences, RandomValuesRoundTripThroughJsonWithFixedSeeds) {
  for (std::uint32_t seed : {3u, 17u, 256u, 4099u, 65537u}) {
    SCOPED_TRACE(seed);
    Random r(seed);
    for (int i = 0; i < 50; ++i) {
      MultiAxisPreferences const original = randomPreferences(r);
      // Through the text of a machine file, as a host would store it.
      machine::MachineDefinition definition;
      definition.putFeature(original.clone());
      std::ostringstream out;
      ASSERT_FALSE(machine::MachineDefinitionWriter::write(out, definition).isError());
      std::istringstream in(out.str());
      auto result = machine::MachineDefinitionReader().read(in);
      ASSERT_FALSE(result.isError()) << out.str();
      auto const back = result.getMachineDefinition();
      auto const* m = dynamic_cast<MultiAxisPreferences const*>(back->getFeature("multiaxis", "default"));
      ASSERT_NE(m, nullptr);
      EXPECT_EQ(m->useVirtualToolTip(), original.useVirtualToolTip());
      EXPECT_EQ(m->useTiltedWorkplane(), original.useTiltedWorkplane());
      EXPECT_EQ(m->singularity(), original.singularity());
      EXPECT_EQ(m->feedrateOptions(), original.feedrateOptions());
      EXPECT_EQ(m->retractAndReconfigure(), original.retractAndReconfigure());
      EXPECT_TRUE(sameJson(m->getPersistData(), original.getPersistData()));
    }
  }
}
