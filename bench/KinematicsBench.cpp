// Forward and inverse kinematics of mtkit side by side with Orocos KDL on
// the same 5-axis chains, built from the example machines, in one run.
//
// Where mtkit exploits structure the peer is given the same advantage as far
// as its API allows, and those are the pairs to read (argument = machine):
//
// Forward kinematics: the machine set with moveTo() and the whole
// AxisValues, as the solver stream does, then headAttachFrame(); KDL's
// ChainFkSolverPos_recursive on the same poses. Before timing, every sampled
// pose is checked to give the same whole frame (rotation and origin).
//   BM_Fk_Mtkit_FirstAxis / BM_Fk_Kdl_FirstAxis     the first head-chain axis moves, so
//                                                   the whole chain is recomputed by both
//   BM_Fk_Mtkit_LastAxis  / BM_Fk_KdlPrefix_LastAxis  only the last head-chain axis moves;
//                                                   mtkit recomputes that subtree, KDL keeps
//                                                   the frame of the chain before it and
//                                                   recomputes the rest
//   BM_Fk_Mtkit_EachAxisInTurn / BM_Fk_Kdl_EachAxisInTurn  each head-chain axis in turn
//
// Tool-tip solve: the tip is an affine function of the linear axes at a
// rotary pose, so one Newton step with the Jacobian is exact.
//   BM_Ik_Mtkit_CachedPose / BM_Ik_KdlJacobian_CachedPose  the inverse kept from a
//                                                   solve at this rotary pose: one 3x3 product
//   BM_Ik_Mtkit_NewPose    / BM_Ik_KdlJacobian_NewPose     every solve at another rotary
//                                                   pose: forward kinematics, Jacobian,
//                                                   3x3 inverse, one step
//   BM_Ik_KdlLma_3Joint, BM_Ik_KdlLma_5Joint        KDL's iterative LMA solver from the
//                                                   other target's solution, for reference
//                                                   only: it solves from scratch (and with
//                                                   5 joints, for the orientation too)
// Scaling (argument = number of parts in one chain), through moveTo():
//   BM_Depth_Mtkit_BaseAxis / BM_Depth_Kdl          whole chain recomputed by both
//   BM_Depth_Mtkit_LeafAxis                         only the leaf's subtree
//
// KDL has no units; each chain is built from mtkit's own definitions: a
// segment per part, its joint the part's axis and its tip the part's attach
// frame, with rotary joints in radians. The table side is reversed (inverse
// frames, joint directions turned around), so that KDL's chain ends at the head's
// attach frame in table coordinates, which is where mtkit's solver works.

#include <benchmark/benchmark.h>

#include <Eigen/Core>
#include <Eigen/LU>
#include <kdl/chain.hpp>
#include <kdl/chainfksolverpos_recursive.hpp>
#include <kdl/chainiksolverpos_lma.hpp>
#include <kdl/chainjnttojacsolver.hpp>
#include <kdl/frames.hpp>
#include <kdl/jacobian.hpp>
#include <kdl/jntarray.hpp>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "mtkit.h"

namespace {

constexpr double kRadiansPerDegree = 0.017453292519943295;
// Both sides compute the same chain of products in a different order; the
// coordinates are up to a few thousand millimetres.
constexpr double kAgreement = 1e-9;

using machine::Machine;
using machine::MachineSolver;
using machine::Part;

KDL::Frame toKdl(Orvo::Frame const& f) {
  Orvo::Vector3D const x = f.xAxis();
  Orvo::Vector3D const y = f.yAxis();
  Orvo::Vector3D const z = f.zAxis();
  return KDL::Frame(KDL::Rotation(x.x, y.x, z.x, x.y, y.y, z.y, x.z, y.z, z.z),
                    KDL::Vector(f.origin().x, f.origin().y, f.origin().z));
}

/// The largest difference between the two frames' origins and axes.
double frameDeviation(Orvo::Frame const& a, KDL::Frame const& b) {
  Orvo::Vector3D const axes[3] = {a.xAxis(), a.yAxis(), a.zAxis()};
  KDL::Vector const columns[3] = {b.M.UnitX(), b.M.UnitY(), b.M.UnitZ()};
  double worst = 0.0;
  for (int c = 0; c < 3; ++c)
    worst = std::max({worst, std::fabs(axes[c].x - columns[c].x()), std::fabs(axes[c].y - columns[c].y()),
                      std::fabs(axes[c].z - columns[c].z())});
  Orvo::Point3D const o = a.origin();
  return std::max({worst, std::fabs(o.x - b.p.x()), std::fabs(o.y - b.p.y()), std::fabs(o.z - b.p.z())});
}

/// Where the KDL joint of a part gets its value from: the index in the
/// mtkit ordering, and the factor from mtkit's unit to KDL's.
struct JointSource {
  int orderingIndex;
  double unit;
};

struct KdlChain {
  KDL::Chain chain;
  std::vector<JointSource> joints;

