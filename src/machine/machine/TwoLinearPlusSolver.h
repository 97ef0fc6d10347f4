#pragma once
// Finds the positions of the first 2 axes of the ordering, which must be
// linear, that bring the tool tip nearest a point, the other axes held where
// they stand. The solve and its cache are those of LinearPlusSolver.

#include <optional>

#include "machine/machine/ControllerConfiguration.h"
#include "machine/machine/KinematicsDefinition.h"
#include "machine/machine/LinearPlusSolver.h"

namespace machine {

class TwoLinearPlusSolver : public LinearPlusSolver {
public:
  TwoLinearPlusSolver(KinematicsDefinition const& kinematics, ControllerConfiguration const& configuration);
  explicit TwoLinearPlusSolver(Machine const& machine);
  ~TwoLinearPlusSolver() override;

private:
  /// The tip goes to the point of its reachable plane nearest the target;
  /// the result is the distance from the target to that plane, or empty
  /// when the two axes are parallel.
  std::optional<Distance> doMoveToolTipTo(Orvo::Point3D const& target) override;
  bool doAreAxesCompatible() const override { return areFirstTwoAxesLinear(); }

  bool areFirstTwoAxesLinear() const;
};

}  // namespace machine
