#pragma once
// Coolants a tool station can deliver, with their words in the machine file.

#include <cstddef>
#include <map>
#include <string>

#include "util/utility/EnumBitset.h"

namespace machine {

enum class MachineCoolant : int {
  FLOOD = 0,
  MIST = 1,
  THROUGH_TOOL = 2,
  AIR = 3,
  AIR_THROUGH_TOOL = 4,
  SUCTION = 5,
  FLOOD_MIST = 6,
  FLOOD_THROUGH_TOOL = 7,
};

}  // namespace machine

namespace Orvo {
template <>
struct EnumTraits<machine::MachineCoolant> {
  static constexpr std::size_t bitCount = 8;
  static std::map<std::string, machine::MachineCoolant> const& keyMap();
};
}  // namespace Orvo
