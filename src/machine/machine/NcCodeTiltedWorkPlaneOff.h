#pragma once
// The tilted work plane switched off.

#include "machine/machine/NcCodeTiltedWorkPlane.h"

namespace machine {

class NcCodeTiltedWorkPlaneOff final : public NcCodeTiltedWorkPlane {
public:
  NcCodeTiltedWorkPlaneOff() = default;

private:
  bool doIsActive() const override;
  /// The identity, though calculateTiltedFrame refuses an inactive plane.
  Orvo::Frame doCalculateTiltedFrame(Orvo::Frame const& frame) const override;
};

}  // namespace machine
