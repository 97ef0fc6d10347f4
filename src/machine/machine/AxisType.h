#pragma once

namespace machine {

enum class AxisType : int {
  ROTARY = 0,
  LINEAR = 1,
};

}  // namespace machine
