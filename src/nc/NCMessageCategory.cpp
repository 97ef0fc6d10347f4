#include "nc/NCMessageCategory.h"

namespace Orvo {

NCMessageCategory::~NCMessageCategory() = default;

std::string NCMessageCategory::getHelpTopic() const { return std::string(); }

}  // namespace Orvo
