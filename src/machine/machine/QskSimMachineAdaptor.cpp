#include "machine/machine/QskSimMachineAdaptor.h"

namespace machine {

// Pure, so the class stays abstract, yet with a body that every derived
// destructor calls.
QskSimMachineAdaptor::~QskSimMachineAdaptor() = default;

}  // namespace machine
