#include "machine/machine/QskSimComponentAdaptor.h"

namespace machine {

// Pure, so the class stays abstract, yet with a body that every derived
// destructor calls.
QskSimComponentAdaptor::~QskSimComponentAdaptor() = default;

}  // namespace machine
