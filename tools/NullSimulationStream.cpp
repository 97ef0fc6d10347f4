#include "NullSimulationStream.h"

namespace mtkit_tool {

NullSimulationStream::~NullSimulationStream() = default;

}  // namespace mtkit_tool
