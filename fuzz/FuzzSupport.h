#pragma once
// Checks the round-trip fuzz harnesses share.

#include <cmath>
#include <cstddef>
#include <cstdint>

#include "machine/machine/KinematicsDefinition.h"

namespace fuzz_support {

/// Strict UTF-8. The JSON writer re-encodes malformed sequences, so only a
/// well-formed input can be expected to come back byte for byte.
inline bool isValidUtf8(std::uint8_t const* data, std::size_t size) {
  std::size_t i = 0;
  while (i < size) {
    std::uint8_t const b = data[i];
    std::size_t n = 0;
    std::uint32_t cp = 0;
    if (b < 0x80) { ++i; continue; }
    if ((b & 0xE0) == 0xC0) { n = 1; cp = b & 0x1F; }
    else if ((b & 0xF0) == 0xE0) { n = 2; cp = b & 0x0F; }
    else if ((b & 0xF8) == 0xF0) { n = 3; cp = b & 0x07; }
    else return false;
    for (std::size_t k = 1; k <= n; ++k) {
      if (i + k >= size || (data[i + k] & 0xC0) != 0x80) return false;
      cp = (cp << 6) | (data[i + k] & 0x3F);
    }
    std::uint32_t const minimum[] = {0, 0x80, 0x800, 0x10000};
    if (cp < minimum[n] || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) return false;
    i += n + 1;
  }
  return true;
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
