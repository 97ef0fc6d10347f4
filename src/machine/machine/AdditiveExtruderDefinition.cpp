#include "machine/machine/AdditiveExtruderDefinition.h"

#include <stdexcept>

#include "util/utility/JsonUtils.h"

namespace machine {

namespace {

using Orvo::JsonUtils;

Orvo::Vector3D readVector(Json::Value const& value) {
  if (!JsonUtils::isThreeDoubles(value)) throw std::runtime_error("Expected a 3D vector.");
  return Orvo::Vector3D(value[0].asDouble(), value[1].asDouble(), value[2].asDouble());
}

Json::Value writeVector(Orvo::Vector3D const& v) {
  Json::Value array(Json::arrayValue);
  array.append(v.x);
  array.append(v.y);
  array.append(v.z);
  return array;
}

}  // namespace

AdditiveExtruderDefinition::AdditiveExtruderDefinition() = default;

AdditiveExtruderDefinition::AdditiveExtruderDefinition(std::string const& featureId, Json::Value const& data)
    : MachineFeatureDefinitionImpl(featureId) {
  if (data.isMember("name")) m_name = JsonUtils::parseStr(data["name"]);
  if (data.isMember("diameter")) m_diameter = JsonUtils::parseDbl(data["diameter"]);
  if (data.isMember("filament_diameter")) m_filamentDiameter = JsonUtils::parseDbl(data["filament_diameter"]);
  if (data.isMember("fan_enabled")) m_fanEnabled = JsonUtils::parseBool(data["fan_enabled"]) != 0;
  if (data.isMember("max_volume_per_sec")) m_maxVolPerSec = JsonUtils::parseDbl(data["max_volume_per_sec"]);
  if (data.isMember("max_temp")) m_maxTemp = JsonUtils::parseDbl(data["max_temp"]);
  if (data.isMember("offset")) m_offset = readVector(data["offset"]);
}

AdditiveExtruderDefinition::AdditiveExtruderDefinition(CopyTag, AdditiveExtruderDefinition const& other)
    : AdditiveExtruderDefinition(other) {}

std::string AdditiveExtruderDefinition::featureTypeIdStatic() { return "additive_extruder"; }

Json::Value AdditiveExtruderDefinition::getPersistData() const {
  // Compared field by field with a default extruder; `!=` also writes a NaN.
  AdditiveExtruderDefinition const defaults;
  Json::Value data;
  if (!m_name.empty()) data["name"] = m_name;
  if (m_diameter != defaults.m_diameter) data["diameter"] = m_diameter;
  if (m_filamentDiameter != defaults.m_filamentDiameter) data["filament_diameter"] = m_filamentDiameter;
  if (m_fanEnabled != defaults.m_fanEnabled) data["fan_enabled"] = m_fanEnabled;
  if (m_maxVolPerSec != defaults.m_maxVolPerSec) data["max_volume_per_sec"] = m_maxVolPerSec;
  if (m_maxTemp != defaults.m_maxTemp) data["max_temp"] = m_maxTemp;
  if (m_offset.x != 0.0 || m_offset.y != 0.0 || m_offset.z != 0.0) data["offset"] = writeVector(m_offset);
  return data;
}

}  // namespace machine
