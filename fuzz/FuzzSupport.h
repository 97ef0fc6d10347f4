#pragma once
// Checks the round-trip fuzz harnesses share.

#include <cmath>
#include <cstddef>
#include <cstdint>

#include "machine/machine/KinematicsDefinition.h"
#include "util/utility/Messages.h"

namespace fuzz_support {

/// Strict UTF-8. The JSON writer re-encodes malformed sequences, so only a
/// well-formed input can be expected to come back byte for byte.
inline bool isValidUtf8(std::uint8_t const* data, std::size_t size) {
  return Orvo::Messages::isValidUtf8(std::string_view(reinterpret_cast<char const*>(data), size));
}

/// A zero "direction" is read as the format allows, but has no unit vector:
/// the model holds NaN, which writes as null and doesn't read back. Such a
/// tree is left out of the round-trip check.
inline bool hasDegenerateAxis(machine::KinematicsDefinition const& kinematics) {
  machine::DescendantRange const all = kinematics.allParts();
  for (machine::PartDefinition const& part : all) {
    if (machine::AxisDefinition const* axis = part.axisDefinition()) {
      Orvo::Vector3D const d = axis->direction();
      if (!std::isfinite(d.x) || !std::isfinite(d.y) || !std::isfinite(d.z)) return true;
    }
  }
  return false;
}

}  // namespace fuzz_support
