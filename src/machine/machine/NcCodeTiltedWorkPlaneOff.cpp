#include "machine/machine/NcCodeTiltedWorkPlaneOff.h"

namespace machine {

bool NcCodeTiltedWorkPlaneOff::doIsActive() const { return false; }

Orvo::Frame NcCodeTiltedWorkPlaneOff::doCalculateTiltedFrame(Orvo::Frame const&) const {
  return Orvo::Frame(Orvo::IdentityTag{});
}

}  // namespace machine
