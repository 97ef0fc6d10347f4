#include "machine/machine/MTKIOConverter.h"

namespace machine {

Orvo::Vector3D MTKIOConverter::convertAxialVectorToExternal(Orvo::Vector3D const& vector) const noexcept {
  return m_externalHandedness == Handedness::LEFT_HANDED ? vector * -1.0 : vector;
}

Orvo::Vector3D MTKIOConverter::convertAxialVectorToInternal(Orvo::Vector3D const& vector) const noexcept {
  return m_externalHandedness == Handedness::LEFT_HANDED ? vector * -1.0 : vector;
}

}  // namespace machine
