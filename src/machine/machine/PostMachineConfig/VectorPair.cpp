#include "machine/machine/PostMachineConfig/VectorPair.h"

namespace com {
namespace vantora {

char const* VectorPair::getBaseClass() const noexcept { return "ScriptObject"; }

VectorPair::~VectorPair() = default;

}  // namespace vantora
}  // namespace com
