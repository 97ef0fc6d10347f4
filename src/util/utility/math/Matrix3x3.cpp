#include "util/utility/math/Matrix3x3.h"

#include <type_traits>

namespace Orvo {
static_assert(sizeof(Matrix3x3) == 9 * sizeof(double), "Matrix3x3 is nine doubles");
static_assert(std::is_trivially_copyable<Matrix3x3>::value, "Matrix3x3 copies as plain data");
}  // namespace Orvo
