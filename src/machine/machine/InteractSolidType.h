#pragma once
// The kinds of solid a simulation can make meet: the tool and its parts, the
// stock, fixture and model on a table, a part of the machine itself, and the
// tools of a turret.

#include <cstddef>
#include <map>
#include <string>

#include "util/utility/EnumBitset.h"

namespace machine {

enum class InteractSolidType : int {
  TOOL = 0,
  TOOL_CUTTER = 1,
  TOOL_NONCUTTER = 2,
  STOCK = 3,
  FIXTURE = 4,
  MODEL = 5,
  MACHINE_PART = 6,
  TURRET_ACTIVE_TOOL = 7,
  TURRET_INACTIVE_TOOL = 8,
};

/// The word of a type in the "interactions" feature. A value outside the
/// enumeration throws std::runtime_error as an unknown word does.
std::string const& interactSolidTypeWord(InteractSolidType type);
/// The type of a word; an unknown word throws std::runtime_error with the
/// word followed by " is no supported".
InteractSolidType interactSolidTypeFromWord(std::string const& word);

}  // namespace machine

namespace Orvo {
/// The words of the solid types in JSON.
template <>
struct EnumTraits<machine::InteractSolidType> {
  static constexpr std::size_t bitCount = 9;
  static std::map<std::string, machine::InteractSolidType> const& keyMap();
};
}  // namespace Orvo
