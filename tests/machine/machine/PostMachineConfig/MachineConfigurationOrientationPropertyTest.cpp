// Properties of the orientation solving and the optimised positions, on
// machines of every kind: for random reachable directions, both solutions
// point the spindle along the direction (by the configuration's own
// getDirection and by a rotation the test builds itself), lie in the axes'
// ranges, and the optimised position brought back through the test's own
// forward kinematics lands on the requested point.
//
// The test's model of a machine: the tool direction is s turned by the
// rotary axes U, then V, then W, each about its axis as a table axis and
// about the reversed axis as a head axis. The linear axes carry the
// outermost head pivot; each head pivot sits at its offset from the next
// inner one, the innermost at its offset from the gauge point, and the tip
// hangs tool length along the spindle axis below the gauge point. Without a
// head axis the linear axes carry the tip itself (the control applies the
// tool length). A table
// axis turns the part about the line through its offset, U outermost.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "machine/machine/PostMachineConfig/MachineConfiguration.h"

using com::vantora::Matrix;
using com::vantora::Vector;
using com::vantora::VectorPair;
using com::vantora::post::Axis;
using com::vantora::post::MachineConfiguration;
using com::vantora::post::Range;

namespace {

constexpr double kPi = 3.141592653589793;
constexpr double kDeg = kPi / 180;
constexpr int kSamples = 10000;
constexpr double kDirectionTolerance = 1e-9;
constexpr double kPositionTolerance = 1e-9;
// Directions within 0.005 degrees of the spindle axis are answered with zero
// rotary values on purpose; the samples keep twice that away from it.
double const kAwayFromSpindle = std::cos(0.01 * kDeg);

struct TestAxis {
  bool table;
  Vector axis;  // unit
  Vector offset;
  int coordinate;
  bool ranged;
  double minimum;  // radians, when ranged
  double maximum;
  double sampleMinimum;  // where the random poses are drawn
  double sampleMaximum;
  double resolution;
  Vector effective() const { return table ? axis : axis.getNegated(); }
};

struct Machine {
  std::string name;
  Vector spindle;  // as given
  double toolLength;
  std::vector<TestAxis> axes;  // U, V, W
};

TestAxis rotary(bool table, Vector const& axis, Vector const& offset, int coordinate, double sampleDeg) {
  return TestAxis{table, axis.getNormalized(), offset, coordinate, false, 0, 0, -sampleDeg * kDeg, sampleDeg * kDeg,
                  0};
}

TestAxis ranged(TestAxis a, double minimumDeg, double maximumDeg) {
  a.ranged = true;
  a.minimum = minimumDeg * kDeg;
  a.maximum = maximumDeg * kDeg;
  return a;
}

MachineConfiguration configure(Machine const& m) {
  MachineConfiguration c;
  for (TestAxis const& a : m.axes) {
    Axis axis = a.ranged ? Axis(a.table, a.axis, a.offset, a.coordinate, Range(a.minimum, a.maximum, Range::ROTATIONAL))
                         : Axis(a.table, a.axis, a.offset, a.coordinate);
    axis.setTCPEnabled(false);
    if (a.resolution > 0) axis.setResolution(a.resolution);
    c.addAxis(axis);
  }
  c.setSpindleAxis(m.spindle);
  c.setToolLength(m.toolLength);
  return c;
}

double valueOf(Vector const& abc, TestAxis const& a) { return abc.getCoordinate(static_cast<unsigned int>(a.coordinate)); }

/// The rotation of the chain: R(W) R(V) R(U).
Matrix chainRotation(Machine const& m, Vector const& abc) {
  Matrix r;
  for (TestAxis const& a : m.axes) r = Matrix::getAxisRotation(a.effective(), valueOf(abc, a)).multiplyMatrix(r);
  return r;
}

Vector toolDirection(Machine const& m, Vector const& abc) {
  return chainRotation(m, abc).multiplyVector(m.spindle.getNormalized());
}

/// The point of the part under the tip when the linear axes stand at `q`.
Vector partPointUnderTip(Machine const& m, Vector const& q, Vector const& abc) {
  // The head side: every head pivot offset and the tool, each turned by its
  // own axis and all the head axes outside it.
  std::vector<TestAxis const*> heads;
  for (TestAxis const& a : m.axes)
    if (!a.table) heads.push_back(&a);
  Vector tip = q;
  for (std::size_t k = 0; k < heads.size(); ++k) {
    Matrix outside;
    for (std::size_t j = k; j < heads.size(); ++j)
      outside = Matrix::getAxisRotation(heads[j]->effective(), valueOf(abc, *heads[j])).multiplyMatrix(outside);
    tip.subtract(outside.multiplyVector(heads[k]->offset));
    if (k == 0) tip.subtract(outside.multiplyVector(Vector::product(m.spindle, m.toolLength)));
  }
  // The table side: from the machine into the part, the outermost axis
  // first. A table axis turned by its value moves the part the other way, so
  // the part sees the point turned forward.
  Vector part = tip;
  for (TestAxis const& a : m.axes) {
    if (!a.table) continue;
    Matrix const r = Matrix::getAxisRotation(a.effective(), valueOf(abc, a));
    part = Vector::sum(r.multiplyVector(Vector::diff(part, a.offset)), a.offset);
  }
  return part;
}

bool inRange(TestAxis const& a, double value) {
  return !a.ranged || (value + 1e-6 >= a.minimum && value - 1e-6 <= a.maximum);
}

void checkMachine(Machine const& m, unsigned int seed) {
  SCOPED_TRACE(m.name);
  MachineConfiguration const c = configure(m);
  std::mt19937 random(seed);
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  std::uniform_real_distribution<double> place(-300.0, 300.0);
  Vector const s = m.spindle.getNormalized();

  double worstOwn = 0;
  double worstMatrix = 0;
  double worstPosition = 0;
  int outOfRange = 0;
  int failures = 0;
  int missed = 0;
  int snapped = 0;
  std::string firstFailure;
  for (int i = 0; i < kSamples; ++i) {
    Vector pose;
    Vector direction;
    do {
      for (TestAxis const& a : m.axes) {
        double const v = a.sampleMinimum + (a.sampleMaximum - a.sampleMinimum) * unit(random);
        pose.setCoordinate(static_cast<unsigned int>(a.coordinate), v);
      }
      direction = toolDirection(m, pose);
    } while (Vector::dot(direction, s) >= kAwayFromSpindle);
    VectorPair pair;
    try {
      pair = c.getABCByDirectionBoth(direction);
    } catch (std::exception const& e) {
      if (failures++ == 0) firstFailure = e.what();
      continue;
    }
    Vector const point(place(random), place(random), place(random));
    for (Vector const& abc : {pair.first, pair.second}) {
      // On six axes V stays at 0 when U alone brings the spindle within
      // 0.005 degrees of the direction; such a solution is as close as that.
      double tolerance = kDirectionTolerance;
      if (m.axes.size() == 3) {
        Vector withoutV = abc;
        withoutV.setCoordinate(static_cast<unsigned int>(m.axes[1].coordinate), 0);
        if (Vector::getAngle(toolDirection(m, withoutV), direction) <= 0.005 * kDeg) {
          tolerance = 0.0051 * kDeg;
          ++snapped;
        }
      }
      double const own = Vector::getDistance(c.getDirection(abc), direction);
      double const matrix = Vector::getDistance(toolDirection(m, abc), direction);
      if (own > tolerance || matrix > tolerance) ++missed;
      if (tolerance == kDirectionTolerance) {
        worstOwn = std::max(worstOwn, own);
        worstMatrix = std::max(worstMatrix, matrix);
      }
      for (TestAxis const& a : m.axes)
        if (!inRange(a, valueOf(abc, a))) ++outOfRange;
      Vector const q = c.getOptimizedPosition(point, abc, 0, 1, false);
      worstPosition = std::max(worstPosition, Vector::getDistance(partPointUnderTip(m, q, abc), point));
    }
  }
  EXPECT_EQ(0, failures) << firstFailure;
  EXPECT_LE(worstOwn, kDirectionTolerance);
  EXPECT_LE(worstMatrix, kDirectionTolerance);
  EXPECT_EQ(0, outOfRange);
  EXPECT_EQ(0, missed);
  // Only a few samples may fall into that snap.
  EXPECT_LT(snapped, kSamples / 100);
  EXPECT_LE(worstPosition, kPositionTolerance);
}

Vector const kX(1, 0, 0);
Vector const kY(0, 1, 0);
Vector const kZ(0, 0, 1);

TEST(MachineConfigurationOrientationProperty, TableTableAC) {
  checkMachine({"table A, table C",
                kZ,
                75,
                {ranged(rotary(true, kX, Vector(0, 20, -40), 0, 110), -120, 120),
                 rotary(true, kZ, Vector(10, 5, 0), 2, 180)}},
               1);
}

TEST(MachineConfigurationOrientationProperty, TableTableAB) {
  checkMachine({"table A, table B",
                kZ,
                50,
                {ranged(rotary(true, kX, Vector(0, 0, -100), 0, 100), -180, 180),
                 ranged(rotary(true, kY, Vector(3, 0, -80), 1, 170), -180, 180)}},
               2);
}

TEST(MachineConfigurationOrientationProperty, HeadHeadBC) {
  checkMachine({"head B, head C",
                kZ,
                120,
                {ranged(rotary(false, kY, Vector(0, 0, 150), 1, 100), -110, 110),
                 ranged(rotary(false, kZ, Vector(0, 40, 90), 2, 359), -360, 360)}},
               3);
}

TEST(MachineConfigurationOrientationProperty, HeadHeadAB) {
  checkMachine({"head A, head B",
                kZ,
                60,
                {rotary(false, kX, Vector(0, 0, 80), 0, 100), rotary(false, kY, Vector(5, 0, 120), 1, 100)}},
               4);
}

TEST(MachineConfigurationOrientationProperty, HeadTableBC) {
  checkMachine({"head B, table C",
                kZ,
                90,
                {ranged(rotary(false, kY, Vector(0, 0, 200), 1, 95), -100, 100),
                 rotary(true, kZ, Vector(-30, 20, 0), 2, 180)}},
               5);
}

TEST(MachineConfigurationOrientationProperty, HeadTableAC) {
  checkMachine({"head A, table C",
                kZ,
                40,
                {ranged(rotary(false, kX, Vector(0, 10, 100), 0, 90), -95, 95),
                 ranged(rotary(true, kZ, Vector(50, 0, 0), 2, 179), 0, 360)}},
               6);
}

TEST(MachineConfigurationOrientationProperty, NutatingHeadOnTiltedAxes) {
  // A head turning about an axis 45 degrees between Y and Z, on a head
  // about a slightly leaning vertical.
  checkMachine({"nutating head",
                kZ,
                110,
                {rotary(false, Vector(0, 1, 1), Vector(0, -30, 60), 1, 180),
                 rotary(false, Vector(0.05, -0.1, 1), Vector(0, 0, 250), 2, 180)}},
               7);
}

TEST(MachineConfigurationOrientationProperty, TiltedTablesAndATiltedSpindle) {
  checkMachine({"tilted tables",
                Vector(0, 0.3, 1),
                70,
                {rotary(true, Vector(1, 0, 1), Vector(10, 0, -20), 1, 180),
                 rotary(true, Vector(0.1, 0.2, 1), Vector(0, 15, 0), 2, 180)}},
               8);
}

TEST(MachineConfigurationOrientationProperty, FourAxisTableA) {
  // The tool stays perpendicular to A, which is all that four axes reach.
  checkMachine({"table A", kZ, 80, {ranged(rotary(true, kX, Vector(0, 0, -50), 0, 170), -360, 360)}}, 9);
}

TEST(MachineConfigurationOrientationProperty, FourAxisHeadB) {
  checkMachine({"head B", kZ, 80, {rotary(false, kY, Vector(0, 0, 100), 1, 170)}}, 10);
}

TEST(MachineConfigurationOrientationProperty, SixAxesWithWParallelToTheSpindle) {
  // W holds its range minimum (both ends are equally far from zero).
  checkMachine({"head A, head B, head C",
                kZ,
                100,
                {rotary(false, kX, Vector(0, 0, 60), 0, 100), rotary(false, kY, Vector(0, 0, 90), 1, 100),
                 ranged(rotary(false, kZ, Vector(0, 0, 30), 2, 180), -180, 180)}},
               11);
}

TEST(MachineConfigurationOrientationProperty, SixAxesWithASweptWParallelToTheSpindle) {
  TestAxis w = ranged(rotary(true, kZ, Vector(20, 0, 0), 2, 90), -90, 90);
  w.resolution = 45 * kDeg;
  checkMachine({"head A, head B, table C swept",
                kZ,
                100,
                {rotary(false, kX, Vector(0, 0, 60), 0, 100), rotary(false, kY, Vector(0, 0, 90), 1, 100), w}},
               12);
}

}  // namespace
