#include "machine/machine/NcCodeTiltedWorkPlaneByAlignToPose.h"

namespace machine {

bool NcCodeTiltedWorkPlaneByAlignToPose::doIsActive() const { return true; }

Orvo::Frame NcCodeTiltedWorkPlaneByAlignToPose::doCalculateTiltedFrame(Orvo::Frame const& frame) const {
  auto const made = Orvo::Frame::make(Orvo::Point3D(0, 0, 0), frame.xAxis(), frame.zAxis());
  return made ? *made : Orvo::Frame(Orvo::IdentityTag{});
}

}  // namespace machine
