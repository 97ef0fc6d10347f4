#include "machine/machine/ControllerConfigurationsReader.h"

#include <gtest/gtest.h>
#include <json/reader.h>

#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>

#include "support/AssertRecorder.h"

using machine::AnglePreferenceValue;
using machine::AxisConfiguration;
using machine::ControllerConfiguration;
using machine::ControllerConfigurationsReader;
using machine::NcCodeKinematicInterpolationMode;
using machine::ResetAxisValue;
using Orvo::AxisValueRange;
using Orvo::MachinePartId;
using Orvo::Quantity::Speed;

namespace {

std::vector<ControllerConfiguration> readText(std::string const& text) {
  std::istringstream in(text);
  return ControllerConfigurationsReader::read(in);
}

Json::Value parse(std::string const& text) {
  Json::CharReaderBuilder builder;
  Json::Value value;
  std::string errors;
  std::istringstream in(text);
  if (!Json::parseFromStream(builder, in, &value, &errors)) throw std::logic_error("bad test JSON: " + errors);
  return value;
}

// The message of the exception a read of `text` throws, as "<kind>: <what>".
std::string failureOf(std::string const& text) {
  try {
    readText(text);
  } catch (std::out_of_range const& e) {
    return std::string("out_of_range: ") + e.what();
  } catch (std::runtime_error const& e) {
    return std::string("runtime_error: ") + e.what();
  }
  return "no failure";
}

AxisConfiguration const& onlyAxis(ControllerConfiguration const& configuration) {
  EXPECT_EQ(configuration.axisConfigurations().size(), 1u);
  return *configuration.axisConfigurations().begin()->second;
}

ControllerConfiguration readOne(std::string const& body) {
  return ControllerConfigurationsReader::read("main", parse(body));
}

char const* const kExample = R"({
  "lathe": {
    "parts": {
      "Z": { "name": "Z", "reversed": true, "home": 250.0 }
    },
    "table_part_id": "spindle"
  },
  "mill": {
    "parts": {
      "X": {
        "name": "X",
        "home": 0.0,
        "reversed": false,
        "zero_position_offset": 1.5,
        "restricted_min": -400.0,
        "restricted_max": 400.0,
        "max_normal_speed": 10000.0,
        "max_rapid_speed": 30000.0,
        "reset": "never",
        "coordinate": 0,
        "tcp": true,
        "preference": "no preference"
      },
      "C": {
        "name": "C",
        "reset": "before and on rewind",
        "coordinate": 5,
        "tcp": 0,
        "preference": "positive",
        "wrap_around_at_min": 0,
        "wrap_around_at_max": 360
      }
    },
    "max_normal_speed": 8000.0,
    "max_block_processing_speed": 1000,
    "non_tcp_rapid_interpolation_mode": "Unsynchronized",
    "tcp_rapid_interpolation_mode": "ToolTip",
    "table_part_id": "table",
    "head_info_part_id": "head"
  }
})";

}  // namespace

TEST(ControllerConfigurationsReader, ReadsEveryKey) {
  auto const configurations = readText(kExample);
  ASSERT_EQ(configurations.size(), 2u);
  EXPECT_EQ(configurations[0].name(), "lathe");
  ControllerConfiguration const& mill = configurations[1];
  EXPECT_EQ(mill.name(), "mill");
  EXPECT_EQ(mill.maxNormalSpeed(), Speed(8000.0, Speed::SpeedUnit::MILLIMETRES_PER_MINUTE));
  EXPECT_EQ(mill.maximumBlockProcessingSpeed(), 1000u);
  EXPECT_EQ(mill.nonTcpRapidInterpolationMode(), NcCodeKinematicInterpolationMode::UNSYNCHRONIZED);
  EXPECT_EQ(mill.tcpRapidInterpolationMode(), NcCodeKinematicInterpolationMode::TCP_ONLY);
  EXPECT_EQ(mill.tablePartId(), MachinePartId("table"));
  EXPECT_EQ(mill.headInfoPartId(), MachinePartId("head"));
  ASSERT_EQ(mill.axisConfigurations().size(), 2u);

  AxisConfiguration const& x = *mill.axisConfiguration(MachinePartId("X"));
  EXPECT_EQ(x.name(), Orvo::AxisName("X"));
  EXPECT_EQ(x.home(), Orvo::AxisValue(0.0));
  EXPECT_FALSE(x.isReversed());
  EXPECT_EQ(x.zeroPositionOffset(), Orvo::AxisValue(1.5));
  EXPECT_EQ(x.restrictedRange(), AxisValueRange(-400.0, 400.0));
  EXPECT_EQ(x.maxNormalSpeed(), Speed(10000.0));
  EXPECT_EQ(x.maxRapidSpeed(), Speed(30000.0));
  EXPECT_EQ(x.whenToReset().value(), ResetAxisValue::NEVER);
  EXPECT_EQ(x.coordinate(), 0);
  EXPECT_TRUE(x.isTCPEnabled());
  EXPECT_EQ(x.preference().value(), AnglePreferenceValue::NO_PREFERENCE);
  EXPECT_FALSE(x.hasWrapAroundAtLimits());

  AxisConfiguration const& c = *mill.axisConfiguration(MachinePartId("C"));
  EXPECT_EQ(c.whenToReset().value(), ResetAxisValue::BEFORE_AND_ON_REWIND);
  EXPECT_EQ(c.coordinate(), 5);
  EXPECT_FALSE(c.isTCPEnabled());
  EXPECT_EQ(c.preference().value(), AnglePreferenceValue::POSITIVE);
  EXPECT_EQ(c.wrapAroundAtRange(), AxisValueRange(0.0, 360.0));
  EXPECT_FALSE(c.hasRestrictedLimits());
  EXPECT_FALSE(c.home());
}

