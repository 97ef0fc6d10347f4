// Properties of the preference choosers of MachineConfiguration over random
// directions and previous positions, on machines of several kinds: tables,
// heads, a head with a table, AC, BC and AB pairs, and a tilted head axis.
// Fixed seeds keep every run the same.

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
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
constexpr double kTwoPi = 2 * kPi;
using M = MachineConfiguration;

struct Machine {
  std::string name;
  MachineConfiguration config;
};

Range rotaryRange(double minimum, double maximum) { return Range(minimum, maximum, Range::ROTATIONAL); }

std::vector<Machine> machines() {
  double const deg = kPi / 180;
  std::vector<Machine> list;
  list.push_back({"table-table AC",
                  MachineConfiguration(Axis(true, Vector(1, 0, 0), Vector(), 0, rotaryRange(-120 * deg, 120 * deg)),
                                       Axis(true, Vector(0, 0, 1), Vector(), 2))});
  list.push_back({"table-table BC",
                  MachineConfiguration(Axis(true, Vector(0, 1, 0), Vector(), 1, rotaryRange(-100 * deg, 100 * deg)),
                                       Axis(true, Vector(0, 0, 1), Vector(), 2, rotaryRange(-360 * deg, 360 * deg)))});
  list.push_back({"table-table AB", MachineConfiguration(Axis(true, Vector(1, 0, 0), Vector(), 0),
                                                         Axis(true, Vector(0, 1, 0), Vector(), 1))});
  list.push_back({"head-head AC",
                  MachineConfiguration(Axis(false, Vector(1, 0, 0), Vector(), 0, rotaryRange(-110 * deg, 110 * deg)),
                                       Axis(false, Vector(0, 0, 1), Vector(), 2))});
  list.push_back({"head-table BC",
                  MachineConfiguration(Axis(false, Vector(0, 1, 0), Vector(), 1, rotaryRange(-90 * deg, 90 * deg)),
                                       Axis(true, Vector(0, 0, 1), Vector(), 2))});
  // A head axis tilted 45 degrees between Y and Z, on a C table.
  list.push_back({"tilted head B, table C",
                  MachineConfiguration(Axis(false, Vector(0, 1, 1), Vector(), 1),
                                       Axis(true, Vector(0, 0, 1), Vector(), 2, rotaryRange(-2 * kPi, 2 * kPi)))});
  return list;
}

std::vector<Axis const*> rotaryAxes(MachineConfiguration const& m) {
  std::vector<Axis const*> axes;
  for (Axis const* a : {&m.getAxisU(), &m.getAxisV(), &m.getAxisW()})
    if (a->isEnabled()) axes.push_back(a);
  return axes;
}

double at(Vector const& v, int coordinate) { return v.getCoordinate(static_cast<unsigned int>(coordinate)); }
void setAt(Vector& v, int coordinate, double value) { v.setCoordinate(static_cast<unsigned int>(coordinate), value); }

// The orientation the rotary values give, built from rotations about the
// effective axes in chain order, U first.
Matrix orientationOf(MachineConfiguration const& m, Vector const& abc) {
  Matrix r;
  for (Axis const* a : rotaryAxes(m)) r = Matrix(a->getEffectiveAxis(), at(abc, a->getCoordinate())).multiplyMatrix(r);
  return r;
}

Vector directionOf(MachineConfiguration const& m, Vector const& abc) {
  return orientationOf(m, abc).multiplyVector(m.getSpindleAxis().getNormalized());
}

// Random rotary values within each axis's range (or a turn either side).
Vector randomABC(MachineConfiguration const& m, std::mt19937_64& random) {
  Vector abc;
  for (Axis const* a : rotaryAxes(m)) {
    Range const& r = a->getRange();
    double const lo = r.isNonRange() ? -kPi : r.getMinimum();
    double const hi = r.isNonRange() ? kPi : r.getMaximum();
    setAt(abc, a->getCoordinate(), std::uniform_real_distribution<double>(lo, hi)(random));
  }
  return abc;
}

Vector randomCurrent(MachineConfiguration const& m, std::mt19937_64& random) {
  Vector current;
  for (Axis const* a : rotaryAxes(m))
    setAt(current, a->getCoordinate(), std::uniform_real_distribution<double>(-2 * kTwoPi, 2 * kTwoPi)(random));
  return current;
}

double travel(Vector const& from, Vector const& to) {
  return std::fabs(to.x - from.x) + std::fabs(to.y - from.y) + std::fabs(to.z - from.z);
}

// Each enabled axis's value moved by whole turns as near to `current` as it goes.
Vector nearestTurns(MachineConfiguration const& m, Vector const& abc, Vector const& current) {
  Vector r;
  for (Axis const* a : rotaryAxes(m)) {
    int const c = a->getCoordinate();
    double const x = at(abc, c);
    setAt(r, c, x + kTwoPi * std::round((at(current, c) - x) / kTwoPi));
  }
  return r;
}

// The values differ by whole turns only.
bool sameTurns(MachineConfiguration const& m, Vector const& a, Vector const& b) {
  for (Axis const* axis : rotaryAxes(m)) {
    double const turns = (at(a, axis->getCoordinate()) - at(b, axis->getCoordinate())) / kTwoPi;
    if (std::fabs(turns - std::round(turns)) > 1e-9) return false;
  }
  return true;
}

bool inRange(Axis const& a, double value) {
  Range const& r = a.getRange();
  return r.isNonRange() || (value >= r.getMinimum() - 1e-6 && value <= r.getMaximum() + 1e-6);
}

