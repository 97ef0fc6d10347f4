// Feeds arbitrary bytes to the MTK reader. Whatever it accepts and the
// definition check passes must move to finite frames; whatever can be
// written must write out and read back.

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

#include "FuzzSupport.h"
#include "machine/machine/MTKReader.h"
#include "machine/machine/MTKWriter.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  std::istringstream in(std::string(reinterpret_cast<char const*>(data), size));
  machine::MTKReadResult result = machine::MTKReader::read(in);
  std::unique_ptr<machine::KinematicsDefinition> const kinematics = result.getKinematicsDefinition();
  if (!kinematics) return 0;
  fuzz_support::checkForwardKinematicsIsFinite(*kinematics);
  if (!fuzz_support::isValidUtf8(data, size) || !fuzz_support::writesBack(*kinematics)) return 0;
  std::ostringstream out;
  if (machine::MTKWriter::write(out, *kinematics).isError()) std::abort();
  std::istringstream back(out.str());
  machine::MTKReadResult again = machine::MTKReader::read(back);
  if (again.getReadErrorType() != machine::MTKReadErrorType::NONE) std::abort();
  if (!again.getKinematicsDefinition()->equals(*kinematics, 1e-9)) std::abort();
  return 0;
}
