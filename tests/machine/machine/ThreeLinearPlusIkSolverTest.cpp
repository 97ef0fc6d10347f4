#include "machine/machine/ThreeLinearPlusIkSolver.h"

#include <gtest/gtest.h>

#include <cmath>

#include "support/AssertRecorder.h"
#include "support/TestMachines.h"

using machine::KinematicsDefinition;
using machine::Machine;
using machine::MachineSolver;
using machine::PartDefinition;
using machine::ThreeLinearPlusIkSolver;
using Orvo::AxisValue;
using Orvo::AxisValues;
using Orvo::MachinePartId;
using Orvo::Point3D;
using Orvo::Vector3D;

namespace {

double distance(Point3D const& a, Point3D const& b) { return (a - b).length(); }

std::unique_ptr<MachineSolver> solverAt(KinematicsDefinition const& kinematics, std::vector<AxisValue> const& values) {
  Machine m(kinematics);
  m.setAxisOrdering(m.fullOrdering());
  m.moveTo(AxisValues(values));
  return m.makeMachineSolver();
}

// Changes the X axis's direction under a standing solver. Its cache doesn't
// see that, which shows when the cache is used and when it is rebuilt. The
// machine's own copy of the definition is not a const object, so the cast
// is sound; only a test does this.
void tiltXAxisUnder(MachineSolver& solver) {
  auto* const part = const_cast<PartDefinition*>(solver.kinematicsDefinition()->find(MachinePartId("x")).value());
  const_cast<machine::AxisDefinition*>(part->axisDefinition())->setDirection(Vector3D(1, 1, 0));
}

}  // namespace

TEST(ThreeLinearPlusIkSolver, OnAPlainThreeAxisMachineTheSolvedAxisValuesAreTheTargetCoordinatesAndTheResultIs0) {
  ThreeLinearPlusIkSolver solver(mtkit_test::threeAxisKinematics());
  solver.setAxisOrdering(solver.fullOrdering());
  auto const result = solver.moveToolTipTo(Point3D(12.5, -40, 7));
  ASSERT_TRUE(result);
  EXPECT_EQ(result->get(), 0.0);
  EXPECT_EQ(solver.axisValues(), AxisValues(std::vector<AxisValue>{12.5, -40, 7}));
  EXPECT_EQ(solver.toolTipPoint(), Point3D(12.5, -40, 7));
}

TEST(ThreeLinearPlusIkSolver, ConstructorsFromDefinitions) {
  auto const kinematics = mtkit_test::threeAxisKinematics();
  machine::ControllerConfiguration configuration;
  ThreeLinearPlusIkSolver solver(kinematics, configuration);
  solver.setAxisOrdering(solver.fullOrdering());
  EXPECT_TRUE(solver.moveToolTipTo(Point3D(1, 2, 3)));
  EXPECT_EQ(solver.headPart()->definition()->identifier(), MachinePartId("head"));
}

TEST(ThreeLinearPlusIkSolver, SolvingTwiceAtOneRotaryPoseRebuildsTheCacheOnlyTheFirstTimeChangingARotaryAxisRebuildsIt) {
  auto const solver = solverAt(mtkit_test::fiveAxisKinematics(), {0, 0, 0, 30, 40});
  Point3D const first(10, 20, 30);
  ASSERT_TRUE(solver->moveToolTipTo(first));
  EXPECT_LT(distance(solver->toolTipPoint(), first), 1e-9);

  tiltXAxisUnder(*solver);
  Point3D const second(-15, 5, 60);
  ASSERT_TRUE(solver->moveToolTipTo(second));
  // The stored matrix was used: it no longer fits the tilted axis.
  EXPECT_GT(distance(solver->toolTipPoint(), second), 1.0);

  AxisValues values = solver->axisValues();
  values.setValue(3, 31.0);
  solver->moveTo(values);
  ASSERT_TRUE(solver->moveToolTipTo(second));
  EXPECT_LT(distance(solver->toolTipPoint(), second), 1e-9);
}

TEST(ThreeLinearPlusIkSolver, ASolveReturnsTheSameAxisValuesWhereverTheLinearAxesStoodBeforeIt) {
  auto const solver = solverAt(mtkit_test::fiveAxisKinematics(), {0, 0, 0, -25, 110});
  Point3D const target(33, -12, 48);
  ASSERT_TRUE(solver->moveToolTipTo(target));
  AxisValues const solved = solver->axisValues();
  AxisValues elsewhere = solved;
  elsewhere.setValue(0, 500);
  elsewhere.setValue(1, -250);
  elsewhere.setValue(2, 75);
  solver->moveTo(elsewhere);
  ASSERT_TRUE(solver->moveToolTipTo(target));
  EXPECT_EQ(solver->axisValues(), solved);
}