  KDL::JntArray toJoints(Orvo::AxisValues const& values) const {
    KDL::JntArray q(chain.getNrOfJoints());
    for (std::size_t i = 0; i < joints.size(); ++i)
      q(static_cast<unsigned>(i)) = values.value(joints[i].orderingIndex).value() * joints[i].unit;
    return q;
  }
  /// The KDL joint of an ordering index, or -1.
  int jointOf(int orderingIndex) const {
    for (std::size_t i = 0; i < joints.size(); ++i)
      if (joints[i].orderingIndex == orderingIndex) return static_cast<int>(i);
    return -1;
  }
};

int orderingIndex(Machine const& m, Part const& part) {
  for (int i = 0; i < m.numOrderedParts(); ++i)
    if (m.orderedPart(i) == &part) return i;
  return -1;
}

/// The joint of a part's axis, reversed on the table side by turning its
/// direction around (not by KDL's joint scale, which its Jacobian ignores).
KDL::Joint jointOf(Part const& part, bool reversed) {
  if (!part.axis()) return KDL::Joint(KDL::Joint::None);
  machine::AxisDefinition const* const def = part.axis()->definition();
  Orvo::Vector3D const d = reversed ? -def->direction() : def->direction();
  KDL::Vector const direction(d.x, d.y, d.z);
  if (def->axisType() == machine::AxisType::LINEAR)
    return KDL::Joint(part.definition()->identifier().id(), KDL::Vector(0, 0, 0), direction, KDL::Joint::TransAxis,
                      1.0, -def->valueAsModelled().value());
  auto const* rotary = dynamic_cast<machine::RotaryAxisDefinition const*>(def);
  Orvo::Point3D const p = rotary->point();
  return KDL::Joint(part.definition()->identifier().id(), KDL::Vector(p.x, p.y, p.z), direction, KDL::Joint::RotAxis,
                    1.0, -def->valueAsModelled().value() * kRadiansPerDegree);
}

double unitOf(Part const& part) {
  return part.axis()->axisType() == machine::AxisType::LINEAR ? 1.0 : kRadiansPerDegree;
}

std::vector<Part const*> chainFromBase(Part const* tip) {
  std::vector<Part const*> parts;
  Part::visitChainToBase(tip, [&](Part const& p) { parts.push_back(&p); });
  std::reverse(parts.begin(), parts.end());
  return parts;
}

/// `frozen` axes become fixed segments at their present position.
void appendHeadSide(KdlChain& out, Machine const& m, std::vector<Part const*> const& parts,
                    std::vector<bool> const& frozenByIndex) {
  for (Part const* part : parts) {
    KDL::Frame const tip = toKdl(part->definition()->attachFrame());
    int const index = part->axis() ? orderingIndex(m, *part) : -1;
    if (index >= 0 && frozenByIndex[static_cast<std::size_t>(index)]) {
      out.chain.addSegment(KDL::Segment(KDL::Joint(KDL::Joint::None),
                                        toKdl(Orvo::Frame(Orvo::IdentityTag{}).transformedBy(part->axis()->transformation())) * tip));
      continue;
    }
    out.chain.addSegment(KDL::Segment(jointOf(*part, false), tip));
    if (part->axis()) out.joints.push_back({index, unitOf(*part)});
  }
}

/// From the table's attach frame down to the machine base.
void appendTableSide(KdlChain& out, Machine const& m, std::vector<Part const*> const& fromBase,
                     std::vector<bool> const& frozenByIndex) {
  Part const* const table = fromBase.back();
  out.chain.addSegment(KDL::Segment(KDL::Joint(KDL::Joint::None), toKdl(table->definition()->attachFrame()).Inverse()));
  for (auto it = fromBase.rbegin(); it != fromBase.rend(); ++it) {
    Part const* part = *it;
    Part const* parent = part->parent();
    KDL::Frame const tip =
        parent ? toKdl(parent->definition()->attachFrame()).Inverse() : KDL::Frame::Identity();
    int const index = part->axis() ? orderingIndex(m, *part) : -1;
    if (index >= 0 && frozenByIndex[static_cast<std::size_t>(index)]) {
      KDL::Frame const motion = toKdl(Orvo::Frame(Orvo::IdentityTag{}).transformedBy(part->axis()->transformation()));
      out.chain.addSegment(KDL::Segment(KDL::Joint(KDL::Joint::None), motion.Inverse() * tip));
      continue;
    }
    out.chain.addSegment(KDL::Segment(jointOf(*part, true), tip));
    if (part->axis()) out.joints.push_back({index, unitOf(*part)});
  }
}

std::vector<bool> noneFrozen(Machine const& m) { return std::vector<bool>(static_cast<std::size_t>(m.numOrderedParts()), false); }

KdlChain headChain(Machine const& m) {
  KdlChain out;
  appendHeadSide(out, m, chainFromBase(m.headPart()), noneFrozen(m));
  return out;
}

/// The head chain split before the part of its last axis: `prefix` ends
/// where that part attaches, `suffix` runs from there to the head.
void splitHeadChain(Machine const& m, KdlChain& prefix, KdlChain& suffix) {
  std::vector<Part const*> const parts = chainFromBase(m.headPart());
  std::size_t last = 0;
  for (std::size_t i = 0; i < parts.size(); ++i)
    if (parts[i]->axis()) last = i;
  appendHeadSide(prefix, m, std::vector<Part const*>(parts.begin(), parts.begin() + static_cast<long>(last)), noneFrozen(m));
  appendHeadSide(suffix, m, std::vector<Part const*>(parts.begin() + static_cast<long>(last), parts.end()), noneFrozen(m));
}

/// Table attach frame to head attach frame; rotaries frozen when asked.
KdlChain tableToHeadChain(Machine const& m, bool freezeRotaries) {
  std::vector<bool> frozen = noneFrozen(m);
  if (freezeRotaries)
    for (int i = 0; i < m.numOrderedParts(); ++i)
      frozen[static_cast<std::size_t>(i)] = m.orderedPart(i)->axis()->axisType() == machine::AxisType::ROTARY;
  KdlChain out;
  appendTableSide(out, m, chainFromBase(m.tablePart()), frozen);
  appendHeadSide(out, m, chainFromBase(m.headPart()), frozen);
  return out;
}

struct Example {
  std::string name;
  std::unique_ptr<Machine> machine;
};

std::vector<Example> const& examples() {
  static std::vector<Example> const loaded = [] {
    std::vector<Example> out;
    std::filesystem::path const dir = std::filesystem::path(MTKIT_EXAMPLES_DIR) / "machines";
    std::vector<std::filesystem::path> files;
    if (std::filesystem::is_directory(dir))
      for (auto const& e : std::filesystem::directory_iterator(dir))
        if (e.path().extension() == ".json") files.push_back(e.path());
    std::sort(files.begin(), files.end());
    for (auto const& file : files) {
      std::ifstream in(file);
      auto result = machine::MachineDefinitionReader().read(in);
      if (result.isError()) continue;
      auto const definition = result.getMachineDefinition();
      auto const specification = machine::MachineSpecification::makeDefaultForDefinition(*definition, true);
      if (!specification) continue;
      auto m = std::make_unique<Machine>(*specification);
      if (!m->headPart() || !m->tablePart()) continue;
      m->setAxisOrdering(m->fullOrdering());
      // Five axes, three of them primary linear ones: the 5-axis machines.
      auto const solver = m->makeMachineSolver();
      if (m->numOrderedParts() != 5 || !dynamic_cast<machine::ThreeLinearPlusIkSolver*>(solver.get())) continue;
      out.push_back({file.stem().string(), std::move(m)});
    }
    return out;
  }();
  return loaded;
}

Machine const& exampleMachine(benchmark::State& state) {
  Example const& e = examples().at(static_cast<std::size_t>(state.range(0)));
  state.SetLabel(e.name);
  return *e.machine;
}

/// A pose with every axis a little off its home.
Orvo::AxisValues samplePose(Machine const& m, double rotaryA, double rotaryB) {
  Orvo::AxisValues values(m.numOrderedParts());
  int rotary = 0;
  for (int i = 0; i < m.numOrderedParts(); ++i) {
    if (m.orderedPart(i)->axis()->axisType() == machine::AxisType::LINEAR)
      values.setValue(i, 10.0 * (i + 1));
    else
      values.setValue(i, rotary++ == 0 ? rotaryA : rotaryB);
  }
  return values;
}

// --- Forward kinematics ------------------------------------------------------

enum class Moved { FIRST, LAST, EACH_IN_TURN };

/// A closed round of poses in which each pose differs from the one before
/// it (the last pose before the first included) in one head-chain axis
/// only: the first, the last, or each in turn.
std::vector<Orvo::AxisValues> poseRound(Machine const& m, Moved moved) {
  std::vector<int> headAxes;
  for (Part const* p : chainFromBase(m.headPart()))
    if (p->axis()) headAxes.push_back(orderingIndex(m, *p));
  if (moved == Moved::FIRST) headAxes.resize(1);
  if (moved == Moved::LAST) headAxes.erase(headAxes.begin(), headAxes.end() - 1);
  std::size_t const n = headAxes.size();
  std::size_t const changesPerAxis = 16;
  Orvo::AxisValues const start = samplePose(m, 20, 30);
  // The j-th change of an axis sets it 0.5 (j + 1) off its start; the round
  // opens from the state at its own end, so it closes on itself.
  auto const valueAt = [&](int index, std::size_t j) { return start.value(index).value() + 0.5 * static_cast<double>(j + 1); };
  Orvo::AxisValues pose = start;
  for (int index : headAxes) pose.setValue(index, valueAt(index, changesPerAxis - 1));
  std::vector<Orvo::AxisValues> round;
  for (std::size_t k = 0; k < n * changesPerAxis; ++k) {
    int const index = headAxes[k % n];
    pose.setValue(index, valueAt(index, k / n));
    round.push_back(pose);
  }
  return round;
}

std::vector<KDL::JntArray> toJoints(KdlChain const& chain, std::vector<Orvo::AxisValues> const& poses) {
  std::vector<KDL::JntArray> out;
  for (auto const& pose : poses) out.push_back(chain.toJoints(pose));
  return out;
}

/// Compares mtkit's head attach frame with KDL's on every pose of the
/// round; `kdlFrame` gives KDL's frame for pose k. Skips the benchmark on a
/// disagreement and reports the largest deviation.
template <typename KdlFrameOf>
bool framesAgree(benchmark::State& state, Machine const& source, std::vector<Orvo::AxisValues> const& poses,
                 KdlFrameOf const& kdlFrame) {
  Machine m(machine::CopyTag{}, source);
  double worst = 0.0;
  for (std::size_t k = 0; k < poses.size(); ++k) {
    m.moveTo(poses[k]);
    worst = std::max(worst, frameDeviation(m.headAttachFrame(), kdlFrame(k)));
  }
  state.counters["max_deviation"] = worst;
  if (!(worst <= kAgreement)) {
    state.SkipWithError("KDL and mtkit disagree on a head attach frame");
    return false;
  }
  return true;
}

void fkMtkit(benchmark::State& state, Moved moved) {
  Machine m(machine::CopyTag{}, exampleMachine(state));
  std::vector<Orvo::AxisValues> const poses = poseRound(m, moved);
  m.moveTo(poses.back());
  (void)m.headAttachFrame();
  std::size_t i = 0;
  for (auto _ : state) {
    m.moveTo(poses[i]);
    benchmark::DoNotOptimize(m.headAttachFrame());
    if (++i == poses.size()) i = 0;
  }
}
void BM_Fk_Mtkit_FirstAxis(benchmark::State& state) { fkMtkit(state, Moved::FIRST); }
void BM_Fk_Mtkit_LastAxis(benchmark::State& state) { fkMtkit(state, Moved::LAST); }
void BM_Fk_Mtkit_EachAxisInTurn(benchmark::State& state) { fkMtkit(state, Moved::EACH_IN_TURN); }

/// The whole head chain at every pose: KDL has no cache to exploit.
void fkKdl(benchmark::State& state, Moved moved) {
  Machine const& m = exampleMachine(state);
  std::vector<Orvo::AxisValues> const poses = poseRound(m, moved);
  KdlChain const chain = headChain(m);
  KDL::ChainFkSolverPos_recursive solver(chain.chain);
  std::vector<KDL::JntArray> const joints = toJoints(chain, poses);
  KDL::Frame out;
  if (!framesAgree(state, m, poses, [&](std::size_t k) {
        solver.JntToCart(joints[k], out);
        return out;
      }))
    return;
  std::size_t i = 0;
  for (auto _ : state) {
    solver.JntToCart(joints[i], out);
    benchmark::DoNotOptimize(out);
    if (++i == joints.size()) i = 0;
  }
}
void BM_Fk_Kdl_FirstAxis(benchmark::State& state) { fkKdl(state, Moved::FIRST); }
void BM_Fk_Kdl_EachAxisInTurn(benchmark::State& state) { fkKdl(state, Moved::EACH_IN_TURN); }

/// Only the last axis moves: KDL keeps the frame of the chain before that
/// axis's part, as mtkit keeps the transforms above the moved subtree.
void BM_Fk_KdlPrefix_LastAxis(benchmark::State& state) {
  Machine const& m = exampleMachine(state);
  std::vector<Orvo::AxisValues> const poses = poseRound(m, Moved::LAST);
  KdlChain prefix;
  KdlChain suffix;
  splitHeadChain(m, prefix, suffix);
  KDL::ChainFkSolverPos_recursive prefixSolver(prefix.chain);
  KDL::ChainFkSolverPos_recursive suffixSolver(suffix.chain);
  KDL::Frame kept;
  prefixSolver.JntToCart(prefix.toJoints(poses.front()), kept);
  std::vector<KDL::JntArray> const joints = toJoints(suffix, poses);
  KDL::Frame local;
  KDL::Frame out;
  if (!framesAgree(state, m, poses, [&](std::size_t k) {
        suffixSolver.JntToCart(joints[k], local);
        return kept * local;
      }))
    return;
  std::size_t i = 0;
  for (auto _ : state) {
    suffixSolver.JntToCart(joints[i], local);
    out = kept * local;
    benchmark::DoNotOptimize(out);
    if (++i == joints.size()) i = 0;
  }
}

// --- Inverse kinematics ------------------------------------------------------

struct IkCase {
  std::unique_ptr<MachineSolver> solver;
  Orvo::Point3D targets[2];
  Orvo::AxisValues solutions[2];
  /// Two rotary poses, the second 1 degree further on every rotary axis,
  /// with the linear axes at the two solutions.
  Orvo::AxisValues poses[2];
};

IkCase makeIkCase(Machine const& source, double rotaryA, double rotaryB) {
  Machine m(machine::CopyTag{}, source);
  m.moveTo(samplePose(m, rotaryA, rotaryB));
  IkCase c{m.makeMachineSolver(), {}, {}, {}};
  Orvo::Point3D const tip = c.solver->toolTipPoint();
  c.targets[0] = tip + Orvo::Vector3D(12.5, -7.0, 3.0);
  c.targets[1] = tip + Orvo::Vector3D(-4.0, 9.5, -15.0);
  for (int i = 0; i < 2; ++i) {
    c.solver->moveToolTipTo(c.targets[i]);
    c.solutions[i] = c.solver->axisValues();
    c.poses[i] = c.solutions[i];
  }
  for (int j = 3; j < c.poses[1].size(); ++j) c.poses[1].setValue(j, c.poses[1].value(j).value() + 1.0);
  return c;
}

/// Uses a solve's result as a caller does: whether there is one, and the
/// distance left. (Handing the whole optional to DoNotOptimize would make the
/// compiler store its two halves and read them back as one, which stalls and
/// is not what any caller does.)
void keep(std::optional<MachineSolver::Distance> const& result) {
  benchmark::DoNotOptimize(result.has_value());
  benchmark::DoNotOptimize(result ? result->get() : -1.0);
}

void BM_Ik_Mtkit_CachedPose(benchmark::State& state) {
  IkCase c = makeIkCase(exampleMachine(state), 25, 40);
  int i = 0;
  for (auto _ : state) {
    keep(c.solver->moveToolTipTo(c.targets[i]));
    i ^= 1;
  }
}

void BM_Ik_Mtkit_NewPose(benchmark::State& state) {
  IkCase c = makeIkCase(exampleMachine(state), 25, 40);
  int i = 0;
  for (auto _ : state) {
    c.solver->moveTo(c.poses[i]);
    keep(c.solver->moveToolTipTo(c.targets[i]));
    i ^= 1;
  }
}

/// One exact Newton step for the linear joints of a table-to-head chain
/// with all five joints: the rotary joints are locked in the Jacobian, whose
/// rows for the position then make the 3x3 matrix of the affine map.
struct KdlNewtonStep {
  KdlChain chain;
  KDL::ChainFkSolverPos_recursive fk;
  KDL::ChainJntToJacSolver jacobianSolver;
  KDL::Jacobian jacobian;
  /// The KDL joint of each solved axis, and its column in the Jacobian:
  /// the unlocked joints' columns come first, in chain order.
  unsigned linear[3];
  unsigned column[3];

