#include "util/utility/math/Point3D.h"

#include <type_traits>

namespace Orvo {
static_assert(sizeof(Point3D) == 3 * sizeof(double), "Point3D is three doubles");
static_assert(std::is_trivially_copyable<Point3D>::value, "Point3D copies as plain data");
}  // namespace Orvo
