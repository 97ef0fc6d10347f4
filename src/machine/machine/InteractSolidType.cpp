#include "machine/machine/InteractSolidType.h"

#include <stdexcept>

namespace machine {

std::string const& interactSolidTypeWord(InteractSolidType type) {
  for (auto const& entry : Orvo::EnumTraits<InteractSolidType>::keyMap())
    if (entry.second == type) return entry.first;
  throw std::runtime_error(std::to_string(static_cast<int>(type)) + " is no supported");
}

InteractSolidType interactSolidTypeFromWord(std::string const& word) {
  auto const& keyMap = Orvo::EnumTraits<InteractSolidType>::keyMap();
  auto const it = keyMap.find(word);
  // The wording is the one users of these files have always seen.
  if (it == keyMap.end()) throw std::runtime_error(word + " is no supported");
  return it->second;
}

}  // namespace machine

namespace Orvo {

std::map<std::string, machine::InteractSolidType> const& EnumTraits<machine::InteractSolidType>::keyMap() {
  using machine::InteractSolidType;
  static std::map<std::string, InteractSolidType> const map{
      {"tool", InteractSolidType::TOOL},
      {"tool_cutter", InteractSolidType::TOOL_CUTTER},
      {"tool_noncutter", InteractSolidType::TOOL_NONCUTTER},
      {"stock", InteractSolidType::STOCK},
      {"fixture", InteractSolidType::FIXTURE},
      {"model", InteractSolidType::MODEL},
      {"machine_part", InteractSolidType::MACHINE_PART},
      {"turret_active_tool", InteractSolidType::TURRET_ACTIVE_TOOL},
      {"turret_inactive_tool", InteractSolidType::TURRET_INACTIVE_TOOL},
  };
  return map;
}

}  // namespace Orvo