  explicit KdlNewtonStep(Machine const& m)
      : chain(tableToHeadChain(m, false)), fk(chain.chain), jacobianSolver(chain.chain), jacobian(chain.chain.getNrOfJoints()) {
    std::vector<bool> locked(chain.chain.getNrOfJoints(), true);
    for (int a = 0; a < 3; ++a) {
      linear[a] = static_cast<unsigned>(chain.jointOf(a));
      locked[linear[a]] = false;
    }
    for (int a = 0; a < 3; ++a)
      column[a] = static_cast<unsigned>(std::count_if(std::begin(linear), std::end(linear),
                                                      [&](unsigned j) { return j < linear[a]; }));
    jacobianSolver.setLockedJoints(locked);
  }

  /// The inverse of the position rows of the Jacobian at `q`, and the tip there.
  void linearise(KDL::JntArray const& q, Eigen::Matrix3d& inverse, KDL::Vector& tip) {
    KDL::Frame frame;
    fk.JntToCart(q, frame);
    jacobianSolver.JntToJac(q, jacobian);
    Eigen::Matrix3d a;
    for (int k = 0; k < 3; ++k) a.col(k) = jacobian.data.block<3, 1>(0, column[k]);
    inverse = a.inverse();
    tip = frame.p;
  }

  /// The linear joints that take the tip at `tip` (joints `q`) to `target`.
  void step(KDL::JntArray const& q, Eigen::Matrix3d const& inverse, KDL::Vector const& tip,
            Orvo::Point3D const& target, KDL::JntArray& out) const {
    Eigen::Vector3d const d(target.x - tip.x(), target.y - tip.y(), target.z - tip.z());
    Eigen::Vector3d const delta = inverse * d;
    for (int k = 0; k < 3; ++k) out(linear[k]) = q(linear[k]) + delta[k];
  }

