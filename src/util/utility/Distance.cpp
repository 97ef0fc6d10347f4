#include "util/utility/Distance.h"

namespace Orvo {
static_assert(sizeof(NonNegativeDistance) == sizeof(double), "the checked distance is a bare double");
}
