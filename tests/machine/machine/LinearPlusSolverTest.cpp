#include "machine/machine/LinearPlusSolver.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <vector>

#include "machine/machine/ThreeLinearPlusIkSolver.h"
#include "machine/machine/TwoLinearPlusSolver.h"
#include "support/AssertRecorder.h"
#include "support/TestMachines.h"

using machine::LinearPlusSolver;
using machine::Machine;
using machine::MachineSolver;
using machine::PartDefinition;
using machine::ThreeLinearPlusIkSolver;
using machine::TwoLinearPlusSolver;
using Orvo::AxisInfo;
using Orvo::AxisName;
using Orvo::AxisOrdering;
using Orvo::AxisValue;
using Orvo::AxisValues;
using Orvo::MachinePartId;
using Orvo::Matrix3x3;
using Orvo::Point3D;
using Orvo::Vector3D;

namespace {

struct Solve {
  AxisValues values;
  double c = 0.0;
};

/// The solve worked out through the public operations of another solver on
/// the same machine: the tip with the solved axes at 0 and one unit along
/// each, the inverse of the matrix of those motions (the unit normal of the
/// plane as third column for two axes), one product. `values` holds the pose
/// of the other axes.
Solve measuredSolve(MachineSolver& probe, AxisValues values, Point3D const& target, int count) {
  for (int i = 0; i < count; ++i) values.setValue(i, 0.0);
  probe.moveTo(values);
  Point3D const tip = probe.toolTipPoint();
  Vector3D columns[3];
  for (int i = 0; i < count; ++i) {
    values.setValue(i, 1.0);
    probe.moveTo(values);
    columns[i] = probe.toolTipPoint() - tip;
    values.setValue(i, 0.0);
  }
  if (count == 2) {
    columns[2] = Vector3D::cross(columns[0], columns[1]);
    if (!columns[2].isZero(1.4901161193847656e-08)) columns[2].normalize();
  }
  Matrix3x3 const inverse = Matrix3x3(columns[0], columns[1], columns[2]).getInverse();
  Vector3D const d = target - tip;
  Solve out;
  for (int i = 0; i < count; ++i) values.setValue(i, Vector3D::dot(inverse.row(i), d));
  out.values = values;
  out.c = Vector3D::dot(inverse.row(2), d);
  return out;
}

/// X, Y on the head, a C table turning about Z with its attach frame off
/// the axis: two linear axes and one rotary.
machine::KinematicsDefinition twoLinearAndCTable() {
  std::vector<mtkit_test::PartPtr> base;
  auto c = mtkit_test::rotaryPart("c", "C", {5, -3, 0}, {0, 0, 1});
  auto table = mtkit_test::staticPart("table", machine::PartType::TABLE);
  table->setAttachFrame(mtkit_test::frameAt(20, 10, 5));
  c->addChild(std::move(table));
  auto head = mtkit_test::staticPart("head", machine::PartType::HEAD);
  head->setAttachFrame(*Orvo::Frame::make(Point3D(0, 0, -80), Vector3D(1, 0, 0), Vector3D(0, 0.6, -0.8)));
  base.push_back(mtkit_test::with(mtkit_test::linearPart("x", "X", {1, 0, 0}),
                                  mtkit_test::with(mtkit_test::linearPart("y", "Y", {0, 0.8, 0.6}), std::move(head))));
  base.push_back(std::move(c));
  return mtkit_test::kinematicsOf(std::move(base));
}

/// Tilts the X axis of a standing solver's own definition, which its cache
/// doesn't see: shows whether a solve used the cache or measured anew. The
/// machine's copy is not a const object, so the cast is sound.
void tiltXAxisUnder(MachineSolver& solver) {
  auto* const part = const_cast<PartDefinition*>(solver.kinematicsDefinition()->find(MachinePartId("x")).value());
  const_cast<machine::AxisDefinition*>(part->axisDefinition())->setDirection(Vector3D(1, 1, 0));
}

double distance(Point3D const& a, Point3D const& b) { return (a - b).length(); }

}  // namespace

TEST(LinearPlusSolver, BothLinearSolversAreLinearPlusSolvers) {
  Machine three(mtkit_test::fiveAxisKinematics());
  three.setAxisOrdering(three.fullOrdering());
  Machine two(twoLinearAndCTable());
  two.setAxisOrdering(two.fullOrdering());
  EXPECT_NE(dynamic_cast<LinearPlusSolver*>(three.makeMachineSolver().get()), nullptr);
  EXPECT_NE(dynamic_cast<LinearPlusSolver*>(two.makeMachineSolver().get()), nullptr);
}

TEST(LinearPlusSolver, AThreeAxisSolveIsTheMeasuredSolveToTheLastBitAtEveryPose) {
  Machine m(mtkit_test::fiveAxisKinematics());
  m.setAxisOrdering(m.fullOrdering());
  auto const solver = m.makeMachineSolver();
  auto const probe = m.makeMachineSolver();
  ASSERT_NE(dynamic_cast<ThreeLinearPlusIkSolver*>(solver.get()), nullptr);
  Point3D const targets[] = {{10, 20, 30}, {-15.25, 5.5, 60.125}, {0.1, -0.2, 0.3}};
  for (double const b : {0.0, 30.0, -72.5}) {
    for (double const c : {0.0, 45.0, 181.0}) {
      AxisValues const pose(std::vector<AxisValue>{7, 8, 9, b, c});
      solver->moveTo(pose);
      for (Point3D const& target : targets) {
        auto const result = solver->moveToolTipTo(target);
        ASSERT_TRUE(result);
        EXPECT_EQ(result->get(), 0.0);
        EXPECT_EQ(solver->axisValues(), measuredSolve(*probe, pose, target, 3).values) << b << " " << c;
      }
    }
  }
}

