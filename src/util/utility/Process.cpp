#include "util/utility/Process.h"

namespace Orvo {

// Constant-initialised (Mutex has a constexpr constructor), so objects built
// during static initialisation in other files may already lock it.
Mutex Process::mutex;

}  // namespace Orvo
