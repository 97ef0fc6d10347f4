#include "machine/machine/ControllerConfigurationsWriter.h"

#include <gtest/gtest.h>
#include <json/reader.h>

#include <fstream>
#include <random>
#include <sstream>
#include <streambuf>
#include <string>
#include <vector>

#include "machine/machine/ControllerConfigurationsReader.h"
#include "util/utility/JsonUtils.h"

using machine::AnglePreferenceValue;
using machine::AxisConfiguration;
using machine::ControllerConfiguration;
using machine::ControllerConfigurationsReader;
using machine::ControllerConfigurationsWriter;
using machine::NcCodeKinematicInterpolationMode;
using machine::ResetAxisValue;
using machine::WriterStatus;
using Orvo::AxisValueRange;
using Orvo::MachinePartId;
using Orvo::Quantity::Speed;

namespace {

Json::Value parse(std::string const& text) {
  Json::CharReaderBuilder builder;
  Json::Value value;
  std::string errors;
  std::istringstream in(text);
  EXPECT_TRUE(Json::parseFromStream(builder, in, &value, &errors)) << errors;
  return value;
}

std::vector<std::string> keysOf(Json::Value const& value) { return value.getMemberNames(); }

ControllerConfiguration withOneDefaultAxis(std::string const& name) {
  ControllerConfiguration::AxisConfigurationMap map;
  map.emplace(MachinePartId("X"), std::make_unique<AxisConfiguration>());
  return ControllerConfiguration(std::move(map), name);
}

std::vector<ControllerConfiguration> writeAndRead(std::vector<ControllerConfiguration> const& configurations) {
  std::ostringstream out;
  WriterStatus const status = ControllerConfigurationsWriter().write(out, configurations);
  EXPECT_FALSE(status.isError()) << status.getMessage();
  std::istringstream in(out.str());
  return ControllerConfigurationsReader::read(in);
}

// A stream buffer that refuses every character, as a full disk would.
class FailingBuffer : public std::streambuf {
protected:
  int_type overflow(int_type) override { return traits_type::eof(); }
};

// Random configurations over every field, for a fixed seed.
class RandomConfigurations {
public:
  explicit RandomConfigurations(unsigned seed) : m_random(seed) {}

  ControllerConfiguration make(std::string const& name) {
    ControllerConfiguration::AxisConfigurationMap map;
    int const axes = 1 + pick(6);
    for (int i = 0; i < axes; ++i) map[MachinePartId(word())] = axis();
    ControllerConfiguration configuration(std::move(map), name);
    if (coin()) configuration.setHeadInfoPartId(MachinePartId(word()));
    if (coin()) configuration.setTablePartId(MachinePartId(word()));
    if (coin()) configuration.setMaxNormalSpeed(Speed(number(), Speed::SpeedUnit::MILLIMETRES_PER_MINUTE));
    if (coin()) configuration.setMaximumBlockProcessingSpeed(static_cast<unsigned>(pick(100000)));
    if (coin())
      configuration.setNonTcpRapidInterpolationMode(coin() ? NcCodeKinematicInterpolationMode::UNSYNCHRONIZED
                                                           : NcCodeKinematicInterpolationMode::SYNCHRONIZED);
    if (coin()) configuration.setTcpRapidInterpolationMode(static_cast<NcCodeKinematicInterpolationMode>(pick(3)));
    return configuration;
  }

private:
  std::unique_ptr<AxisConfiguration> axis() {
    auto a = std::make_unique<AxisConfiguration>();
    a->setIsReversed(coin());
    a->setZeroPositionOffset(number());
    a->setWhenToReset(static_cast<ResetAxisValue>(pick(4)));
    if (coin()) a->setHome(Orvo::AxisValue(number()));
    if (coin()) a->setRestrictedRange(range());
    if (coin()) a->setName(Orvo::AxisName(word()));
    if (coin()) a->setMaxNormalSpeed(Speed(number()));
    if (coin()) a->setMaxRapidSpeed(Speed(number()));
    if (coin()) a->setCoordinate(pick(2001) - 1000);
    a->setTCPEnabled(coin());
    a->setPreference(static_cast<AnglePreferenceValue>(pick(3) - 1));
    if (coin()) a->setWrapAroundAtRange(range());
    return a;
  }
  AxisValueRange range() {
    double const a = number(), b = number();
    return AxisValueRange(std::min(a, b), std::max(a, b));
  }
  int pick(int n) { return std::uniform_int_distribution<int>(0, n - 1)(m_random); }
  bool coin() { return pick(2) == 1; }
  double number() { return std::uniform_real_distribution<double>(-1e5, 1e5)(m_random); }
  std::string word() {
    static char const letters[] = "ABCXYZabc_xyz019 ";
    std::string w;
    int const length = 1 + pick(6);
    for (int i = 0; i < length; ++i) w += letters[pick(static_cast<int>(sizeof letters) - 1)];
    return w;
  }

