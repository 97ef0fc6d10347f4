#include "machine/machine/MachineCapability.h"

namespace Orvo {

std::map<std::string, machine::MachineCapability> const& EnumTraits<machine::MachineCapability>::keyMap() {
  using machine::MachineCapability;
  static std::map<std::string, MachineCapability> const map{
      {"milling", MachineCapability::MILLING},       {"turning", MachineCapability::TURNING},
      {"cutting", MachineCapability::CUTTING},       {"inspection", MachineCapability::INSPECTION},
      {"additive", MachineCapability::ADDITIVE},
  };
  return map;
}

}  // namespace Orvo
