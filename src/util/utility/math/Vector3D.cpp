#include "util/utility/math/Vector3D.h"

#include <type_traits>

namespace Orvo {
static_assert(sizeof(Vector3D) == 3 * sizeof(double), "Vector3D is three doubles");
static_assert(std::is_trivially_copyable<Vector3D>::value, "Vector3D copies as plain data");
}  // namespace Orvo
