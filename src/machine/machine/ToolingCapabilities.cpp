#include "machine/machine/ToolingCapabilities.h"

#include "util/utility/JsonUtils.h"

namespace machine {

ToolingCapabilities::ToolingCapabilities() = default;

ToolingCapabilities::ToolingCapabilities(std::string const& featureId, Json::Value const& data)
    : MachineFeatureDefinitionImpl(featureId) {
  using Orvo::JsonUtils;
  if (data.isMember("has_tool_changer")) m_hasToolChanger = JsonUtils::parseBool(data["has_tool_changer"]) != 0;
  if (data.isMember("supports_tool_preload"))
    m_supportsToolPreload = JsonUtils::parseBool(data["supports_tool_preload"]) != 0;
  // A negative count is not refused: it wraps to a large unsigned number,
  // and is written back as that number.
  if (data.isMember("number_of_tools"))
    m_numberOfTools = static_cast<std::uint32_t>(JsonUtils::parseInt(data["number_of_tools"]));
}

ToolingCapabilities::ToolingCapabilities(CopyTag, ToolingCapabilities const& other) : ToolingCapabilities(other) {}

std::string ToolingCapabilities::featureTypeIdStatic() { return "tooling"; }

Json::Value ToolingCapabilities::getPersistData() const {
  Json::Value data(Json::objectValue);
  data["has_tool_changer"] = m_hasToolChanger;
  data["supports_tool_preload"] = m_supportsToolPreload;
  data["number_of_tools"] = Json::UInt(m_numberOfTools);
  return data;
}

}  // namespace machine
