#pragma once
// Finds the positions of the first 3 axes of the ordering, which must be
// linear, that bring the tool tip to a point, the other axes held where they
// stand. The solve and its cache are those of LinearPlusSolver.

#include <optional>

#include "machine/machine/ControllerConfiguration.h"
#include "machine/machine/KinematicsDefinition.h"
#include "machine/machine/LinearPlusSolver.h"

namespace machine {

class ThreeLinearPlusIkSolver : public LinearPlusSolver {
public:
  explicit ThreeLinearPlusIkSolver(KinematicsDefinition const& kinematics);
  ThreeLinearPlusIkSolver(KinematicsDefinition const& kinematics, ControllerConfiguration const& configuration);
  explicit ThreeLinearPlusIkSolver(Machine const& machine);
  ~ThreeLinearPlusIkSolver() override;

private:
  /// The tip reaches the point exactly: the result is 0, or empty when the
  /// three axes are not independent at this pose.
  std::optional<Distance> doMoveToolTipTo(Orvo::Point3D const& target) override;
  bool doAreAxesCompatible() const override { return areFirstThreeAxesLinear(); }

  bool areFirstThreeAxesLinear() const;
};

}  // namespace machine
