#include "machine/machine/PartModel.h"

namespace machine {
PartModel::~PartModel() = default;
}
