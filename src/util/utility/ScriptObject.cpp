#include "util/utility/ScriptObject.h"

namespace Orvo {

char const* ScriptObject::getBaseClass() const noexcept { return ""; }

}  // namespace Orvo