TEST(ControllerConfigurationsReader, AbsentKeysLeaveDefaults) {
  ControllerConfiguration const configuration = readOne(R"({"parts": {"A": {}}})");
  AxisConfiguration const defaults;
  EXPECT_EQ(onlyAxis(configuration), defaults);
  EXPECT_FALSE(configuration.maxNormalSpeed());
  EXPECT_FALSE(configuration.maximumBlockProcessingSpeed());
  EXPECT_FALSE(configuration.nonTcpRapidInterpolationMode());
  EXPECT_FALSE(configuration.tcpRapidInterpolationMode());
  EXPECT_FALSE(configuration.tablePartId());
  EXPECT_FALSE(configuration.headInfoPartId());
}

TEST(ControllerConfigurationsReader, EmptyRootGivesNoConfigurations) {
  EXPECT_TRUE(readText("{}").empty());
  EXPECT_TRUE(readText("null").empty());
}

TEST(ControllerConfigurationsReader, UnparsableTextFails) {
  std::string const failure = failureOf("{\"a\": ");
  std::string const prefix = "runtime_error: Json reader failed to parse controller configuration: ";
  ASSERT_EQ(failure.compare(0, prefix.size(), prefix), 0) << failure;
  EXPECT_GT(failure.size(), prefix.size());  // the parser's own text follows
}

TEST(ControllerConfigurationsReader, TooDeeplyNestedTextFailsAsUnparsable) {
  std::string const text = std::string(5000, '[') + std::string(5000, ']');
  std::string const failure = failureOf(text);
  std::string const prefix = "runtime_error: Json reader failed to parse controller configuration: ";
  EXPECT_EQ(failure.compare(0, prefix.size(), prefix), 0) << failure;
}

TEST(ControllerConfigurationsReader, EmptyPartsObjectFails) {
  EXPECT_EQ(failureOf(R"({"a": {"parts": {}}})"),
            "runtime_error: Missing parts node in controller configuration node.");
  EXPECT_THROW(readOne(R"({"parts": {}})"), std::runtime_error);
}

TEST(ControllerConfigurationsReader, MissingPartsFails) {
  EXPECT_EQ(failureOf(R"({"a": {"table_part_id": "t"}})"),
            "runtime_error: Missing parts node in controller configuration node.");
  try {
    readOne(R"({"head_info_part_id": "h"})");
    FAIL();
  } catch (std::runtime_error const& e) {
    EXPECT_STREQ(e.what(), "Missing parts node in controller configuration node.");
  }
}

TEST(ControllerConfigurationsReader, ConfigurationOrPartsOfAnotherKindCountAsMissingParts) {
  std::string const missing = "runtime_error: Missing parts node in controller configuration node.";
  EXPECT_EQ(failureOf(R"({"a": 5})"), missing);
  EXPECT_EQ(failureOf(R"({"a": ["parts"]})"), missing);
  EXPECT_EQ(failureOf(R"({"a": {"parts": [{"reversed": true}]}})"), missing);
  EXPECT_EQ(failureOf(R"({"a": {"parts": "X"}})"), missing);
}

