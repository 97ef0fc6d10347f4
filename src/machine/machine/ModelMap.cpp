#include "machine/machine/ModelMap.h"

namespace machine {
ModelMap::~ModelMap() = default;
}
