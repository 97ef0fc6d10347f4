#include "machine/machine/PostMachineConfig/EulerAngles.h"

namespace com {
namespace vantora {

char const* EulerAngles::conventionName(unsigned int convention) noexcept {
  static constexpr char const* const names[conventionCount] = {
      "EULER_XZX_S", "EULER_YXY_S", "EULER_ZYZ_S", "EULER_XZX_R", "EULER_YXY_R", "EULER_ZYZ_R",
      "EULER_XZY_S", "EULER_YXZ_S", "EULER_ZYX_S", "EULER_YZX_R", "EULER_ZXY_R", "EULER_XYZ_R",
      "EULER_XYX_S", "EULER_YZY_S", "EULER_ZXZ_S", "EULER_XYX_R", "EULER_YZY_R", "EULER_ZXZ_R",
      "EULER_XYZ_S", "EULER_YZX_S", "EULER_ZXY_S", "EULER_ZYX_R", "EULER_XZY_R", "EULER_YXZ_R"};
  return at(names, convention);
}

}  // namespace vantora
}  // namespace com
