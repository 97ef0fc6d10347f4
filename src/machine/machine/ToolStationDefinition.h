#pragma once
// What a tool station holds: tool size limits, coolants, tool interface.

#include <optional>

#include "machine/machine/MachineCoolant.h"
#include "machine/machine/ToolStationInterfaceName.h"
#include "util/utility/Distance.h"
#include "util/utility/EnumBitset.h"

namespace machine {

class ToolStationDefinition {
public:
  using Distance = Orvo::Quantity::Distance;

  ToolStationDefinition(std::optional<Distance> maxToolLength, std::optional<Distance> maxToolDiameter,
                        Orvo::EnumBitset<MachineCoolant> coolants,
                        std::optional<ToolStationInterfaceName> toolInterface);
  ToolStationDefinition(ToolStationDefinition const&) = default;
  ToolStationDefinition& operator=(ToolStationDefinition const&) = default;

  std::optional<Distance> maxToolLength() const noexcept { return m_maxToolLength; }
  std::optional<Distance> maxToolDiameter() const noexcept { return m_maxToolDiameter; }
  void setMaxToolLength(std::optional<Distance> maxToolLength) { m_maxToolLength = maxToolLength; }
  void setMaxToolDiameter(std::optional<Distance> maxToolDiameter) { m_maxToolDiameter = maxToolDiameter; }

  Orvo::EnumBitset<MachineCoolant> const& coolants() const noexcept { return m_coolants; }
  bool supportsCoolant(MachineCoolant coolant) const { return m_coolants.test(coolant); }
  void setCoolant(MachineCoolant coolant, bool supported) { m_coolants.set(coolant, supported); }

  std::optional<ToolStationInterfaceName> toolInterface() const { return m_toolInterface; }
  void setToolInterface(std::optional<ToolStationInterfaceName> const& toolInterface);

  friend bool operator==(ToolStationDefinition const& a, ToolStationDefinition const& b) noexcept;
  friend bool operator!=(ToolStationDefinition const& a, ToolStationDefinition const& b) noexcept {
    return !(a == b);
  }

private:
  std::optional<Distance> m_maxToolLength;
  std::optional<Distance> m_maxToolDiameter;
  Orvo::EnumBitset<MachineCoolant> m_coolants;
  std::optional<ToolStationInterfaceName> m_toolInterface;
};

}  // namespace machine
