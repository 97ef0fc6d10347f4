#include "machine/machine/AdditiveLimitsDefinition.h"

#include <stdexcept>

#include "util/utility/JsonUtils.h"

namespace machine {

namespace {

using Orvo::JsonUtils;

Orvo::Point3D readPoint(Json::Value const& value) {
  if (!JsonUtils::isThreeDoubles(value)) throw std::runtime_error("Expected a 3D vector.");
  return Orvo::Point3D(value[0].asDouble(), value[1].asDouble(), value[2].asDouble());
}

bool isOrigin(Orvo::Point3D const& p) { return p.x == 0.0 && p.y == 0.0 && p.z == 0.0; }

Json::Value writePoint(Orvo::Point3D const& p) {
  Json::Value array(Json::arrayValue);
  array.append(p.x);
  array.append(p.y);
  array.append(p.z);
  return array;
}

}  // namespace

AdditiveLimitsDefinition::AdditiveLimitsDefinition() = default;

AdditiveLimitsDefinition::AdditiveLimitsDefinition(std::string const& featureId, Json::Value const& data)
    : MachineFeatureDefinitionImpl(featureId) {
  if (data.isMember("bed_temp_max")) m_bedTempMax = JsonUtils::parseDbl(data["bed_temp_max"]);
  if (data.isMember("speed_xy_max")) m_speedXYMax = JsonUtils::parseDbl(data["speed_xy_max"]);
  if (data.isMember("speed_z_max")) m_speedZMax = JsonUtils::parseDbl(data["speed_z_max"]);
  if (data.isMember("acceleration_xy_max")) m_accelerationXYMax = JsonUtils::parseDbl(data["acceleration_xy_max"]);
  if (data.isMember("acceleration_z_max")) m_accelerationZMax = JsonUtils::parseDbl(data["acceleration_z_max"]);
  if (data.isMember("home_position")) m_homePosition = readPoint(data["home_position"]);
  if (data.isMember("park_position")) m_parkPosition = readPoint(data["park_position"]);
}

AdditiveLimitsDefinition::AdditiveLimitsDefinition(CopyTag, AdditiveLimitsDefinition const& other)
    : AdditiveLimitsDefinition(other) {}

std::string AdditiveLimitsDefinition::featureTypeIdStatic() { return "limits"; }

Json::Value AdditiveLimitsDefinition::getPersistData() const {
  // Compared field by field with the defaults, so an acceleration left at
  // its default is not written and a 0 is; `!=` also writes a NaN.
  AdditiveLimitsDefinition const defaults;
  Json::Value data;
  if (m_bedTempMax != defaults.m_bedTempMax) data["bed_temp_max"] = m_bedTempMax;
  if (m_speedXYMax != defaults.m_speedXYMax) data["speed_xy_max"] = m_speedXYMax;
  if (m_speedZMax != defaults.m_speedZMax) data["speed_z_max"] = m_speedZMax;
  if (m_accelerationXYMax != defaults.m_accelerationXYMax) data["acceleration_xy_max"] = m_accelerationXYMax;
  if (m_accelerationZMax != defaults.m_accelerationZMax) data["acceleration_z_max"] = m_accelerationZMax;
  if (!isOrigin(m_homePosition)) data["home_position"] = writePoint(m_homePosition);
  if (!isOrigin(m_parkPosition)) data["park_position"] = writePoint(m_parkPosition);
  return data;
}

}  // namespace machine
