#pragma once
// What kinds of work a machine can do, with their words in the machine file.

#include <cstddef>
#include <map>
#include <string>

#include "util/utility/EnumBitset.h"

namespace machine {

enum class MachineCapability : int {
  MILLING = 0,
  TURNING = 1,
  CUTTING = 2,
  INSPECTION = 3,
  ADDITIVE = 4,
};

}  // namespace machine

namespace Orvo {

template <>
struct EnumTraits<machine::MachineCapability> {
  static constexpr std::size_t bitCount = 8;
  static std::map<std::string, machine::MachineCapability> const& keyMap();
};

}  // namespace Orvo
