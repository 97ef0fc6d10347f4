#include "machine/machine/MachiningTimeInformation.h"

#include "util/utility/JsonUtils.h"

namespace machine {

MachiningTimeInformation::MachiningTimeInformation() = default;

MachiningTimeInformation::MachiningTimeInformation(std::string const& featureId, Json::Value const& data)
    : MachineFeatureDefinitionImpl(featureId) {
  using Orvo::JsonUtils;
  if (data.isMember("feedrate_ratio")) m_feedrateRatio = JsonUtils::parseDbl(data["feedrate_ratio"]);
  if (data.isMember("tool_change_time")) m_toolChangeTime = JsonUtils::parseDbl(data["tool_change_time"]);
}

MachiningTimeInformation::MachiningTimeInformation(CopyTag, MachiningTimeInformation const& other)
    : MachiningTimeInformation(other) {}

std::string MachiningTimeInformation::featureTypeIdStatic() { return "machining"; }

Json::Value MachiningTimeInformation::getPersistData() const {
  Json::Value data(Json::objectValue);
  data["feedrate_ratio"] = m_feedrateRatio;
  data["tool_change_time"] = m_toolChangeTime;
  return data;
}

}  // namespace machine
