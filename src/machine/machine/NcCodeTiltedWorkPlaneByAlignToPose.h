#pragma once
// A tilted work plane that takes the orientation of the head as it stands,
// with its origin at the work origin.

#include "machine/machine/NcCodeTiltedWorkPlane.h"

namespace machine {

class NcCodeTiltedWorkPlaneByAlignToPose final : public NcCodeTiltedWorkPlane {
public:
  NcCodeTiltedWorkPlaneByAlignToPose() = default;

private:
  bool doIsActive() const override;
  Orvo::Frame doCalculateTiltedFrame(Orvo::Frame const& frame) const override;
};

}  // namespace machine