TEST(ControllerConfigurationsReader, RootOrAxisOfAnotherKindFails) {
  EXPECT_EQ(failureOf("[1, 2]"), "runtime_error: Expected an object.");
  EXPECT_EQ(failureOf(R"({"a": {"parts": {"X": 1}}})"), "runtime_error: Expected an object.");
  ControllerConfiguration const configuration = readOne(R"({"parts": {"X": null}})");
  EXPECT_EQ(onlyAxis(configuration), AxisConfiguration());
}

TEST(ControllerConfigurationsReader, RestrictedMinAloneIsIgnored) {
  ControllerConfiguration const configuration = readOne(R"({"parts": {"X": {"restricted_min": -10}}})");
  EXPECT_FALSE(onlyAxis(configuration).hasRestrictedLimits());
  ControllerConfiguration const maxOnly = readOne(R"({"parts": {"X": {"restricted_max": "not even a number"}}})");
  EXPECT_FALSE(onlyAxis(maxOnly).hasRestrictedLimits());
}

TEST(ControllerConfigurationsReader, RestrictedMinAboveMaxGivesDefaultRangeWithoutError) {
  ControllerConfiguration configuration;
  EXPECT_NO_THROW(configuration = readOne(R"({"parts": {"X": {"restricted_min": 10, "restricted_max": -10}}})"));
  EXPECT_TRUE(onlyAxis(configuration).restrictedRange().isInfinite());
  EXPECT_EQ(onlyAxis(configuration).restrictedRange(), AxisValueRange());
}

TEST(ControllerConfigurationsReader, WrapAroundPairFollowsTheSameRules) {
  EXPECT_FALSE(onlyAxis(readOne(R"({"parts": {"C": {"wrap_around_at_max": 360}}})")).hasWrapAroundAtLimits());
  EXPECT_FALSE(onlyAxis(readOne(R"({"parts": {"C": {"wrap_around_at_min": 360, "wrap_around_at_max": 0}}})"))
                   .hasWrapAroundAtLimits());
  EXPECT_EQ(onlyAxis(readOne(R"({"parts": {"C": {"wrap_around_at_min": -180, "wrap_around_at_max": 180}}})"))
                .wrapAroundAtRange(),
            AxisValueRange(-180.0, 180.0));
  EXPECT_EQ(onlyAxis(readOne(R"({"parts": {"C": {"restricted_min": 5, "restricted_max": 5}}})")).restrictedRange(),
            AxisValueRange(5.0, 5.0));
}

TEST(ControllerConfigurationsReader, UnknownInterpolationModeThrows) {
  EXPECT_EQ(failureOf(R"({"a": {"parts": {"X": {}}, "tcp_rapid_interpolation_mode": "Mixed"}})"),
            "runtime_error: Mixed is no supported");
  EXPECT_EQ(failureOf(R"({"a": {"parts": {"X": {}}, "non_tcp_rapid_interpolation_mode": "synchronized"}})"),
            "runtime_error: synchronized is no supported");
}

TEST(ControllerConfigurationsReader, InterpolationModeWords) {
  auto modeOf = [](char const* key, char const* word) {
    Json::Value body;
    body["parts"]["X"] = Json::Value(Json::objectValue);
    body[key] = word;
    ControllerConfiguration const configuration = ControllerConfigurationsReader::read("m", body);
    return std::string(key) == "tcp_rapid_interpolation_mode" ? configuration.tcpRapidInterpolationMode()
                                                              : configuration.nonTcpRapidInterpolationMode();
  };
  EXPECT_EQ(modeOf("tcp_rapid_interpolation_mode", "Unsynchronized"), NcCodeKinematicInterpolationMode::UNSYNCHRONIZED);
  EXPECT_EQ(modeOf("tcp_rapid_interpolation_mode", "Synchronized"), NcCodeKinematicInterpolationMode::SYNCHRONIZED);
  EXPECT_EQ(modeOf("tcp_rapid_interpolation_mode", "ToolTip"), NcCodeKinematicInterpolationMode::TCP_ONLY);
  EXPECT_EQ(modeOf("non_tcp_rapid_interpolation_mode", "Synchronized"), NcCodeKinematicInterpolationMode::SYNCHRONIZED);
}

TEST(ControllerConfigurationsReader, ToolTipForNonTcpModeFailsTheSettersAssertionAndIsKept) {
  mtkit_test::AssertRecorder rec;
  ControllerConfiguration const configuration =
      readOne(R"({"parts": {"X": {}}, "non_tcp_rapid_interpolation_mode": "ToolTip"})");
  EXPECT_EQ(rec.takeTexts(),
            (std::vector<std::string>{"EXPECTS:mode == NcCodeKinematicInterpolationMode::UNSYNCHRONIZED || mode == "
                                      "NcCodeKinematicInterpolationMode::SYNCHRONIZED"}));
  EXPECT_EQ(configuration.nonTcpRapidInterpolationMode(), NcCodeKinematicInterpolationMode::TCP_ONLY);
}

