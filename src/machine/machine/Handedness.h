#pragma once

namespace machine {

/// The rotation convention of a kinematics file. The model itself is always
/// right-handed.
enum class Handedness : int {
  RIGHT_HANDED = 0,
  LEFT_HANDED = 1,
};

}  // namespace machine
