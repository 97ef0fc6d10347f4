#pragma once
// Whether a machine can change tools, whether it can preload the next one,
// and how many tools it holds: the "tooling" feature.

#include <json/value.h>

#include <cstdint>
#include <string>

#include "machine/machine/CopyTag.h"
#include "machine/machine/MachineFeatureDefinitionImpl.h"

namespace machine {

class ToolingCapabilities : public MachineFeatureDefinitionImpl<ToolingCapabilities, MachineFeatureDefinition> {
public:
  /// A tool changer with preload and 100 tools.
  ToolingCapabilities();
  /// Reads a "tooling" body; every key is optional and a missing one keeps
  /// its default. Throws std::runtime_error on a value of the wrong kind.
  ToolingCapabilities(std::string const& featureId, Json::Value const& data);
  ToolingCapabilities(CopyTag, ToolingCapabilities const& other);

  static std::string featureTypeIdStatic();

  /// Every key, always, whether or not it holds its default.
  Json::Value getPersistData() const override;

  bool hasToolChanger() const noexcept { return m_hasToolChanger; }
  void setHasToolChanger(bool value) noexcept { m_hasToolChanger = value; }
  bool supportsToolPreload() const noexcept { return m_supportsToolPreload; }
  void setSupportsToolPreload(bool value) noexcept { m_supportsToolPreload = value; }
  std::uint32_t numberOfTools() const noexcept { return m_numberOfTools; }
  void setNumberOfTools(std::uint32_t value) noexcept { m_numberOfTools = value; }

private:
  bool m_hasToolChanger = true;
  bool m_supportsToolPreload = true;
  std::uint32_t m_numberOfTools = 100;
};

}  // namespace machine
