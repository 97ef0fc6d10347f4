#include "util/utility/Angle.h"

namespace Orvo {
static_assert(sizeof(Radian) == sizeof(double), "Radian is a bare double");
}
