#include "machine/machine/AdditivePlatformDefinition.h"

namespace machine {

AdditivePlatformDefinition::AdditivePlatformDefinition() = default;

AdditivePlatformDefinition::AdditivePlatformDefinition(std::string const& featureId, Json::Value const& data)
    : MachineFeatureDefinitionImpl(featureId) {
  if (data.isMember("dimensions")) m_dimensions = AdditivePlatformDimensions::fromJson(data["dimensions"]);
  if (data.isMember("platform_mesh")) m_meshOptions = AdditivePlatformMeshOptions::fromJson(data["platform_mesh"]);
}

AdditivePlatformDefinition::AdditivePlatformDefinition(CopyTag, AdditivePlatformDefinition const& other)
    : AdditivePlatformDefinition(other) {}

std::string AdditivePlatformDefinition::featureTypeIdStatic() { return "platform"; }

Json::Value AdditivePlatformDefinition::getPersistData() const {
  Json::Value data;
  if (m_dimensions) data["dimensions"] = m_dimensions->toJson();
  if (m_meshOptions) data["platform_mesh"] = m_meshOptions->toJson();
  return data;
}

}  // namespace machine
