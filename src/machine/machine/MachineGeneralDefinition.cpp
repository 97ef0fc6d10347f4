#include "machine/machine/MachineGeneralDefinition.h"

#include <cstdint>
#include <stdexcept>

#include "util/utility/EnumBitsetJson.h"

namespace machine {

namespace {

void writeIfNotEmpty(Json::Value& data, char const* key, std::string const& text) {
  if (!text.empty()) data[key] = text;
}

std::string readText(Json::Value const& data, std::string const& key) {
  if (!data.isMember(key)) return std::string();
  Json::Value const& value = data[key];
  if (!value.isString()) throw std::runtime_error("'" + key + "' is expected to be a string");
  return value.asString();
}

}  // namespace

MachineGeneralDefinition::MachineGeneralDefinition() = default;

MachineGeneralDefinition::MachineGeneralDefinition(std::string const& vendor, std::string const& model,
                                                   std::string const& description,
                                                   Orvo::EnumBitset<MachineCapability> const& capabilities)
    : m_vendor(vendor), m_model(model), m_description(description), m_capabilities(capabilities) {}

MachineGeneralDefinition::MachineGeneralDefinition(MachineGeneralDefinition const& other) = default;

MachineGeneralDefinition& MachineGeneralDefinition::operator=(MachineGeneralDefinition const& other) = default;

Json::Value MachineGeneralDefinition::getPersistData() const {
  Json::Value data(Json::objectValue);
  writeIfNotEmpty(data, "vendor", m_vendor);
  writeIfNotEmpty(data, "model", m_model);
  writeIfNotEmpty(data, "description", m_description);
  data["capabilities"] = Orvo::EnumBitsetJson::save(m_capabilities);
  data["minimumRevision"] = fileRevision;
  return data;
}

void MachineGeneralDefinition::loadPersistData(Json::Value data) {
  m_vendor = readText(data, "vendor");
  m_model = readText(data, "model");
  m_description = readText(data, "description");
  m_capabilities = Orvo::EnumBitset<MachineCapability>();
  if (data.isMember("capabilities"))
    m_capabilities = Orvo::EnumBitsetJson::load<MachineCapability>(data["capabilities"]);
  // Read last, so that a bad text shows first. Compared unsigned, so a
  // negative revision is refused as well; a missing one is accepted.
  if (data.isMember("minimumRevision")) {
    auto const revision = static_cast<std::uint32_t>(data["minimumRevision"].asInt());
    if (revision > fileRevision) throw std::runtime_error("The machine has newer version, and cannot be loaded.");
  }
}

}  // namespace machine
