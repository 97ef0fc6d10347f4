#pragma once
// How a rotary axis travels to its target: as programmed, or the shorter
// way round.

namespace machine {

enum class NcCodeRotaryAxisTraverseMode : int {
  DIRECT = 0,
  SHORTEST = 1,
};

}  // namespace machine
