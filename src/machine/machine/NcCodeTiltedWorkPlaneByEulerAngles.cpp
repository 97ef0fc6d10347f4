#include "machine/machine/NcCodeTiltedWorkPlaneByEulerAngles.h"

#include "util/utility/Basic.h"

namespace machine {

namespace {
constexpr char const* orvoAssertSourcePath = "machine\\machine\\NcCodeTiltedWorkPlaneByEulerAngles";
}  // namespace

bool NcCodeTiltedWorkPlaneByEulerAngles::doIsActive() const { return true; }

Orvo::Frame NcCodeTiltedWorkPlaneByEulerAngles::doCalculateTiltedFrame(Orvo::Frame const&) const {
  ORVO_ASSERT(m_eulerConvention <= com::vantora::Matrix::EulerConvention::EULER_YXZ_R);
  return frameFromEulerRotation(m_eulerConvention, m_angle1, m_angle2, m_angle3);
}

}  // namespace machine
