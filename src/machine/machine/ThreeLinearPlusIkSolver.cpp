#include "machine/machine/ThreeLinearPlusIkSolver.h"

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

ThreeLinearPlusIkSolver::ThreeLinearPlusIkSolver(Machine const& machine) : LinearPlusSolver(machine) {}

ThreeLinearPlusIkSolver::~ThreeLinearPlusIkSolver() = default;

bool ThreeLinearPlusIkSolver::areFirstThreeAxesLinear() const { return areFirstAxesLinear(3); }

std::optional<MachineSolver::Distance> ThreeLinearPlusIkSolver::doMoveToolTipTo(Orvo::Point3D const& target) {
  ORVO_ASSERT(areFirstThreeAxesLinear());
  return solveLinearAxes<3>(target);
}

}  // namespace machine
