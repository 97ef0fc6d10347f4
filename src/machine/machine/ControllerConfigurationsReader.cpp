#include "machine/machine/ControllerConfigurationsReader.h"

#include <json/reader.h>

#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

#include "machine/machine/NcCodeKinematicInterpolationMode.h"
#include "nc/AxisValueRange.h"
#include "util/utility/JsonUtils.h"

namespace machine {

namespace {

using Orvo::JsonUtils;

// jsoncpp answers a member lookup on an array or a scalar with its own logic
// error, which is no std::runtime_error. A value that isn't an object is
// therefore looked into only through this, which finds nothing there.
Json::Value const* member(Json::Value const& value, char const* key) {
  if (!value.isObject()) return nullptr;
  return value.find(key, key + std::char_traits<char>::length(key));
}

// A configuration of another kind than an object, or with "parts" of another
// kind, counts as one without parts, which is what the message says.
bool hasParts(Json::Value const& configuration) {
  Json::Value const* parts = member(configuration, "parts");
  return parts && parts->isObject() && parts->size() >= 1;
}

// Both ends or nothing: one end alone is ignored. Ends out of order give the
// infinite range rather than an error.
std::optional<Orvo::AxisValueRange> parseRange(Json::Value const& value, char const* minKey, char const* maxKey) {
  Json::Value const* minimum = member(value, minKey);
  Json::Value const* maximum = member(value, maxKey);
  if (!minimum || !maximum) return std::nullopt;
  std::optional<Orvo::AxisValueRange> range = Orvo::AxisValueRange::make(
      Orvo::AxisValue(JsonUtils::parseDbl(*minimum)), Orvo::AxisValue(JsonUtils::parseDbl(*maximum)));
  return range ? *range : Orvo::AxisValueRange();
}

NcCodeKinematicInterpolationMode parseMode(Json::Value const& value) {
  std::string const word = JsonUtils::parseStr(value);
  auto const& keyMap = Orvo::EnumTraits<NcCodeKinematicInterpolationMode>::keyMap();
  auto const it = keyMap.find(word);
  // The wording is the one users of these files have always seen.
  if (it == keyMap.end()) throw std::runtime_error(word + " is no supported");
  return it->second;
}

}  // namespace

std::vector<ControllerConfiguration> ControllerConfigurationsReader::read(std::istream& in) {
  Json::Value root;
  std::string errors;
  bool parsed = false;
  try {
    parsed = JsonUtils::parse(in, root, errors);
  } catch (Json::Exception const& e) {
    // jsoncpp throws its own exception, no std::runtime_error, for a document
    // nested too deeply; that is a parse failure like any other.
    errors = e.what();
  }
  if (!parsed) throw std::runtime_error("Json reader failed to parse controller configuration: " + errors);

  std::vector<ControllerConfiguration> configurations;
  if (root.isNull()) return configurations;
  // A document of another kind than an object holds no named configurations;
  // it is refused in the words of the typed reads for a value of the wrong
  // kind.
  if (!root.isObject()) throw std::runtime_error("Expected an object.");
  for (std::string const& name : root.getMemberNames()) configurations.push_back(read(name, root[name]));
  return configurations;
}

ControllerConfiguration ControllerConfigurationsReader::read(std::string const& name, Json::Value const& value) {
  if (!hasParts(value)) throw std::runtime_error("Missing parts node in controller configuration node.");
  ControllerConfiguration configuration(parseAxisConfigs(value["parts"]), name);
  parseGeneralConfig(configuration, value);
  return configuration;
}

ControllerConfiguration::AxisConfigurationMap ControllerConfigurationsReader::parseAxisConfigs(
    Json::Value const& parts) {
  ControllerConfiguration::AxisConfigurationMap configurations;
  for (std::string const& partId : parts.getMemberNames()) {
    Json::Value const axis = parts[partId];
    configurations.emplace(Orvo::MachinePartId(partId), parseAxisConfig(axis));
  }
  return configurations;
}

std::unique_ptr<AxisConfiguration> ControllerConfigurationsReader::parseAxisConfig(Json::Value const& value) {
  // null has no keys and gives the defaults; any other kind than an object is
  // refused as a typed read of the wrong kind is.
  if (!value.isNull() && !value.isObject()) throw std::runtime_error("Expected an object.");
  auto configuration = std::make_unique<AxisConfiguration>();
  if (auto const* v = member(value, "reversed")) configuration->setIsReversed(JsonUtils::parseBool(*v) != 0);
  if (auto const* v = member(value, "zero_position_offset"))
    configuration->setZeroPositionOffset(Orvo::AxisValue(JsonUtils::parseDbl(*v)));
  if (auto const* v = member(value, "reset"))
    configuration->setWhenToReset(ResetAxisPreference(JsonUtils::parseStr(*v)));
  if (auto const* v = member(value, "name")) configuration->setName(Orvo::AxisName(JsonUtils::parseStr(*v)));
  if (auto const* v = member(value, "home")) configuration->setHome(Orvo::AxisValue(JsonUtils::parseDbl(*v)));
  if (auto range = parseRange(value, "restricted_min", "restricted_max")) configuration->setRestrictedRange(*range);
  if (auto const* v = member(value, "max_normal_speed"))
    configuration->setMaxNormalSpeed(Orvo::Quantity::Speed(JsonUtils::parseDbl(*v)));
  if (auto const* v = member(value, "max_rapid_speed"))
    configuration->setMaxRapidSpeed(Orvo::Quantity::Speed(JsonUtils::parseDbl(*v)));
  if (auto const* v = member(value, "coordinate")) configuration->setCoordinate(JsonUtils::parseInt(*v));
  if (auto const* v = member(value, "tcp")) configuration->setTCPEnabled(JsonUtils::parseBool(*v) != 0);
  if (auto const* v = member(value, "preference"))
    configuration->setPreference(AnglePreference(JsonUtils::parseStr(*v)));
  if (auto range = parseRange(value, "wrap_around_at_min", "wrap_around_at_max"))
    configuration->setWrapAroundAtRange(*range);
  return configuration;
}

void ControllerConfigurationsReader::parseGeneralConfig(ControllerConfiguration& configuration,
                                                        Json::Value const& value) {
  if (auto const* v = member(value, "max_normal_speed"))
    configuration.setMaxNormalSpeed(
        Orvo::Quantity::Speed(JsonUtils::parseDbl(*v), Orvo::Quantity::Speed::SpeedUnit::MILLIMETRES_PER_MINUTE));
  if (auto const* v = member(value, "max_block_processing_speed")) {
    int const blocksPerSecond = JsonUtils::parseInt(*v);
    // The count is unsigned: a negative one would wrap round to a huge count
    // that couldn't even be read back, so it is refused.
    if (blocksPerSecond < 0) throw std::runtime_error("Expected a non-negative integer.");
    configuration.setMaximumBlockProcessingSpeed(static_cast<unsigned int>(blocksPerSecond));
  }
  if (auto const* v = member(value, "non_tcp_rapid_interpolation_mode"))
    configuration.setNonTcpRapidInterpolationMode(parseMode(*v));
  if (auto const* v = member(value, "tcp_rapid_interpolation_mode"))
    configuration.setTcpRapidInterpolationMode(parseMode(*v));
  if (auto const* v = member(value, "table_part_id"))
    configuration.setTablePartId(Orvo::MachinePartId(JsonUtils::parseStr(*v)));
  if (auto const* v = member(value, "head_info_part_id"))
    configuration.setHeadInfoPartId(Orvo::MachinePartId(JsonUtils::parseStr(*v)));
}

}  // namespace machine
