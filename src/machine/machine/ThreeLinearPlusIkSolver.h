#pragma once
// Finds the positions of the first 3 axes of the ordering, which must be
// linear, that bring the tool tip to a point, the other axes held where they
// stand. With those held, the tip is an affine function of the linear axes:
// it is measured with forward kinematics and inverted as a 3x3 matrix, with
// no closed form for any machine and no iteration.
//
// The matrix is cached for one pose of the other axes; a tool path holds long
// runs at one rotary pose, and a cached solve is one matrix product and one
// move.

#include <optional>

#include "machine/machine/ControllerConfiguration.h"
#include "machine/machine/KinematicsDefinition.h"
#include "machine/machine/LinearSolveCache.h"
#include "machine/machine/MachineSolver.h"

namespace machine {

class ThreeLinearPlusIkSolver : public MachineSolver {
public:
  explicit ThreeLinearPlusIkSolver(KinematicsDefinition const& kinematics);
  ThreeLinearPlusIkSolver(KinematicsDefinition const& kinematics, ControllerConfiguration const& configuration);
  explicit ThreeLinearPlusIkSolver(Machine const& machine);
  ~ThreeLinearPlusIkSolver() override;

private:
  void doOnAxisOrderingChanged() override;
  /// The tip reaches the point exactly: the result is 0, or empty when the
  /// three axes are not independent at this pose.
  std::optional<Distance> doMoveToolTipTo(Orvo::Point3D const& target) override;
  void doOnToolReferenceFrameChanged() override;
  bool doAreAxesCompatible() const override { return areFirstThreeAxesLinear(); }

  bool areFirstThreeAxesLinear() const;

  std::optional<LinearSolveCache> m_solveCache;
};

}  // namespace machine
