// Feeds arbitrary bytes to the MTK reader. Whatever it accepts must write
// out and read back.

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

#include "machine/machine/MTKReader.h"
#include "machine/machine/MTKWriter.h"

namespace {

/// Strict UTF-8. The JSON writer re-encodes malformed sequences, so only a
/// well-formed input can be expected to come back byte for byte.
bool isValidUtf8(std::uint8_t const* data, std::size_t size) {
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
bool hasDegenerateAxis(machine::KinematicsDefinition const& kinematics) {
  machine::DescendantRange const all = kinematics.allParts();
  for (machine::PartDefinition const& part : all) {
    if (machine::AxisDefinition const* axis = part.axisDefinition()) {
      Orvo::Vector3D const d = axis->direction();
      if (!std::isfinite(d.x) || !std::isfinite(d.y) || !std::isfinite(d.z)) return true;
    }
  }
  return false;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  std::istringstream in(std::string(reinterpret_cast<char const*>(data), size));
  machine::MTKReadResult result = machine::MTKReader::read(in);
  std::unique_ptr<machine::KinematicsDefinition> const kinematics = result.getKinematicsDefinition();
  if (!kinematics || !isValidUtf8(data, size) || hasDegenerateAxis(*kinematics)) return 0;
  std::ostringstream out;
  if (machine::MTKWriter::write(out, *kinematics).isError()) std::abort();
  std::istringstream back(out.str());
  machine::MTKReadResult again = machine::MTKReader::read(back);
  if (again.getReadErrorType() != machine::MTKReadErrorType::NONE) std::abort();
  if (!again.getKinematicsDefinition()->equals(*kinematics, 1e-9)) std::abort();
  return 0;
}
