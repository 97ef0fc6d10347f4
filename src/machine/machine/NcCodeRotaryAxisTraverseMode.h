#pragma once
// How a rotary axis travels to a programmed angle: as written, or by the
// shorter way round where the axis allows it.

namespace machine {

enum class NcCodeRotaryAxisTraverseMode : int {
  DIRECT = 0,
  SHORTEST = 1,
};

}  // namespace machine
