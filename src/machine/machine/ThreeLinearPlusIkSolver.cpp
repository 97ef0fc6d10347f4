#include "machine/machine/ThreeLinearPlusIkSolver.h"

#include <cmath>

#include "util/utility/Basic.h"

namespace {
constexpr char const* orvoAssertSourcePath = "machine\\machine\\ThreeLinearPlusIkSolver";
}

namespace machine {

ThreeLinearPlusIkSolver::ThreeLinearPlusIkSolver(KinematicsDefinition const& kinematics)
    : ThreeLinearPlusIkSolver(Machine(kinematics)) {}

ThreeLinearPlusIkSolver::ThreeLinearPlusIkSolver(KinematicsDefinition const& kinematics,
                                                 ControllerConfiguration const& configuration)
    : ThreeLinearPlusIkSolver(Machine(kinematics, configuration)) {}

ThreeLinearPlusIkSolver::ThreeLinearPlusIkSolver(Machine const& machine) : MachineSolver(machine) {}

ThreeLinearPlusIkSolver::~ThreeLinearPlusIkSolver() = default;

void ThreeLinearPlusIkSolver::doOnAxisOrderingChanged() {
  if (m_solveCache) m_solveCache.reset();
}

void ThreeLinearPlusIkSolver::doOnToolReferenceFrameChanged() {
  if (m_solveCache) m_solveCache.reset();
}

bool ThreeLinearPlusIkSolver::areFirstThreeAxesLinear() const { return areFirstAxesLinear(3); }

std::optional<MachineSolver::Distance> ThreeLinearPlusIkSolver::doMoveToolTipTo(Orvo::Point3D const& target) {
  ORVO_ASSERT(areFirstThreeAxesLinear());
  Orvo::AxisValues values = axisValues();
  // Past a failed assertion there may be fewer than three values to solve.
  if (values.size() < 3) return std::nullopt;
  for (int i = 0; i < 3; ++i) values.setValue(i, Orvo::AxisValue(0.0));

  if (!m_solveCache || values != m_solveCache->axisValuesKey) {
    if (!m_solveCache) m_solveCache.emplace();
    LinearSolveCache& cache = *m_solveCache;
    cache.axisValuesKey = values;
    moveTo(values);
    cache.tipAtLinearZero = toolTipPoint();
    // One unit step on each axis: each column is the tip's motion per mm.
    Orvo::Vector3D columns[3];
    for (int i = 0; i < 3; ++i) {
      values.setValue(i, Orvo::AxisValue(1.0));
      moveTo(values);
      columns[i] = toolTipPoint() - cache.tipAtLinearZero;
      values.setValue(i, Orvo::AxisValue(0.0));
    }
    cache.inverseAxisMatrix = Orvo::Matrix3x3(columns[0], columns[1], columns[2]).getInverse();
  }

  LinearSolveCache const& cache = *m_solveCache;
  Orvo::Vector3D const d = target - cache.tipAtLinearZero;
  Orvo::Matrix3x3 const& m = cache.inverseAxisMatrix;
  double const a = Orvo::Vector3D::dot(m.row(0), d);
  double const b = Orvo::Vector3D::dot(m.row(1), d);
  double const c = Orvo::Vector3D::dot(m.row(2), d);
  values.setValue(0, a);
  values.setValue(1, b);
  values.setValue(2, c);
  // The move comes before the test: a failed solve leaves the machine at
  // the non-finite values, and the caller must move it before using it.
  moveTo(values);
  if (!std::isfinite(a) || !std::isfinite(b) || !std::isfinite(c)) return std::nullopt;
  return Distance(0.0);
}

}  // namespace machine
