#pragma once
// A tilted work plane as the NC code sets it: whether one is active, and the
// frame of the plane it describes.

#include "util/utility/math/Frame.h"

namespace machine {

class NcCodeTiltedWorkPlane {
public:
  bool isActive() const { return doIsActive(); }
  /// Requires an active plane. `frame` is the head's frame at the moment the
  /// plane is set; only planes aligned to the pose read it.
  Orvo::Frame calculateTiltedFrame(Orvo::Frame const& frame) const;

  virtual ~NcCodeTiltedWorkPlane();

protected:
  NcCodeTiltedWorkPlane() = default;
  NcCodeTiltedWorkPlane(NcCodeTiltedWorkPlane const&) = default;
  NcCodeTiltedWorkPlane& operator=(NcCodeTiltedWorkPlane const&) = default;

  /// For the angle-based planes: the frame at the origin spanned by the
  /// images of the unit X and Z vectors under the Euler rotation of the
  /// angles (radians) in `convention`; the identity when they span none.
  static Orvo::Frame frameFromEulerRotation(unsigned int convention, double x, double y, double z);

private:
  virtual bool doIsActive() const = 0;
  virtual Orvo::Frame doCalculateTiltedFrame(Orvo::Frame const& frame) const = 0;
};

}  // namespace machine