  std::mt19937 m_random;
};

}  // namespace

TEST(ControllerConfigurationsWriter, WritesTheDocumentByName) {
  std::vector<ControllerConfiguration> configurations;
  configurations.push_back(withOneDefaultAxis("b"));
  configurations.push_back(withOneDefaultAxis("a"));
  std::ostringstream out;
  WriterStatus const status = ControllerConfigurationsWriter().write(out, configurations);
  EXPECT_FALSE(status.isError());
  EXPECT_EQ(status.getMessage(), "");
  std::string const text = out.str();
  ASSERT_FALSE(text.empty());
  EXPECT_EQ(text.back(), '\n');
  Json::Value const root = parse(text);
  EXPECT_EQ(keysOf(root), (std::vector<std::string>{"a", "b"}));
  EXPECT_EQ(text, root.toStyledString() + "\n");
}

TEST(ControllerConfigurationsWriter, WritingOnlyAxislessConfigurationsWritesNothingAndSucceeds) {
  std::vector<ControllerConfiguration> configurations;
  configurations.emplace_back();
  configurations.emplace_back(ControllerConfiguration::AxisConfigurationMap{}, "other");
  configurations.back().setTablePartId(MachinePartId("table"));
  std::ostringstream out;
  WriterStatus const status = ControllerConfigurationsWriter().write(out, configurations);
  EXPECT_FALSE(status.isError());
  EXPECT_EQ(status.getMessage(), "");
  EXPECT_EQ(out.str(), "");

  std::ostringstream single;
  EXPECT_FALSE(ControllerConfigurationsWriter().write(single, configurations.back()).isError());
  EXPECT_EQ(single.str(), "");

  std::ostringstream none;
  EXPECT_FALSE(ControllerConfigurationsWriter().write(none, std::vector<ControllerConfiguration>{}).isError());
  EXPECT_EQ(none.str(), "");
}

TEST(ControllerConfigurationsWriter, AxislessConfigurationIsSkippedAmongOthers) {
  std::vector<ControllerConfiguration> configurations;
  configurations.emplace_back(ControllerConfiguration::AxisConfigurationMap{}, "empty");
  configurations.push_back(withOneDefaultAxis("full"));
  std::ostringstream out;
  ControllerConfigurationsWriter().write(out, configurations);
  EXPECT_EQ(keysOf(parse(out.str())), (std::vector<std::string>{"full"}));
}

TEST(ControllerConfigurationsWriter, DefaultValuedKeysAppearInEveryAxisObject) {
  ControllerConfiguration configuration = withOneDefaultAxis("m");
  auto c = std::make_unique<AxisConfiguration>();
  c->setName(Orvo::AxisName("C"));
  configuration.setAxisConfiguration(MachinePartId("C"), std::move(c));
  Json::Value const json = ControllerConfigurationsWriter::toJson(configuration);
  for (char const* part : {"C", "X"}) {
    Json::Value const& axis = json["parts"][part];
    ASSERT_TRUE(axis.isObject()) << part;
    EXPECT_TRUE(axis["reversed"].isBool());
    EXPECT_FALSE(axis["reversed"].asBool());
    EXPECT_TRUE(axis["tcp"].isBool());
    EXPECT_TRUE(axis["tcp"].asBool());
    EXPECT_TRUE(axis["zero_position_offset"].isDouble());
    EXPECT_EQ(axis["zero_position_offset"].asDouble(), 0.0);
    EXPECT_EQ(axis["reset"], "never");
    EXPECT_EQ(axis["preference"], "no preference");
  }
  EXPECT_EQ(keysOf(json["parts"]["X"]),
            (std::vector<std::string>{"preference", "reset", "reversed", "tcp", "zero_position_offset"}));
  EXPECT_EQ(keysOf(json["parts"]["C"]),
            (std::vector<std::string>{"name", "preference", "reset", "reversed", "tcp", "zero_position_offset"}));
}