TEST(ThreeLinearPlusIkSolver, AfterSetToolReferenceFrameOrSetAxisOrderingTheNextSolveRebuildsTheCache) {
  auto const solver = solverAt(mtkit_test::fiveAxisKinematics(), {0, 0, 0, 30, 40});
  Point3D const target(10, 20, 30);
  ASSERT_TRUE(solver->moveToolTipTo(target));
  tiltXAxisUnder(*solver);
  solver->setToolReferenceFrame(Orvo::Frame(Orvo::IdentityTag{}));
  ASSERT_TRUE(solver->moveToolTipTo(target + Vector3D(1, 1, 1)));
  EXPECT_LT(distance(solver->toolTipPoint(), target + Vector3D(1, 1, 1)), 1e-9);

  // Tilt back and reorder: the rebuilt cache fits the axis again.
  auto* const part = const_cast<PartDefinition*>(solver->kinematicsDefinition()->find(MachinePartId("x")).value());
  const_cast<machine::AxisDefinition*>(part->axisDefinition())->setDirection(Vector3D(1, 0, 0));
  solver->setAxisOrdering(solver->fullOrdering());
  ASSERT_TRUE(solver->moveToolTipTo(target));
  EXPECT_LT(distance(solver->toolTipPoint(), target), 1e-9);
}

TEST(ThreeLinearPlusIkSolver, TwoLinearAxesThatAreParallelMakeTheThreeAxisSolveReturnEmpty) {
  std::vector<mtkit_test::PartPtr> base;
  base.push_back(mtkit_test::with(
      mtkit_test::linearPart("x", "X", {1, 0, 0}),
      mtkit_test::with(mtkit_test::linearPart("y", "Y", {1, 0, 0}),
                       mtkit_test::with(mtkit_test::linearPart("z", "Z", {0, 0, 1}),
                                        mtkit_test::staticPart("head", machine::PartType::HEAD)))));
  base.push_back(mtkit_test::staticPart("table", machine::PartType::TABLE));
  ThreeLinearPlusIkSolver solver{Machine(mtkit_test::kinematicsOf(std::move(base)))};
  solver.setAxisOrdering(solver.fullOrdering());
  EXPECT_FALSE(solver.moveToolTipTo(Point3D(1, 2, 3)));
}

TEST(ThreeLinearPlusIkSolver, AfterAnEmptyResultAxisValuesHoldsTheNonFiniteValues) {
  std::vector<mtkit_test::PartPtr> base;
  base.push_back(mtkit_test::with(
      mtkit_test::linearPart("x", "X", {1, 0, 0}),
      mtkit_test::with(mtkit_test::linearPart("y", "Y", {0, 1, 0}),
                       mtkit_test::with(mtkit_test::linearPart("z", "Z", {0, 1, 0}),
                                        mtkit_test::staticPart("head", machine::PartType::HEAD)))));
  base.push_back(mtkit_test::staticPart("table", machine::PartType::TABLE));
  ThreeLinearPlusIkSolver solver{Machine(mtkit_test::kinematicsOf(std::move(base)))};
  solver.setAxisOrdering(solver.fullOrdering());
  ASSERT_FALSE(solver.moveToolTipTo(Point3D(1, 2, 3)));
  AxisValues const values = solver.axisValues();
  for (int i = 0; i < 3; ++i) EXPECT_FALSE(std::isfinite(values.value(i).value())) << i;
}

TEST(ThreeLinearPlusIkSolver, AnOrderingWhoseFirstAxesAreNotLinearIsAnAssertion) {
  mtkit_test::AssertRecorder rec;
  auto const solver = solverAt(mtkit_test::fiveAxisKinematics(), {0, 0, 0, 0, 0});
  Orvo::AxisOrdering ordering;
  for (int i : {3, 0, 1, 2, 4}) ordering.append(solver->fullOrdering().axisInfo(i));
  solver->setAxisOrdering(ordering);
  solver->moveToolTipTo(Point3D(0, 0, 0));
  auto const failures = rec.take();
  ASSERT_FALSE(failures.empty());
  EXPECT_EQ(failures.front().expression, "areFirstThreeAxesLinear()");
  EXPECT_EQ(failures.front().file, "machine\\machine\\ThreeLinearPlusIkSolver");
  // The trial positions of the rebuild ask the same of the machine solver.
  for (std::size_t i = 1; i < failures.size(); ++i) EXPECT_EQ(failures[i].expression, "doAreAxesCompatible()");
}
