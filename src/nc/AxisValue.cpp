#include "nc/AxisValue.h"

namespace Orvo {
// Anchors nothing yet; persistence of axis values joins here.
}  // namespace Orvo
