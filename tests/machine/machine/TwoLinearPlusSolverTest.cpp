#include "machine/machine/TwoLinearPlusSolver.h"

#include <gtest/gtest.h>

#include <cmath>

#include "support/AssertRecorder.h"
#include "support/TestMachines.h"

using machine::Machine;
using machine::TwoLinearPlusSolver;
using Orvo::AxisValue;
using Orvo::AxisValues;
using Orvo::Point3D;
using Orvo::Vector3D;

TEST(TwoLinearPlusSolver, ATwoAxisSolverWithItsAxesAlongXAndYAndATarget5AboveTheReachablePlaneReturns5AndLeavesTheTipDirectlyBelowTheTarget) {
  auto const kinematics = mtkit_test::twoAxisKinematics();
  TwoLinearPlusSolver solver(kinematics, machine::ControllerConfiguration());
  solver.setAxisOrdering(solver.fullOrdering());
  auto const result = solver.moveToolTipTo(Point3D(7, -3, 5));
  ASSERT_TRUE(result);
  EXPECT_EQ(result->get(), 5.0);
  EXPECT_EQ(solver.toolTipPoint(), Point3D(7, -3, 0));
  // Below the plane the distance is positive too.
  auto const below = solver.moveToolTipTo(Point3D(1, 2, -4));
  ASSERT_TRUE(below);
  EXPECT_EQ(below->get(), 4.0);
  EXPECT_FALSE(std::signbit(solver.moveToolTipTo(Point3D(1, 2, 0))->get()));
}

TEST(TwoLinearPlusSolver, ATwoAxisSolverWhoseAxesAreParallelReturnsEmpty) {
  TwoLinearPlusSolver solver{Machine(mtkit_test::twoAxisKinematics(Vector3D(1, 0, 0)))};
  solver.setAxisOrdering(solver.fullOrdering());
  EXPECT_FALSE(solver.moveToolTipTo(Point3D(1, 2, 3)));
  AxisValues const values = solver.axisValues();
  EXPECT_FALSE(std::isfinite(values.value(0).value()));
  EXPECT_FALSE(std::isfinite(values.value(1).value()));
}

TEST(TwoLinearPlusSolver, OnlyTheFirstTwoAxesAreSolvedAndTheRestKeyTheCache) {
  std::vector<mtkit_test::PartPtr> base;
  auto c = mtkit_test::rotaryPart("c", "C", {0, 0, 0}, {0, 0, 1});
  c->addChild(mtkit_test::staticPart("table", machine::PartType::TABLE));
  base.push_back(mtkit_test::with(mtkit_test::linearPart("x", "X", {1, 0, 0}),
                                  mtkit_test::with(mtkit_test::linearPart("z", "Z", {0, 0, 1}),
                                                   mtkit_test::staticPart("head", machine::PartType::HEAD))));
  base.push_back(std::move(c));
  Machine m(mtkit_test::kinematicsOf(std::move(base)));
  m.setAxisOrdering(m.fullOrdering());
  m.moveTo(AxisValues(std::vector<AxisValue>{0, 0, 90}));
  auto const solver = m.makeMachineSolver();
  ASSERT_NE(dynamic_cast<TwoLinearPlusSolver*>(solver.get()), nullptr);
  // C at 90 turns the table, so in table coordinates the head's X motion
  // runs along -Y and its plane of reach is x = 0.
  auto const result = solver->moveToolTipTo(Point3D(3, 4, 5));
  ASSERT_TRUE(result);
  EXPECT_NEAR(result->get(), 3.0, 1e-12);
  EXPECT_EQ(solver->axisValues().value(2), AxisValue(90));
  Point3D const tip = solver->toolTipPoint();
  EXPECT_NEAR(tip.x, 0.0, 1e-12);
  EXPECT_NEAR(tip.y, 4.0, 1e-12);
  EXPECT_NEAR(tip.z, 5.0, 1e-12);
}

TEST(TwoLinearPlusSolver, AnOrderingWhoseFirstAxesAreNotLinearIsAnAssertion) {
  mtkit_test::AssertRecorder rec;
  TwoLinearPlusSolver solver{Machine(mtkit_test::twoAxisKinematics())};
  EXPECT_FALSE(solver.moveToolTipTo(Point3D(0, 0, 0)));
  auto const failures = rec.take();
  ASSERT_EQ(failures.size(), 1u);
  EXPECT_EQ(failures[0].expression, "areFirstTwoAxesLinear()");
  EXPECT_EQ(failures[0].file, "machine\\machine\\TwoLinearPlusSolver");
}
