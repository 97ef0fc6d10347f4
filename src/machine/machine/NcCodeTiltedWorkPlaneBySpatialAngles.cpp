#include "machine/machine/NcCodeTiltedWorkPlaneBySpatialAngles.h"

#include "machine/machine/PostMachineConfig/Matrix.h"

namespace machine {

bool NcCodeTiltedWorkPlaneBySpatialAngles::doIsActive() const { return true; }

Orvo::Frame NcCodeTiltedWorkPlaneBySpatialAngles::doCalculateTiltedFrame(Orvo::Frame const&) const {
  // Spatial angles are the rotating Z-Y-X convention with the angles read
  // back to front.
  return frameFromEulerRotation(com::vantora::Matrix::EULER_ZYX_R, m_angle3, m_angle2, m_angle1);
}

}  // namespace machine
