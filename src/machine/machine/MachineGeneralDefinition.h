#pragma once
// Who made a machine and what it can do: the "general" section of a machine
// file.

#include <json/value.h>

#include <string>

#include "machine/machine/MachineCapability.h"
#include "util/utility/EnumBitset.h"

namespace machine {

class MachineGeneralDefinition {
public:
  /// The file revision of this library: a file asking for more is refused.
  static constexpr unsigned int fileRevision = 45805;

  /// Empty strings, no capability.
  MachineGeneralDefinition();
  MachineGeneralDefinition(std::string const& vendor, std::string const& model, std::string const& description,
                           Orvo::EnumBitset<MachineCapability> const& capabilities);
  MachineGeneralDefinition(MachineGeneralDefinition const& other);
  MachineGeneralDefinition& operator=(MachineGeneralDefinition const& other);

  std::string const& vendor() const noexcept { return m_vendor; }
  std::string const& model() const noexcept { return m_model; }
  std::string const& description() const noexcept { return m_description; }
  Orvo::EnumBitset<MachineCapability> const& capabilities() const noexcept { return m_capabilities; }
  bool supportsCapability(MachineCapability capability) const { return m_capabilities.test(capability); }

  void setVendor(std::string const& vendor) { m_vendor = vendor; }
  void setModel(std::string const& model) { m_model = model; }
  void setDescription(std::string const& description) { m_description = description; }
  void setCapability(MachineCapability capability, bool supported) { m_capabilities.set(capability, supported); }

  /// "vendor", "model", "description" when not empty; "capabilities" always
  /// (null when none); "minimumRevision" always, 45805.
  Json::Value getPersistData() const;
  /// Replaces everything from `data`; throws std::runtime_error on a
  /// non-string text, a bad capability, or a revision newer than this
  /// library's.
  void loadPersistData(Json::Value data);

private:
  std::string m_vendor;
  std::string m_model;
  std::string m_description;
  Orvo::EnumBitset<MachineCapability> m_capabilities;
};

}  // namespace machine
