#include "machine/machine/PostProcessingProperties.h"

#include "util/utility/JsonUtils.h"
#include "util/utility/Messages.h"

namespace machine {

PostProcessingProperties::PostProcessingProperties() = default;

PostProcessingProperties::PostProcessingProperties(std::string const& featureId)
    : MachineFeatureDefinitionImpl(featureId) {}

PostProcessingProperties::PostProcessingProperties(std::string const& featureId, Json::Value const& data)
    : MachineFeatureDefinitionImpl(featureId) {
  using Orvo::JsonUtils;
  if (data.isMember("path")) {
    m_postPath = JsonUtils::parseStr(data["path"]);
    // Properties belong to a post-processor: without one they are not read.
    Json::Value const& properties = data["properties"];
    if (properties.isObject())
      for (auto member = properties.begin(); member != properties.end(); ++member)
        m_properties[member.name()] = JsonUtils::parseVariant(*member);
  }
  if (data.isMember("output_folder")) m_outputFolder = JsonUtils::parseStr(data["output_folder"]);
}

PostProcessingProperties::PostProcessingProperties(CopyTag, PostProcessingProperties const& other)
    : PostProcessingProperties(other) {}

std::string PostProcessingProperties::featureTypeIdStatic() { return "post"; }

Orvo::Variant PostProcessingProperties::propertyValue(std::string const& name) const {
  auto const found = m_properties.find(name);
  return found == m_properties.end() ? Orvo::Variant() : found->second;
}

void PostProcessingProperties::setProperty(std::string const& name, Orvo::Variant const& value) {
  m_properties[name] = value;
}

Orvo::VariableSet PostProcessingProperties::asVariableSet() const {
  Orvo::VariableSet set;
  for (auto const& [name, value] : m_properties) set.set(Orvo::Messages::utf8ToWide(name), value);
  return set;
}

Json::Value PostProcessingProperties::getPersistData() const {
  Json::Value data;
  if (!m_postPath.empty()) {
    data["path"] = m_postPath;
    if (!m_properties.empty()) {
      Json::Value& properties = data["properties"];
      for (auto const& [name, value] : m_properties) properties[name] = Orvo::JsonUtils::variantToJson(value);
    }
  }
  if (!m_outputFolder.empty()) data["output_folder"] = m_outputFolder;
  return data;
}

}  // namespace machine
