#include "machine/machine/PostMachineConfig/SecurityWrapperBase.h"

namespace com {
namespace vantora {
namespace post {

SecurityWrapperBase::~SecurityWrapperBase() = default;

bool SecurityWrapperBase::isAllowed() { return true; }

}  // namespace post
}  // namespace vantora
}  // namespace com