TEST(LinearPlusSolver, ATwoAxisSolveIsTheMeasuredSolveToTheLastBitWithTheDistanceToThePlane) {
  Machine m(twoLinearAndCTable());
  m.setAxisOrdering(m.fullOrdering());
  auto const solver = m.makeMachineSolver();
  auto const probe = m.makeMachineSolver();
  ASSERT_NE(dynamic_cast<TwoLinearPlusSolver*>(solver.get()), nullptr);
  for (double const c : {0.0, 33.0, -120.0}) {
    AxisValues const pose(std::vector<AxisValue>{1, 2, c});
    solver->moveTo(pose);
    for (Point3D const& target : {Point3D(10, 20, 30), Point3D(-4, 9.5, -15)}) {
      auto const result = solver->moveToolTipTo(target);
      Solve const expected = measuredSolve(*probe, pose, target, 2);
      ASSERT_TRUE(result);
      EXPECT_EQ(result->get(), std::fabs(expected.c));
      EXPECT_EQ(solver->axisValues(), expected.values) << c;
    }
  }
}

TEST(LinearPlusSolver, MovingAnotherAxisAwayAndBackKeepsTheCache) {
  Machine m(mtkit_test::fiveAxisKinematics());
  m.setAxisOrdering(m.fullOrdering());
  m.moveTo(AxisValues(std::vector<AxisValue>{0, 0, 0, 30, 40}));
  auto const solver = m.makeMachineSolver();
  ASSERT_TRUE(solver->moveToolTipTo(Point3D(10, 20, 30)));
  tiltXAxisUnder(*solver);
  AxisValues values = solver->axisValues();
  values.setValue(3, 31.0);
  solver->moveTo(values);
  values.setValue(3, 30.0);
  solver->moveTo(values);
  // Every other axis stands where it stood: the stored matrix is used, and
  // no longer fits the tilted axis.
  Point3D const target(-15, 5, 60);
  ASSERT_TRUE(solver->moveToolTipTo(target));
  EXPECT_GT(distance(solver->toolTipPoint(), target), 1.0);
}

TEST(LinearPlusSolver, AnotherAxisAtNaNNeverMatchesTheKeyAndGivesAnEmptyResult) {
  mtkit_test::AssertRecorder rec;
  Machine m(mtkit_test::fiveAxisKinematics());
  m.setAxisOrdering(m.fullOrdering());
  double const nan = std::numeric_limits<double>::quiet_NaN();
  m.moveTo(AxisValues(std::vector<AxisValue>{0, 0, 0, nan, 40}));
  auto const solver = m.makeMachineSolver();
  EXPECT_FALSE(solver->moveToolTipTo(Point3D(10, 20, 30)));
  EXPECT_FALSE(solver->moveToolTipTo(Point3D(10, 20, 30)));
  // The turn by NaN fails the checks of its sine and cosine, and nothing else.
  auto const failures = rec.take();
  ASSERT_FALSE(failures.empty());
  for (auto const& failure : failures) EXPECT_EQ(failure.file, "util\\utility/Angle") << failure.expression;
  // A finite pose afterwards is measured afresh and solves.
  AxisValues values = solver->axisValues();
  values.setValue(3, 30.0);
  solver->moveTo(values);
  ASSERT_TRUE(solver->moveToolTipTo(Point3D(10, 20, 30)));
  EXPECT_LT(distance(solver->toolTipPoint(), Point3D(10, 20, 30)), 1e-9);
}

TEST(LinearPlusSolver, AnOrderedPartWithoutAnAxisAfterTheSolvedOnesReadsAs0AndIsAnAssertionOnEverySolve) {
  mtkit_test::AssertRecorder rec;
  ThreeLinearPlusIkSolver solver(mtkit_test::threeAxisKinematics());
  AxisOrdering ordering = solver.fullOrdering();
  ordering.append(AxisInfo(MachinePartId("table"), AxisName("")));
  solver.setAxisOrdering(ordering);
  ASSERT_EQ(solver.numOrderedParts(), 4);
  rec.take();
  for (int solve = 0; solve < 2; ++solve) {
    auto const result = solver.moveToolTipTo(Point3D(1, 2, 3));
    ASSERT_TRUE(result);
    EXPECT_EQ(solver.toolTipPoint(), Point3D(1, 2, 3));
    auto const failures = rec.take();
    ASSERT_FALSE(failures.empty()) << solve;
    for (auto const& failure : failures) {
      EXPECT_EQ(failure.expression, "optionalAxis && \"An ordered part must be an axis.\"");
      EXPECT_EQ(failure.file, "machine\\machine\\Machine");
    }
  }
}

TEST(LinearPlusSolver, AfterAnOrderingThatFailedTheSolveIsEmpty) {
  mtkit_test::AssertRecorder rec;
  ThreeLinearPlusIkSolver solver(mtkit_test::threeAxisKinematics());
  solver.setAxisOrdering(solver.fullOrdering());
  ASSERT_TRUE(solver.moveToolTipTo(Point3D(1, 2, 3)));
  AxisOrdering unknown = solver.fullOrdering();
  unknown.append(AxisInfo(MachinePartId("nowhere"), AxisName("W")));
  solver.setAxisOrdering(unknown);
  ASSERT_EQ(solver.numOrderedParts(), 0);
  EXPECT_FALSE(solver.moveToolTipTo(Point3D(1, 2, 3)));
  EXPECT_EQ(rec.takeTexts(), (std::vector<std::string>{"areFirstThreeAxesLinear()"}));
}