  /// Where the tip of `q` misses `target`.
  double miss(KDL::JntArray const& q, Orvo::Point3D const& target) {
    KDL::Frame frame;
    fk.JntToCart(q, frame);
    return (frame.p - KDL::Vector(target.x, target.y, target.z)).Norm();
  }
};

/// The inverse kept from one linearisation at the rotary pose, as mtkit's
/// cache keeps it: each solve is one 3x3 product.
void BM_Ik_KdlJacobian_CachedPose(benchmark::State& state) {
  IkCase c = makeIkCase(exampleMachine(state), 25, 40);
  KdlNewtonStep newton(*c.solver);
  KDL::JntArray const q0 = newton.chain.toJoints(c.solutions[1]);
  Eigen::Matrix3d inverse;
  KDL::Vector tip;
  newton.linearise(q0, inverse, tip);
  KDL::JntArray out = q0;
  int i = 0;
  for (auto _ : state) {
    newton.step(q0, inverse, tip, c.targets[i], out);
    benchmark::DoNotOptimize(out.data.data());
    i ^= 1;
  }
  // The last step went to targets[i ^ 1]; it must be exact.
  double const miss = newton.miss(out, c.targets[i ^ 1]);
  state.counters["miss_mm"] = miss;
  if (!(miss <= kAgreement)) state.SkipWithError("the Newton step misses the target");
}

/// A new rotary pose at every solve: forward kinematics, the Jacobian, its
/// inverse and one step, against mtkit's cache rebuild and solve.
void BM_Ik_KdlJacobian_NewPose(benchmark::State& state) {
  IkCase c = makeIkCase(exampleMachine(state), 25, 40);
  KdlNewtonStep newton(*c.solver);
  KDL::JntArray const poses[2] = {newton.chain.toJoints(c.poses[0]), newton.chain.toJoints(c.poses[1])};
  KDL::JntArray out = poses[0];
  Eigen::Matrix3d inverse;
  KDL::Vector tip;
  int i = 0;
  for (auto _ : state) {
    newton.linearise(poses[i], inverse, tip);
    out = poses[i];
    newton.step(poses[i], inverse, tip, c.targets[i], out);
    benchmark::DoNotOptimize(out.data.data());
    i ^= 1;
  }
  double const miss = newton.miss(out, c.targets[i ^ 1]);
  state.counters["miss_mm"] = miss;
  if (!(miss <= kAgreement)) state.SkipWithError("the Newton step misses the target");
}

void ikKdlLma(benchmark::State& state, bool freezeRotaries) {
  IkCase c = makeIkCase(exampleMachine(state), 25, 40);
  // The chain at the solved pose of the first target, so that its frozen
  // rotaries (if any) stand as the solver's did.
  c.solver->moveTo(c.solutions[0]);
  KdlChain const chain = tableToHeadChain(*c.solver, freezeRotaries);
  KDL::ChainFkSolverPos_recursive fk(chain.chain);
  // Full pose with 5 joints; position only with the 3 linear joints.
  Eigen::Matrix<double, 6, 1> weights;
  if (freezeRotaries)
    weights << 1, 1, 1, 0, 0, 0;
  else
    weights << 1, 1, 1, 0.01, 0.01, 0.01;
  KDL::ChainIkSolverPos_LMA ik(chain.chain, weights, 1e-10, 500, 1e-15);
  KDL::Frame goals[2];
  KDL::JntArray starts[2] = {chain.toJoints(c.solutions[1]), chain.toJoints(c.solutions[0])};
  for (int i = 0; i < 2; ++i) fk.JntToCart(chain.toJoints(c.solutions[i]), goals[i]);
  // KDL's chain ends where mtkit's tool tip is, whole frame included.
  c.solver->moveTo(c.solutions[0]);
  double const deviation = frameDeviation(c.solver->headAttachFrameInTableCs(), goals[0]);
  if (!(deviation <= kAgreement)) return state.SkipWithError("KDL chain disagrees with mtkit");
  KDL::JntArray out(chain.chain.getNrOfJoints());
  int i = 0;
  int failures = 0;
  for (auto _ : state) {
    if (ik.CartToJnt(starts[i], goals[i], out) < 0) ++failures;
    benchmark::DoNotOptimize(out);
    i ^= 1;
  }
  KDL::Frame reached;
  fk.JntToCart(out, reached);
  state.counters["miss_mm"] = (reached.p - goals[i ^ 1].p).Norm();
  state.counters["failures"] = failures;
}
void BM_Ik_KdlLma_5Joint(benchmark::State& state) { ikKdlLma(state, false); }
void BM_Ik_KdlLma_3Joint(benchmark::State& state) { ikKdlLma(state, true); }

// --- Scaling with depth --------------------------------------------------------

/// One chain of `depth` parts: rotary parts about alternating axes, each
/// attaching its child 50 further out, ending in a head.
std::unique_ptr<Machine> deepChain(int depth) {
  std::unique_ptr<machine::PartDefinition> tip =
      std::make_unique<machine::PartDefinition>(Orvo::MachinePartId("head"), machine::PartType::HEAD);
  for (int i = depth - 1; i >= 1; --i) {
    Orvo::Vector3D const axis = i % 2 ? Orvo::Vector3D(0, 0, 1) : Orvo::Vector3D(0, 1, 0);
    auto def = std::make_unique<machine::InfiniteRotaryAxisDefinition>(
        machine::ControlType::DRIVEN, 0.0, 0.0, Orvo::AxisName("A" + std::to_string(i)), std::nullopt,
        Orvo::Point3D(0, 0, 0), axis);
    auto part = std::make_unique<machine::PartDefinition>(
        Orvo::MachinePartId("p" + std::to_string(1000 + i)), machine::PartType::ROTARY,
        Orvo::Frame::make(Orvo::Point3D(0, 0, 50), Orvo::Vector3D(1, 0, 0), Orvo::Vector3D(0, 0, 1)), std::nullopt,
        std::nullopt, std::move(def));
    part->addChild(std::move(tip));
    tip = std::move(part);
  }
  std::vector<std::unique_ptr<machine::PartDefinition>> base;
  base.push_back(std::move(tip));
  base.push_back(std::make_unique<machine::PartDefinition>(Orvo::MachinePartId("table"), machine::PartType::TABLE));
  auto m = std::make_unique<Machine>(machine::KinematicsDefinition(std::move(base), machine::MTKIOConverter()));
  m->setAxisOrdering(m->fullOrdering());
  return m;
}

/// Two poses that differ in the base axis (or the leaf axis) only.
std::vector<Orvo::AxisValues> depthPoses(Machine const& m, bool leaf) {
  std::vector<Part const*> const chain = chainFromBase(m.headPart());
  int const moved = orderingIndex(m, *(leaf ? chain[chain.size() - 2] : chain.front()));
  std::vector<Orvo::AxisValues> poses(2, Orvo::AxisValues(m.numOrderedParts()));
  for (int i = 0; i < m.numOrderedParts(); ++i)
    for (auto& pose : poses) pose.setValue(i, 5.0 + i);
  poses[0].setValue(moved, 1.0);
  poses[1].setValue(moved, 2.0);
  return poses;
}

void depthMtkit(benchmark::State& state, bool leaf) {
  int const depth = static_cast<int>(state.range(0));
  auto const m = deepChain(depth);
  std::vector<Orvo::AxisValues> const poses = depthPoses(*m, leaf);
  std::size_t i = 0;
  for (auto _ : state) {
    m->moveTo(poses[i]);
    benchmark::DoNotOptimize(m->headAttachFrame());
    i ^= 1;
  }
  state.counters["parts"] = depth;
}
void BM_Depth_Mtkit_BaseAxis(benchmark::State& state) { depthMtkit(state, false); }
void BM_Depth_Mtkit_LeafAxis(benchmark::State& state) { depthMtkit(state, true); }

void BM_Depth_Kdl(benchmark::State& state) {
  int const depth = static_cast<int>(state.range(0));
  auto const m = deepChain(depth);
  std::vector<Orvo::AxisValues> const poses = depthPoses(*m, false);
  KdlChain const chain = headChain(*m);
  KDL::ChainFkSolverPos_recursive solver(chain.chain);
  std::vector<KDL::JntArray> const joints = toJoints(chain, poses);
  KDL::Frame out;
  if (!framesAgree(state, *m, poses, [&](std::size_t k) {
        solver.JntToCart(joints[k], out);
        return out;
      }))
    return;
  std::size_t i = 0;
  for (auto _ : state) {
    solver.JntToCart(joints[i], out);
    benchmark::DoNotOptimize(out);
    i ^= 1;
  }
  state.counters["parts"] = depth;
}

void machineArgs(benchmark::internal::Benchmark* b) {
  for (std::size_t i = 0; i < examples().size(); ++i) b->Arg(static_cast<int>(i));
}

void depthArgs(benchmark::internal::Benchmark* b) {
  for (int d : {2, 4, 8, 16, 32, 64}) b->Arg(d);
}

}  // namespace

