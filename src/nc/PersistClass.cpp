#include "nc/PersistClass.h"

#include "nc/PersistentObject.h"

namespace persist {

std::unique_ptr<PersistentObject> PersistClass::create() const {
  if (!m_factory) return nullptr;
  return m_factory();
}

}  // namespace persist
