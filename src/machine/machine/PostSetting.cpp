#include "machine/machine/PostSetting.h"

namespace machine {

bool operator==(PostSetting const& a, PostSetting const& b) { return a.enabled == b.enabled && a.value == b.value; }

}  // namespace machine