// Some turn of each axis of `solution` lies in its range, and some turn of
// the controlling axis also satisfies `wanted`.
bool reachable(MachineConfiguration const& m, Vector const& solution, int controlling,
               std::function<bool(double)> const& wanted) {
  for (Axis const* a : rotaryAxes(m)) {
    int const c = a->getCoordinate();
    bool found = false;
    for (int k = -6; k <= 6 && !found; ++k) {
      double const value = at(solution, c) + k * kTwoPi;
      found = inRange(*a, value) && (c != controlling || wanted(value));
    }
    if (!found) return false;
  }
  return true;
}

TEST(MachineConfigurationPreferenceProperty, ClosestABCIsNeverFartherThanTheOtherSolution) {
  for (Machine const& machine : machines()) {
    SCOPED_TRACE(machine.name);
    MachineConfiguration const& m = machine.config;
    std::mt19937_64 random(20240611);
    int checked = 0;
    for (int i = 0; i < 2000; ++i) {
      Vector const abc = randomABC(m, random);
      Vector const current = randomCurrent(m, random);
      Vector const t = directionOf(m, abc);
      // The pole has a whole circle of solutions, not two.
      if (Vector::dot(t, m.getSpindleAxis().getNormalized()) > 0.9999) continue;
      Vector const r = m.getClosestABC(current, abc);
      VectorPair const both = m.getABCByDirectionBoth(t);
      ASSERT_GE(Vector::dot(directionOf(m, r), t), 1 - 1e-9) << "sample " << i;
      ASSERT_TRUE(sameTurns(m, r, both.first) || sameTurns(m, r, both.second)) << "sample " << i;
      double const best = std::min(travel(current, nearestTurns(m, both.first, current)),
                                   travel(current, nearestTurns(m, both.second, current)));
      ASSERT_LE(travel(current, r), best + 1e-9) << "sample " << i;
      ++checked;
    }
    EXPECT_GT(checked, 1500);
  }
}

struct Wanted {
  int type;
  std::function<bool(double value, double current)> holds;
};

TEST(MachineConfigurationPreferenceProperty, ABCByPreferenceHonoursThePreferenceWheneverThePreferredSolutionIsInRange) {
  std::vector<Wanted> const types = {
      {M::PREFER_POSITIVE, [](double v, double) { return v >= 0; }},
      {M::PREFER_NEGATIVE, [](double v, double) { return v <= 0; }},
      // Moves within the dead band of 1e-5 count as none.
      {M::PREFER_INCREASING, [](double v, double c) { return v - c >= -1e-5; }},
      {M::PREFER_DECREASING, [](double v, double c) { return v - c <= 1e-5; }},
  };
  for (Machine const& machine : machines()) {
    SCOPED_TRACE(machine.name);
    MachineConfiguration const& m = machine.config;
    std::mt19937_64 random(7331);
    int honoured = 0;
    for (int i = 0; i < 500; ++i) {
      Vector const abc = randomABC(m, random);
      Vector const current = randomCurrent(m, random);
      Matrix const orientation = orientationOf(m, abc);
      Vector const t = orientation.getForward();
      if (Vector::dot(t, m.getSpindleAxis().getNormalized()) > 0.9999) continue;
      VectorPair const both = m.getABCByDirectionBoth(t);
      for (Axis const* axis : rotaryAxes(m)) {
        int const c = axis->getCoordinate();
        double const from = at(current, c);
        for (Wanted const& w : types) {
          auto const wanted = [&](double v) { return w.holds(v, from); };
          Vector const r = m.getABCByPreference(orientation, current, c, w.type, 0);
          ASSERT_GE(Vector::dot(directionOf(m, r), t), 1 - 1e-9) << "sample " << i << ", type " << w.type;
          if (!reachable(m, both.first, c, wanted) && !reachable(m, both.second, c, wanted)) continue;
          ASSERT_TRUE(wanted(at(r, c))) << "sample " << i << ", axis " << c << ", type " << w.type << ": "
                                        << at(r, c) << " from " << from;
          ++honoured;
        }
      }
    }
    EXPECT_GT(honoured, 1000);
  }
}

TEST(MachineConfigurationPreferenceProperty, ABCByPreferenceHonoursTheAxisPreferenceWheneverThePreferredSolutionIsInRange) {
  for (Machine const& base : machines()) {
    SCOPED_TRACE(base.name);
    for (int preference : {-1, 1}) {
      for (int slot = 0; slot < 2; ++slot) {
        MachineConfiguration m = base.config;
        Axis& axis = slot == 0 ? m.getAxisU() : m.getAxisV();
        axis.setPreference(preference);
        int const c = axis.getCoordinate();
        auto const wanted = [&](double v) { return v * preference >= -0.0001; };
        std::mt19937_64 random(4242 + slot);
        int honoured = 0;
        for (int i = 0; i < 500; ++i) {
          Vector const abc = randomABC(m, random);
          Vector const current = randomCurrent(m, random);
          Matrix const orientation = orientationOf(m, abc);
          Vector const t = orientation.getForward();
          if (Vector::dot(t, m.getSpindleAxis().getNormalized()) > 0.9999) continue;
          VectorPair const both = m.getABCByDirectionBoth(t);
          for (int controlling : {c, static_cast<int>(M::CONTROLLING_AXIS_ABC)}) {
            Vector const r = m.getABCByPreference(orientation, current, controlling, M::PREFER_PREFERENCE, 0);
            ASSERT_GE(Vector::dot(directionOf(m, r), t), 1 - 1e-9) << "sample " << i;
            if (!reachable(m, both.first, c, wanted) && !reachable(m, both.second, c, wanted)) continue;
            ASSERT_TRUE(wanted(at(r, c))) << "sample " << i << ", preference " << preference << ", controlling "
                                          << controlling << ": " << at(r, c);
            ++honoured;
          }
        }
        EXPECT_GT(honoured, 500);
      }
    }
  }
}

}  // namespace
