#pragma once
// How the axes of a move are interpolated: each at its own speed, all
// together, or with the tool tip on the programmed path.

#include <cstddef>
#include <map>
#include <string>

#include "util/utility/EnumBitset.h"

namespace machine {

enum class NcCodeKinematicInterpolationMode : int {
  UNSYNCHRONIZED = 0,
  SYNCHRONIZED = 1,
  TCP_ONLY = 2,
  MIXED = 3,
};

}  // namespace machine

namespace Orvo {
/// The words of the modes in JSON. MIXED is only ever derived at run time and
/// has no word.
template <>
struct EnumTraits<machine::NcCodeKinematicInterpolationMode> {
  static constexpr std::size_t bitCount = 4;
  static std::map<std::string, machine::NcCodeKinematicInterpolationMode> const& keyMap();
};
}  // namespace Orvo
