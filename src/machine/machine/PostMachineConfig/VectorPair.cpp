#include "machine/machine/PostMachineConfig/VectorPair.h"

namespace com {
namespace vantora {

char const* VectorPair::getBaseClass() const noexcept { return "ScriptObject"; }

}  // namespace vantora
}  // namespace com
