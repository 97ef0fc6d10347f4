#pragma once
// Finds the positions of the first 2 axes of the ordering, which must be
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

class TwoLinearPlusSolver : public MachineSolver {
public:
  TwoLinearPlusSolver(KinematicsDefinition const& kinematics, ControllerConfiguration const& configuration);
  explicit TwoLinearPlusSolver(Machine const& machine);
  ~TwoLinearPlusSolver() override;

private:
  void doOnAxisOrderingChanged() override;
  /// The tip goes to the point of its reachable plane nearest the target;
  /// the result is the distance from the target to that plane, or empty
  /// when the two axes are parallel.
  std::optional<Distance> doMoveToolTipTo(Orvo::Point3D const& target) override;
  void doOnToolReferenceFrameChanged() override;
  bool doAreAxesCompatible() const override { return areFirstTwoAxesLinear(); }

  bool areFirstTwoAxesLinear() const;

  std::optional<LinearSolveCache> m_solveCache;
};

}  // namespace machine