TEST(ControllerConfigurationsWriter, EveryAxisKeyWhenSet) {
  ControllerConfiguration::AxisConfigurationMap map;
  auto a = std::make_unique<AxisConfiguration>();
  a->setIsReversed(true);
  a->setZeroPositionOffset(2.0);
  a->setWhenToReset(ResetAxisValue::ON_REWIND);
  a->setHome(Orvo::AxisValue(-1.0));
  a->setRestrictedRange(AxisValueRange(-90.0, 90.0));
  a->setName(Orvo::AxisName("A"));
  a->setMaxNormalSpeed(Speed(100.0));
  a->setMaxRapidSpeed(Speed(200.0));
  a->setCoordinate(3);
  a->setTCPEnabled(false);
  a->setPreference(AnglePreferenceValue::NEGATIVE);
  a->setWrapAroundAtRange(AxisValueRange(-180.0, 180.0));
  map.emplace(MachinePartId("A"), std::move(a));
  Json::Value const axis =
      ControllerConfigurationsWriter::toJson(ControllerConfiguration(std::move(map), "m"))["parts"]["A"];
  Json::Value const expected = parse(R"({
    "name": "A", "home": -1.0, "reversed": true, "zero_position_offset": 2.0,
    "restricted_min": -90.0, "restricted_max": 90.0, "max_normal_speed": 100.0, "max_rapid_speed": 200.0,
    "reset": "on rewind", "coordinate": 3, "tcp": false, "preference": "negative",
    "wrap_around_at_min": -180.0, "wrap_around_at_max": 180.0})");
  EXPECT_EQ(axis, expected) << axis.toStyledString();
}

TEST(ControllerConfigurationsWriter, GeneralKeysOnlyWhenSet) {
  ControllerConfiguration configuration = withOneDefaultAxis("m");
  EXPECT_EQ(keysOf(ControllerConfigurationsWriter::toJson(configuration)), (std::vector<std::string>{"parts"}));
  configuration.setMaxNormalSpeed(Speed(1234.5, Speed::SpeedUnit::MILLIMETRES_PER_MINUTE));
  configuration.setMaximumBlockProcessingSpeed(4000000000u);
  configuration.setNonTcpRapidInterpolationMode(NcCodeKinematicInterpolationMode::SYNCHRONIZED);
  configuration.setTcpRapidInterpolationMode(NcCodeKinematicInterpolationMode::TCP_ONLY);
  configuration.setTablePartId(MachinePartId("T"));
  configuration.setHeadInfoPartId(MachinePartId("H"));
  Json::Value const json = ControllerConfigurationsWriter::toJson(configuration);
  EXPECT_EQ(json["max_normal_speed"].asDouble(), 1234.5);
  EXPECT_TRUE(json["max_block_processing_speed"].isUInt());
  EXPECT_EQ(json["max_block_processing_speed"].asUInt(), 4000000000u);
  EXPECT_EQ(json["non_tcp_rapid_interpolation_mode"], "Synchronized");
  EXPECT_EQ(json["tcp_rapid_interpolation_mode"], "ToolTip");
  EXPECT_EQ(json["table_part_id"], "T");
  EXPECT_EQ(json["head_info_part_id"], "H");
}

TEST(ControllerConfigurationsWriter, ModeWithoutWordIsLeftOut) {
  ControllerConfiguration configuration = withOneDefaultAxis("m");
  configuration.setTcpRapidInterpolationMode(NcCodeKinematicInterpolationMode::MIXED);
  EXPECT_FALSE(ControllerConfigurationsWriter::toJson(configuration).isMember("tcp_rapid_interpolation_mode"));
}

TEST(ControllerConfigurationsWriter, NullAxisEntryIsWrittenAsDefaults) {
  ControllerConfiguration configuration = withOneDefaultAxis("m");
  configuration.setAxisConfiguration(MachinePartId("N"), nullptr);
  Json::Value const json = ControllerConfigurationsWriter::toJson(configuration);
  EXPECT_EQ(json["parts"]["N"], json["parts"]["X"]);
}

