#include "machine/machine/TwoLinearPlusSolver.h"

#include "util/utility/Basic.h"

namespace {
constexpr char const* orvoAssertSourcePath = "machine\\machine\\TwoLinearPlusSolver";
}

namespace machine {

TwoLinearPlusSolver::TwoLinearPlusSolver(KinematicsDefinition const& kinematics,
                                         ControllerConfiguration const& configuration)
    : TwoLinearPlusSolver(Machine(kinematics, configuration)) {}

TwoLinearPlusSolver::TwoLinearPlusSolver(Machine const& machine) : LinearPlusSolver(machine) {}

TwoLinearPlusSolver::~TwoLinearPlusSolver() = default;

bool TwoLinearPlusSolver::areFirstTwoAxesLinear() const { return areFirstAxesLinear(2); }

std::optional<MachineSolver::Distance> TwoLinearPlusSolver::doMoveToolTipTo(Orvo::Point3D const& target) {
  ORVO_ASSERT(areFirstTwoAxesLinear());
  return solveLinearAxes<2>(target);
}

}  // namespace machine