BENCHMARK(BM_Fk_Mtkit_FirstAxis)->Apply(machineArgs);
BENCHMARK(BM_Fk_Kdl_FirstAxis)->Apply(machineArgs);
BENCHMARK(BM_Fk_Mtkit_LastAxis)->Apply(machineArgs);
BENCHMARK(BM_Fk_KdlPrefix_LastAxis)->Apply(machineArgs);
BENCHMARK(BM_Fk_Mtkit_EachAxisInTurn)->Apply(machineArgs);
BENCHMARK(BM_Fk_Kdl_EachAxisInTurn)->Apply(machineArgs);
BENCHMARK(BM_Ik_Mtkit_CachedPose)->Apply(machineArgs);
BENCHMARK(BM_Ik_KdlJacobian_CachedPose)->Apply(machineArgs);
BENCHMARK(BM_Ik_Mtkit_NewPose)->Apply(machineArgs);
BENCHMARK(BM_Ik_KdlJacobian_NewPose)->Apply(machineArgs);
BENCHMARK(BM_Ik_KdlLma_3Joint)->Apply(machineArgs);
BENCHMARK(BM_Ik_KdlLma_5Joint)->Apply(machineArgs);
BENCHMARK(BM_Depth_Mtkit_BaseAxis)->Apply(depthArgs);
BENCHMARK(BM_Depth_Mtkit_LeafAxis)->Apply(depthArgs);
BENCHMARK(BM_Depth_Kdl)->Apply(depthArgs);

BENCHMARK_MAIN();