TEST(ControllerConfigurationsWriter, StreamFailureIsReported) {
  FailingBuffer buffer;
  std::ostream out(&buffer);
  out.exceptions(std::ios_base::badbit | std::ios_base::failbit);
  WriterStatus const status = ControllerConfigurationsWriter().write(out, withOneDefaultAxis("m"));
  ASSERT_TRUE(status.isError());
  std::string const prefix = "Write failed, likely out of disk space or permissions missing: ";
  EXPECT_EQ(status.getMessage().compare(0, prefix.size(), prefix), 0) << status.getMessage();
  EXPECT_GT(status.getMessage().size(), prefix.size());
}

TEST(ControllerConfigurationsWriter, RoundTripOfExampleFile) {
  std::ifstream in(std::string(MTKIT_EXAMPLES_DIR) + "/controller/two_configurations.json");
  ASSERT_TRUE(in.good());
  auto const first = ControllerConfigurationsReader::read(in);
  auto const second = writeAndRead(first);
  ASSERT_EQ(second.size(), first.size());
  for (std::size_t i = 0; i < first.size(); ++i) {
    EXPECT_EQ(second[i], first[i]);
    EXPECT_TRUE(second[i].equals(first[i], 1e-12));
  }
}

TEST(ControllerConfigurationsWriter, RoundTripOfFeatureBody) {
  std::ifstream in(std::string(MTKIT_EXAMPLES_DIR) + "/controller/controller_feature_body.json");
  ASSERT_TRUE(in.good());
  Json::Value body;
  Json::CharReaderBuilder builder;
  std::string errors;
  ASSERT_TRUE(Json::parseFromStream(builder, in, &body, &errors)) << errors;
  ControllerConfiguration const first("default", body);
  ControllerConfiguration const second("default", first.getPersistData());
  EXPECT_EQ(second, first);
  EXPECT_TRUE(second.equals(first, 1e-12));
  EXPECT_TRUE(Orvo::JsonUtils::areEqual(first.getPersistData(), body, 0.0));
}

TEST(ControllerConfigurationsWriter, RoundTripOfHandWrittenConfiguration) {
  ControllerConfiguration::AxisConfigurationMap map;
  auto b = std::make_unique<AxisConfiguration>();
  b->setRestrictedRange(AxisValueRange(-0.1, 0.1));
  b->setWhenToReset(ResetAxisValue::BEFORE_EVERY_OPERATION);
  b->setPreference(AnglePreferenceValue::POSITIVE);
  b->setHome(Orvo::AxisValue(1.0 / 3.0));
  map.emplace(MachinePartId("B axis"), std::move(b));
  map.emplace(MachinePartId(""), std::make_unique<AxisConfiguration>());
  ControllerConfiguration configuration(std::move(map), "hand");
  configuration.setMaxNormalSpeed(Speed(0.1 + 0.2, Speed::SpeedUnit::MILLIMETRES_PER_MINUTE));
  configuration.setTcpRapidInterpolationMode(NcCodeKinematicInterpolationMode::SYNCHRONIZED);
  configuration.setHeadInfoPartId(MachinePartId("héad"));

  std::vector<ControllerConfiguration> configurations;
  configurations.push_back(std::move(configuration));
  auto const readBack = writeAndRead(configurations);
  ASSERT_EQ(readBack.size(), 1u);
  EXPECT_TRUE(readBack[0].equals(configurations[0], 1e-9));
  EXPECT_EQ(readBack[0].name(), "hand");
  EXPECT_EQ(readBack[0], configurations[0]);
}

TEST(ControllerConfigurationsWriter, RoundTripOfRandomConfigurations) {
  RandomConfigurations random(20261122u);
  for (int round = 0; round < 40; ++round) {
    std::vector<ControllerConfiguration> configurations;
    int const count = 1 + round % 4;
    for (int i = 0; i < count; ++i) configurations.push_back(random.make("config" + std::to_string(i)));
    auto const readBack = writeAndRead(configurations);
    ASSERT_EQ(readBack.size(), configurations.size()) << "round " << round;
    for (std::size_t i = 0; i < configurations.size(); ++i) {
      EXPECT_TRUE(readBack[i].equals(configurations[i], 1e-9)) << "round " << round << " #" << i;
      EXPECT_EQ(readBack[i].name(), configurations[i].name());
      EXPECT_EQ(readBack[i], configurations[i]) << "round " << round << " #" << i;
    }
  }
}
