#include "Version.h"

namespace mtkit_tool {
char const* versionString() { return MTKIT_VERSION; }
}  // namespace mtkit_tool
