// The script-facing orientation solving and optimised positions of mtkit side
// by side with Orocos KDL on the same 5-axis machine, in one run.
//
// The machine: a head B about Y (pivot 150 above the gauge point) on a head
// C about Z (pivot 90 above B's and 40 aside), spindle along Z, tool length
// 100, TCP off on both so that positions are compensated.
//
//   BM_Direction_Mtkit / BM_Direction_KdlLma
//       The rotary values for a tool direction. mtkit: getABCByDirection,
//       closed form (both solutions, the one nearer zero on B returned).
//       KDL: ChainIkSolverPos_LMA on the chain of the two rotary joints,
//       rotation weighted only, to the frame of one of the solutions, from a
//       fixed start. This is an algorithm comparison: a general iterative
//       solver against a closed form for two axes; KDL has no closed-form
//       solver for it.
//   BM_Position_Mtkit / BM_Position_KdlFk
//       Where the linear axes go for a tip point at given rotary values.
//       mtkit: getOptimizedPosition forward. KDL: ChainFkSolverPos_recursive
//       on the chain of the two rotary joints with the pivots and the tool,
//       whose end point is the tip relative to the linear axes: the same
//       work, a point through the chain.
//
// Before timing, every sample is checked: the LMA solution must point the
// tool within 1e-6 along the direction, mtkit's within 1e-9, and the KDL
// end point must agree with mtkit's compensation within 1e-9.

#include <benchmark/benchmark.h>

#include <Eigen/Core>
#include <kdl/chain.hpp>
#include <kdl/chainfksolverpos_recursive.hpp>
#include <kdl/chainiksolverpos_lma.hpp>
#include <kdl/frames.hpp>
#include <kdl/jntarray.hpp>

#include <cmath>
#include <random>
#include <vector>

#include "mtkit.h"

namespace {

using com::vantora::Vector;
using com::vantora::post::Axis;
using com::vantora::post::MachineConfiguration;

constexpr double kPi = 3.141592653589793;
constexpr std::size_t kSamples = 256;

Vector const kBAxis(0, 1, 0);
Vector const kCAxis(0, 0, 1);
Vector const kBOffset(0, 0, 150);
Vector const kCOffset(0, 40, 90);
double const kToolLength = 100;

MachineConfiguration makeMachine() {
  Axis b(false, kBAxis, kBOffset, 1);
  Axis c(false, kCAxis, kCOffset, 2);
  b.setTCPEnabled(false);
  c.setTCPEnabled(false);
  MachineConfiguration m(b, c);
  m.setToolLength(kToolLength);
  return m;
}

KDL::Vector toKdl(Vector const& v) { return KDL::Vector(v.x, v.y, v.z); }

/// C then B, each about its effective axis (head axes turn the tool about
/// the reversed axis), the pivots and the tool as fixed segments: the end
/// point is the tip seen from the linear axes' point, the end rotation takes
/// the spindle axis to the tool direction.
KDL::Chain makeChain(bool withGeometry) {
  KDL::Chain chain;
  KDL::Vector const zero(0, 0, 0);
  chain.addSegment(KDL::Segment(KDL::Joint("C", zero, toKdl(kCAxis.getNegated()), KDL::Joint::RotAxis),
                                KDL::Frame(withGeometry ? -toKdl(kCOffset) : zero)));
  KDL::Vector const tool(0, 0, kToolLength);
  chain.addSegment(KDL::Segment(KDL::Joint("B", zero, toKdl(kBAxis.getNegated()), KDL::Joint::RotAxis),
                                KDL::Frame(withGeometry ? -(toKdl(kBOffset) + tool) : zero)));
  return chain;
}

struct Samples {
  std::vector<Vector> directions;
  std::vector<Vector> abc;     // rotary values (B at y, C at z)
  std::vector<Vector> points;  // tip points
};

Samples const& samples() {
  static Samples const s = [] {
    Samples r;
    MachineConfiguration const m = makeMachine();
    std::mt19937 random(7);
    std::uniform_real_distribution<double> tilt(5 * kPi / 180, 100 * kPi / 180);
    std::uniform_real_distribution<double> turn(-kPi, kPi);
    std::uniform_real_distribution<double> place(-300, 300);
    for (std::size_t i = 0; i < kSamples; ++i) {
      Vector const abc(0, tilt(random), turn(random));
      r.abc.push_back(abc);
      r.directions.push_back(m.getDirection(abc));
      r.points.push_back(Vector(place(random), place(random), place(random)));
    }
    return r;
  }();
  return s;
}

KDL::JntArray joints(Vector const& abc) {
  KDL::JntArray q(2);
  q(0) = abc.z;
  q(1) = abc.y;
  return q;
}

void BM_Direction_Mtkit(benchmark::State& state) {
  MachineConfiguration const m = makeMachine();
  Samples const& s = samples();
  double worst = 0;
  for (Vector const& d : s.directions) worst = std::max(worst, Vector::getDistance(m.getDirection(m.getABCByDirection(d)), d));
  state.counters["max_deviation"] = worst;
  if (!(worst <= 1e-9)) return state.SkipWithError("mtkit misses a direction");
  std::size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(m.getABCByDirection(s.directions[i]));
    i = (i + 1) % kSamples;
  }
  state.SetLabel("closed form, both solutions");
}

