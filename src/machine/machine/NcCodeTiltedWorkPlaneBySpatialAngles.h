#pragma once
// A tilted work plane given by spatial angles, in radians: the first about X,
// the second about Y, the third about Z.

#include "machine/machine/NcCodeTiltedWorkPlane.h"

namespace machine {

class NcCodeTiltedWorkPlaneBySpatialAngles final : public NcCodeTiltedWorkPlane {
public:
  NcCodeTiltedWorkPlaneBySpatialAngles(double angle1, double angle2, double angle3) noexcept
      : m_angle1(angle1), m_angle2(angle2), m_angle3(angle3) {}

  double angle1() const noexcept { return m_angle1; }
  double angle2() const noexcept { return m_angle2; }
  double angle3() const noexcept { return m_angle3; }

private:
  bool doIsActive() const override;
  /// The given frame is not read.
  Orvo::Frame doCalculateTiltedFrame(Orvo::Frame const& frame) const override;

  double m_angle1;
  double m_angle2;
  double m_angle3;
};

}  // namespace machine
