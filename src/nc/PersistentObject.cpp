#include "nc/PersistentObject.h"

namespace persist {

PersistentObject::~PersistentObject() = default;

}  // namespace persist