void BM_Direction_KdlLma(benchmark::State& state) {
  Samples const& s = samples();
  KDL::Chain const chain = makeChain(false);
  KDL::ChainFkSolverPos_recursive fk(chain);
  Eigen::Matrix<double, 6, 1> weights;
  weights << 0, 0, 0, 1, 1, 1;
  KDL::ChainIkSolverPos_LMA ik(chain, weights, 1e-12, 500, 1e-15);
  std::vector<KDL::Frame> goals(kSamples);
  for (std::size_t i = 0; i < kSamples; ++i) fk.JntToCart(joints(s.abc[i]), goals[i]);
  KDL::JntArray start(2);
  start(0) = 0.3;
  start(1) = 0.3;
  KDL::JntArray out(2);
  double worst = 0;
  int failures = 0;
  for (std::size_t i = 0; i < kSamples; ++i) {
    if (ik.CartToJnt(start, goals[i], out) < 0) ++failures;
    KDL::Frame reached;
    fk.JntToCart(out, reached);
    KDL::Vector const z = reached.M.UnitZ();
    worst = std::max(worst, Vector::getDistance(Vector(z.x(), z.y(), z.z()), s.directions[i]));
  }
  state.counters["max_deviation"] = worst;
  state.counters["failures"] = failures;
  if (!(worst <= 1e-6)) return state.SkipWithError("LMA misses a direction");
  std::size_t i = 0;
  for (auto _ : state) {
    ik.CartToJnt(start, goals[i], out);
    benchmark::DoNotOptimize(out);
    i = (i + 1) % kSamples;
  }
  state.SetLabel("iterative LMA, one solution: an algorithm comparison");
}

void BM_Position_Mtkit(benchmark::State& state) {
  MachineConfiguration const m = makeMachine();
  Samples const& s = samples();
  std::size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(m.getOptimizedPosition(s.points[i], s.abc[i], 0, 1, false));
    i = (i + 1) % kSamples;
  }
}

void BM_Position_KdlFk(benchmark::State& state) {
  MachineConfiguration const m = makeMachine();
  Samples const& s = samples();
  KDL::Chain const chain = makeChain(true);
  KDL::ChainFkSolverPos_recursive fk(chain);
  std::vector<KDL::JntArray> q;
  for (Vector const& abc : s.abc) q.push_back(joints(abc));
  // The linear axes stand at the tip point minus the chain's end point.
  double worst = 0;
  KDL::Frame end;
  for (std::size_t i = 0; i < kSamples; ++i) {
    fk.JntToCart(q[i], end);
    KDL::Vector const linear = toKdl(s.points[i]) - end.p;
    Vector const mine = m.getOptimizedPosition(s.points[i], s.abc[i], 0, 1, false);
    worst = std::max(worst, Vector::getDistance(mine, Vector(linear.x(), linear.y(), linear.z())));
  }
  state.counters["max_deviation"] = worst;
  if (!(worst <= 1e-9)) return state.SkipWithError("KDL chain disagrees with mtkit");
  std::size_t i = 0;
  for (auto _ : state) {
    fk.JntToCart(q[i], end);
    benchmark::DoNotOptimize(toKdl(s.points[i]) - end.p);
    i = (i + 1) % kSamples;
  }
}

}  // namespace

BENCHMARK(BM_Direction_Mtkit);
BENCHMARK(BM_Direction_KdlLma);
BENCHMARK(BM_Position_Mtkit);
BENCHMARK(BM_Position_KdlFk);

BENCHMARK_MAIN();
