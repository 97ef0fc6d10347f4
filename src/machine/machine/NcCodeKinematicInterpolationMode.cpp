#include "machine/machine/NcCodeKinematicInterpolationMode.h"

namespace Orvo {

std::map<std::string, machine::NcCodeKinematicInterpolationMode> const&
EnumTraits<machine::NcCodeKinematicInterpolationMode>::keyMap() {
  using machine::NcCodeKinematicInterpolationMode;
  static std::map<std::string, NcCodeKinematicInterpolationMode> const map{
      {"Unsynchronized", NcCodeKinematicInterpolationMode::UNSYNCHRONIZED},
      {"Synchronized", NcCodeKinematicInterpolationMode::SYNCHRONIZED},
      {"ToolTip", NcCodeKinematicInterpolationMode::TCP_ONLY},
  };
  return map;
}

}  // namespace Orvo
