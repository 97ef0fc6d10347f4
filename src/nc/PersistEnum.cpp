#include "nc/PersistEnum.h"

namespace persist {
// Everything is constexpr; this unit keeps the one-source-per-class layout.
}  // namespace persist