TEST(ControllerConfigurationsReader, UnknownPreferenceWordsThrowOutOfRange) {
  EXPECT_EQ(failureOf(R"({"a": {"parts": {"X": {"reset": "sometimes"}}}})"), "out_of_range: invalid map<K, T> key");
  EXPECT_EQ(failureOf(R"({"a": {"parts": {"X": {"preference": "negative "}}}})"),
            "out_of_range: invalid map<K, T> key");
}

TEST(ControllerConfigurationsReader, ValuesOfTheWrongKindFail) {
  EXPECT_EQ(failureOf(R"({"a": {"parts": {"X": {"home": "0"}}}})"), "runtime_error: Expected a number.");
  EXPECT_EQ(failureOf(R"({"a": {"parts": {"X": {"name": 5}}}})"), "runtime_error: Expected a string.");
  EXPECT_EQ(failureOf(R"({"a": {"parts": {"X": {"coordinate": 1.5}}}})"), "runtime_error: Expected an integer.");
  EXPECT_EQ(failureOf(R"({"a": {"parts": {"X": {"tcp": "yes"}}}})"), "runtime_error: Expected a boolean.");
  EXPECT_EQ(failureOf(R"({"a": {"parts": {"X": {}}, "table_part_id": 3}})"), "runtime_error: Expected a string.");
  EXPECT_EQ(failureOf(R"({"a": {"parts": {"X": {}}, "tcp_rapid_interpolation_mode": 1}})"),
            "runtime_error: Expected a string.");
}

TEST(ControllerConfigurationsReader, NonZeroNumbersAreTrue) {
  ControllerConfiguration const configuration = readOne(R"({"parts": {"X": {"reversed": 2, "tcp": 0}}})");
  AxisConfiguration const& axis = onlyAxis(configuration);
  EXPECT_TRUE(axis.isReversed());
  EXPECT_FALSE(axis.isTCPEnabled());
}

TEST(ControllerConfigurationsReader, NegativeBlockProcessingSpeedIsRefused) {
  EXPECT_EQ(failureOf(R"({"a": {"parts": {"X": {}}, "max_block_processing_speed": -1}})"),
            "runtime_error: Expected a non-negative integer.");
  EXPECT_EQ(readOne(R"({"parts": {"X": {}}, "max_block_processing_speed": 0})").maximumBlockProcessingSpeed(), 0u);
}

TEST(ControllerConfigurationsReader, SpeedUnitsOfTheTwoLevels) {
  ControllerConfiguration const configuration =
      readOne(R"({"parts": {"X": {"max_normal_speed": 100, "max_rapid_speed": 200}}, "max_normal_speed": 300})");
  EXPECT_EQ(configuration.maxNormalSpeed()->get(Speed::SpeedUnit::MILLIMETRES_PER_MINUTE), 300.0);
  EXPECT_EQ(onlyAxis(configuration).maxNormalSpeed()->get(), 100.0);
  EXPECT_EQ(onlyAxis(configuration).maxRapidSpeed()->get(), 200.0);
}

TEST(ControllerConfigurationsReader, ConfigurationsComeInNameOrder) {
  auto const configurations = readText(R"({"b": {"parts": {"X": {}}}, "a": {"parts": {"Y": {}}}})");
  ASSERT_EQ(configurations.size(), 2u);
  EXPECT_EQ(configurations[0].name(), "a");
  EXPECT_EQ(configurations[1].name(), "b");
}

TEST(ControllerConfigurationsReader, OneBadConfigurationFailsTheWholeRead) {
  EXPECT_EQ(failureOf(R"({"a": {"parts": {"X": {}}}, "b": {"parts": {}}})"),
            "runtime_error: Missing parts node in controller configuration node.");
}

TEST(ControllerConfigurationsReader, ExampleFileReads) {
  std::ifstream in(std::string(MTKIT_EXAMPLES_DIR) + "/controller/two_configurations.json");
  ASSERT_TRUE(in.good());
  auto const configurations = ControllerConfigurationsReader::read(in);
  ASSERT_EQ(configurations.size(), 2u);
  EXPECT_EQ(configurations[0].name(), "five_axis");
  EXPECT_EQ(configurations[0].axisConfigurations().size(), 7u);
  EXPECT_EQ(configurations[1].name(), "three_axis");
}
