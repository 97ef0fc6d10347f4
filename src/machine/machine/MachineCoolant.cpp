#include "machine/machine/MachineCoolant.h"

namespace Orvo {

std::map<std::string, machine::MachineCoolant> const& EnumTraits<machine::MachineCoolant>::keyMap() {
  using machine::MachineCoolant;
  static std::map<std::string, MachineCoolant> const map{
      {"flood", MachineCoolant::FLOOD},
      {"mist", MachineCoolant::MIST},
      {"through_tool", MachineCoolant::THROUGH_TOOL},
      {"air", MachineCoolant::AIR},
      {"air_through_tool", MachineCoolant::AIR_THROUGH_TOOL},
      {"suction", MachineCoolant::SUCTION},
      {"flood_mist", MachineCoolant::FLOOD_MIST},
      {"flood_through_tool", MachineCoolant::FLOOD_THROUGH_TOOL},
  };
  return map;
}

}  // namespace Orvo
