#include "machine/machine/NcCodeTiltedWorkPlane.h"

#include "machine/machine/PostMachineConfig/Matrix.h"
#include "machine/machine/PostMachineConfig/Vector.h"
#include "util/utility/Basic.h"
#include "util/utility/ScriptException.h"

namespace machine {

namespace {
constexpr char const* orvoAssertSourcePath = "machine\\machine\\NcCodeTiltedWorkPlane";
}  // namespace

NcCodeTiltedWorkPlane::~NcCodeTiltedWorkPlane() = default;

Orvo::Frame NcCodeTiltedWorkPlane::calculateTiltedFrame(Orvo::Frame const& frame) const {
  EXPECTS(isActive());
  return doCalculateTiltedFrame(frame);
}

Orvo::Frame NcCodeTiltedWorkPlane::frameFromEulerRotation(unsigned int convention, double x, double y, double z) {
  Orvo::Frame const identity{Orvo::IdentityTag{}};
  Orvo::Matrix3x3 rotation;
  try {
    rotation = com::vantora::Matrix::getAsMatrix3x3(
        com::vantora::Matrix::getEulerRotation(convention, com::vantora::Vector(x, y, z)));
  } catch (Orvo::ScriptException const&) {
    // An unknown convention gets here only past the caller's assertion; a
    // stream event must not throw, so the plane is left untilted.
    return identity;
  }
  auto const made = Orvo::Frame::make(Orvo::Point3D(0, 0, 0), rotation * Orvo::Vector3D(1, 0, 0),
                                      rotation * Orvo::Vector3D(0, 0, 1));
  return made ? *made : identity;
}

}  // namespace machine
