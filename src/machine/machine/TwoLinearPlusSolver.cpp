#include "machine/machine/TwoLinearPlusSolver.h"

#include <cmath>

#include "util/utility/Basic.h"

namespace {
constexpr char const* orvoAssertSourcePath = "machine\\machine\\TwoLinearPlusSolver";
}

namespace machine {

TwoLinearPlusSolver::TwoLinearPlusSolver(KinematicsDefinition const& kinematics,
                                                 ControllerConfiguration const& configuration)
    : TwoLinearPlusSolver(Machine(kinematics, configuration)) {}

TwoLinearPlusSolver::TwoLinearPlusSolver(Machine const& machine) : MachineSolver(machine) {}

TwoLinearPlusSolver::~TwoLinearPlusSolver() = default;

void TwoLinearPlusSolver::doOnAxisOrderingChanged() {
  if (m_solveCache) m_solveCache.reset();
}

void TwoLinearPlusSolver::doOnToolReferenceFrameChanged() {
  if (m_solveCache) m_solveCache.reset();
}

bool TwoLinearPlusSolver::areFirstTwoAxesLinear() const { return areFirstAxesLinear(2); }

std::optional<MachineSolver::Distance> TwoLinearPlusSolver::doMoveToolTipTo(Orvo::Point3D const& target) {
  ORVO_ASSERT(areFirstTwoAxesLinear());
  Orvo::AxisValues values = axisValues();
  // Past a failed assertion there may be fewer than two values to solve.
  if (values.size() < 2) return std::nullopt;
  values.setValue(0, Orvo::AxisValue(0.0));
  values.setValue(1, Orvo::AxisValue(0.0));

  if (!m_solveCache || values != m_solveCache->axisValuesKey) {
    if (!m_solveCache) m_solveCache.emplace();
    LinearSolveCache& cache = *m_solveCache;
    cache.axisValuesKey = values;
    moveTo(values);
    cache.tipAtLinearZero = toolTipPoint();
    values.setValue(0, Orvo::AxisValue(1.0));
    moveTo(values);
    Orvo::Vector3D const e0 = toolTipPoint() - cache.tipAtLinearZero;
    values.setValue(0, Orvo::AxisValue(0.0));
    values.setValue(1, Orvo::AxisValue(1.0));
    moveTo(values);
    Orvo::Vector3D const e1 = toolTipPoint() - cache.tipAtLinearZero;
    values.setValue(1, Orvo::AxisValue(0.0));
    // The third column is the unit normal of the reachable plane, so the
    // third coordinate of a solve is the signed distance to that plane. A
    // near-zero normal (parallel axes) is left as it is: the matrix is then
    // singular and the solve fails.
    Orvo::Vector3D n = Orvo::Vector3D::cross(e0, e1);
    if (!n.isZero(1.4901161193847656e-08)) n.normalize();
    cache.inverseAxisMatrix = Orvo::Matrix3x3(e0, e1, n).getInverse();
  }

  LinearSolveCache const& cache = *m_solveCache;
  Orvo::Vector3D const d = target - cache.tipAtLinearZero;
  Orvo::Matrix3x3 const& m = cache.inverseAxisMatrix;
  double const a = Orvo::Vector3D::dot(m.row(0), d);
  double const b = Orvo::Vector3D::dot(m.row(1), d);
  double const c = Orvo::Vector3D::dot(m.row(2), d);
  values.setValue(0, a);
  values.setValue(1, b);
  // The move comes before the test: a failed solve leaves the machine at
  // the non-finite values, and the caller must move it before using it.
  moveTo(values);
  if (!std::isfinite(a) || !std::isfinite(b)) return std::nullopt;
  return Distance(std::fabs(c));
}

}  // namespace machine
