#pragma once
// A tilted work plane given by three Euler angles, in radians, in one of the
// Euler conventions of the script-facing matrix.

#include "machine/machine/NcCodeTiltedWorkPlane.h"
#include "machine/machine/PostMachineConfig/Matrix.h"

namespace machine {

class NcCodeTiltedWorkPlaneByEulerAngles final : public NcCodeTiltedWorkPlane {
public:
  NcCodeTiltedWorkPlaneByEulerAngles(com::vantora::Matrix::EulerConvention eulerConvention, double angle1,
                                     double angle2, double angle3) noexcept
      : m_eulerConvention(eulerConvention), m_angle1(angle1), m_angle2(angle2), m_angle3(angle3) {}

  com::vantora::Matrix::EulerConvention eulerConvention() const noexcept { return m_eulerConvention; }
  double angle1() const noexcept { return m_angle1; }
  double angle2() const noexcept { return m_angle2; }
  double angle3() const noexcept { return m_angle3; }

private:
  bool doIsActive() const override;
  /// The given frame is not read.
  Orvo::Frame doCalculateTiltedFrame(Orvo::Frame const& frame) const override;

  com::vantora::Matrix::EulerConvention m_eulerConvention;
  double m_angle1;
  double m_angle2;
  double m_angle3;
};

}  // namespace machine
