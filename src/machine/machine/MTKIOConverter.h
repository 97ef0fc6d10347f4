#pragma once
// Remembers the rotation convention a kinematics file was written in, and
// turns axial vectors between it and the model's right-handed one.

#include "machine/machine/Handedness.h"
#include "util/utility/math/Vector3D.h"

namespace machine {

class MTKIOConverter {
public:
  /// Right-handed.
  MTKIOConverter() = default;
  explicit MTKIOConverter(Handedness externalHandedness) noexcept : m_externalHandedness(externalHandedness) {}

  Handedness externalHandedness() const noexcept { return m_externalHandedness; }
  void setExternalHandedness(Handedness handedness) noexcept { m_externalHandedness = handedness; }

  /// Both ways are one rule: a left-handed file flips the vector.
  Orvo::Vector3D convertAxialVectorToExternal(Orvo::Vector3D const& vector) const noexcept;
  Orvo::Vector3D convertAxialVectorToInternal(Orvo::Vector3D const& vector) const noexcept;

  friend bool operator==(MTKIOConverter const& a, MTKIOConverter const& b) noexcept {
    return a.m_externalHandedness == b.m_externalHandedness;
  }
  friend bool operator!=(MTKIOConverter const& a, MTKIOConverter const& b) noexcept { return !(a == b); }

private:
  Handedness m_externalHandedness = Handedness::RIGHT_HANDED;
};

}  // namespace machine
