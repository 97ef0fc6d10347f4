#include "util/utility/Mutex.h"

#include <type_traits>

namespace Orvo {

// Static locks rely on this: they must be usable before dynamic
// initialisation runs.
static_assert(std::is_nothrow_default_constructible<Mutex>::value, "a lock is made without failing");

}  // namespace Orvo
