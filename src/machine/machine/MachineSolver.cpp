#include "machine/machine/MachineSolver.h"

#include "util/utility/Basic.h"

namespace {
constexpr char const* orvoAssertSourcePath = "machine\\machine\\MachineSolver";
}

namespace machine {

MachineSolver::MachineSolver(Machine const& machine)
    : Machine(CopyTag{}, machine), m_toolReferenceFrame(Orvo::IdentityTag{}) {}

MachineSolver::~MachineSolver() = default;

void MachineSolver::doOnToolReferenceFrameChanged() {}

void MachineSolver::setToolReferenceFrame(Orvo::Frame const& frame) {
  m_toolReferenceFrame = frame;
  doOnToolReferenceFrameChanged();
}

Orvo::Transform3D MachineSolver::headToTable() const {
  return Orvo::coordinateTransform3D(headAttachFrame(), tableAttachFrame());
}

Orvo::Point3D MachineSolver::tableCoordinatesFromHeadCoordinates(Orvo::Point3D const& point) const {
  return headToTable()(point);
}

Orvo::Point3D MachineSolver::toolTipPoint() const {
  ORVO_ASSERT(doAreAxesCompatible());
  Orvo::Point3D const tipInHead =
      Orvo::coordinateTransform3D(Orvo::IdentityTag{}, m_toolReferenceFrame)(Orvo::Point3D(0, 0, 0));
  return tableCoordinatesFromHeadCoordinates(tipInHead);
}

Orvo::Frame MachineSolver::headAttachFrameInTableCs() const {
  ORVO_ASSERT(doAreAxesCompatible());
  return Orvo::Frame(Orvo::IdentityTag{}).transformedBy(headToTable());
}

Orvo::Vector3D MachineSolver::toolAxisInTableCs() const {
  ORVO_ASSERT(doAreAxesCompatible());
  return headToTable()(Orvo::Vector3D(0, 0, 1));
}

bool MachineSolver::areFirstAxesLinear(int count) const {
  if (numOrderedParts() < count) return false;
  for (int i = 0; i < count; ++i) {
    std::optional<Axis> const& axis = orderedPart(i)->axis();
    if (!axis || axis->axisType() != AxisType::LINEAR) return false;
  }
  return true;
}

}  // namespace machine
