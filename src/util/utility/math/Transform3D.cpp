#include "util/utility/math/Transform3D.h"

#include <type_traits>

namespace Orvo {
static_assert(sizeof(Transform3D) == 12 * sizeof(double), "Transform3D is twelve doubles");
static_assert(std::is_trivially_copyable<Transform3D>::value, "Transform3D copies as plain data");
}  // namespace Orvo
