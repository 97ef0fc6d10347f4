// Forward and inverse kinematics of mtkit side by side with Orocos KDL on
// the same 5-axis chains, built from the example machines, in one run.
//
// Pairs to read together (per machine, argument = machine index):
//   BM_Fk_Mtkit_MoveBaseAxis    / BM_Fk_Kdl           whole head chain changes
//   BM_Fk_Mtkit_MoveLastAxis    / BM_Fk_Kdl           only the last axis of the chain changes
//   BM_Fk_Mtkit_MoveEachAxisInTurn / BM_Fk_Kdl        each axis of the head chain in turn
//   BM_Ik_Mtkit_CachedPose      / BM_Ik_KdlLma_5Joint / BM_Ik_KdlLma_3Joint
//   BM_Ik_Mtkit_NewPose         / BM_Ik_KdlLma_5Joint
// Scaling (argument = number of parts in one chain):
//   BM_Depth_Mtkit_MoveBaseAxis  grows linearly with depth
//   BM_Depth_Mtkit_MoveLeafAxis  stays flat: only the moved subtree is recomputed
//   BM_Depth_Kdl                 the same chain through KDL, for reference
//
// KDL works in radians and metres-agnostic units; each chain is built from
// mtkit's own definitions: a segment per part, its joint the part's axis and
// its tip the part's attach frame. The table side is reversed (inverse
// frames, joints with scale -1), so that KDL's chain ends at the head's
// attach frame in table coordinates, which is where mtkit's solver works.

#include <benchmark/benchmark.h>

#include <Eigen/Core>
#include <kdl/chain.hpp>
#include <kdl/chainfksolverpos_recursive.hpp>
#include <kdl/chainiksolverpos_lma.hpp>
#include <kdl/frames.hpp>
#include <kdl/jntarray.hpp>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "mtkit.h"

namespace {

constexpr double kRadiansPerDegree = 0.017453292519943295;

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
};

int orderingIndex(Machine const& m, Part const& part) {
  for (int i = 0; i < m.numOrderedParts(); ++i)
    if (m.orderedPart(i) == &part) return i;
  return -1;
}

/// The joint of a part's axis, reversed (scale -1) on the table side.
KDL::Joint jointOf(Part const& part, bool reversed) {
  if (!part.axis()) return KDL::Joint(KDL::Joint::None);
  machine::AxisDefinition const* const def = part.axis()->definition();
  double const scale = reversed ? -1.0 : 1.0;
  Orvo::Vector3D const d = def->direction();
  if (def->axisType() == machine::AxisType::LINEAR) {
    double const offset = -scale * def->valueAsModelled().value();
    return KDL::Joint(part.definition()->identifier().id(), KDL::Vector(0, 0, 0), KDL::Vector(d.x, d.y, d.z),
                      KDL::Joint::TransAxis, scale, offset);
  }
  auto const* rotary = dynamic_cast<machine::RotaryAxisDefinition const*>(def);
  Orvo::Point3D const p = rotary->point();
  double const offset = -scale * def->valueAsModelled().value() * kRadiansPerDegree;
  return KDL::Joint(part.definition()->identifier().id(), KDL::Vector(p.x, p.y, p.z), KDL::Vector(d.x, d.y, d.z),
                    KDL::Joint::RotAxis, scale, offset);
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

KdlChain headChain(Machine const& m) {
  KdlChain out;
  appendHeadSide(out, m, chainFromBase(m.headPart()), std::vector<bool>(static_cast<std::size_t>(m.numOrderedParts()), false));
  return out;
}

/// Table attach frame to head attach frame; rotaries frozen when asked.
KdlChain tableToHeadChain(Machine const& m, bool freezeRotaries) {
  std::vector<bool> frozen(static_cast<std::size_t>(m.numOrderedParts()), false);
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

Machine& exampleMachine(benchmark::State& state) {
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

void fkMtkit(benchmark::State& state, bool baseAxis) {
  Machine m(machine::CopyTag{}, exampleMachine(state));
  m.moveTo(samplePose(m, 20, 30));
  std::vector<Part const*> const chain = chainFromBase(m.headPart());
  Part const* moved = nullptr;
  for (Part const* p : chain)
    if (p->axis() && (!moved || !baseAxis)) moved = p;
  double value = moved->axis()->value().value();
  for (auto _ : state) {
    value = value == 1.0 ? 2.0 : 1.0;
    m.moveAxis(moved, value);
    benchmark::DoNotOptimize(m.headAttachFrame());
  }
}
void BM_Fk_Mtkit_MoveBaseAxis(benchmark::State& state) { fkMtkit(state, true); }
void BM_Fk_Mtkit_MoveLastAxis(benchmark::State& state) { fkMtkit(state, false); }

/// One axis of the head chain per step, each in turn: the mean over where
/// the moved axis stands in the chain.
void BM_Fk_Mtkit_MoveEachAxisInTurn(benchmark::State& state) {
  Machine m(machine::CopyTag{}, exampleMachine(state));
  m.moveTo(samplePose(m, 20, 30));
  std::vector<Part const*> axes;
  for (Part const* p : chainFromBase(m.headPart()))
    if (p->axis()) axes.push_back(p);
  std::vector<double> values(axes.size(), 1.0);
  std::size_t next = 0;
  for (auto _ : state) {
    values[next] = values[next] == 1.0 ? 2.0 : 1.0;
    m.moveAxis(axes[next], values[next]);
    benchmark::DoNotOptimize(m.headAttachFrame());
    if (++next == axes.size()) next = 0;
  }
}

void BM_Fk_Kdl(benchmark::State& state) {
  Machine m(machine::CopyTag{}, exampleMachine(state));
  m.moveTo(samplePose(m, 20, 30));
  KdlChain const chain = headChain(m);
  KDL::ChainFkSolverPos_recursive solver(chain.chain);
  KDL::JntArray q = chain.toJoints(m.axisValues());
  KDL::Frame out;
  double value = 1.0;
  for (auto _ : state) {
    value = value == 1.0 ? 2.0 : 1.0;
    q(0) = value;
    solver.JntToCart(q, out);
    benchmark::DoNotOptimize(out);
  }
  // Same answer as mtkit's, checked once outside the timing.
  m.moveTo(m.axisValues());
  KDL::JntArray const check = chain.toJoints(m.axisValues());
  solver.JntToCart(check, out);
  Orvo::Point3D const o = m.headAttachFrame().origin();
  if ((KDL::Vector(o.x, o.y, o.z) - out.p).Norm() > 1e-9) state.SkipWithError("KDL and mtkit disagree");
}

// --- Inverse kinematics ------------------------------------------------------

struct IkCase {
  std::unique_ptr<MachineSolver> solver;
  Orvo::Point3D targets[2];
  Orvo::AxisValues solutions[2];
};

IkCase makeIkCase(Machine const& source, double rotaryA, double rotaryB) {
  Machine m(machine::CopyTag{}, source);
  m.moveTo(samplePose(m, rotaryA, rotaryB));
  IkCase c{m.makeMachineSolver(), {}, {}};
  Orvo::Point3D const tip = c.solver->toolTipPoint();
  c.targets[0] = tip + Orvo::Vector3D(12.5, -7.0, 3.0);
  c.targets[1] = tip + Orvo::Vector3D(-4.0, 9.5, -15.0);
  for (int i = 0; i < 2; ++i) {
    c.solver->moveToolTipTo(c.targets[i]);
    c.solutions[i] = c.solver->axisValues();
  }
  return c;
}

void BM_Ik_Mtkit_CachedPose(benchmark::State& state) {
  IkCase c = makeIkCase(exampleMachine(state), 25, 40);
  int i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(c.solver->moveToolTipTo(c.targets[i]));
    i ^= 1;
  }
}

void BM_Ik_Mtkit_NewPose(benchmark::State& state) {
  IkCase c = makeIkCase(exampleMachine(state), 25, 40);
  Orvo::AxisValues poses[2] = {c.solutions[0], c.solutions[1]};
  // A second rotary pose, so that every solve finds a different key.
  for (int j = 3; j < poses[1].size(); ++j) poses[1].setValue(j, poses[1].value(j).value() + 1.0);
  int i = 0;
  for (auto _ : state) {
    c.solver->moveTo(poses[i]);
    benchmark::DoNotOptimize(c.solver->moveToolTipTo(c.targets[i]));
    i ^= 1;
  }
}

void ikKdl(benchmark::State& state, bool freezeRotaries) {
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
  // Sanity: KDL's chain ends where mtkit's tool tip is.
  Orvo::Point3D const t = c.targets[0];
  if ((goals[0].p - KDL::Vector(t.x, t.y, t.z)).Norm() > 1e-9) state.SkipWithError("KDL chain disagrees with mtkit");
  KDL::JntArray out(chain.chain.getNrOfJoints());
  int i = 0;
  int failures = 0;
  double worst = 0.0;
  for (auto _ : state) {
    if (ik.CartToJnt(starts[i], goals[i], out) < 0) ++failures;
    benchmark::DoNotOptimize(out);
    i ^= 1;
  }
  KDL::Frame reached;
  fk.JntToCart(out, reached);
  worst = (reached.p - goals[i ^ 1].p).Norm();
  state.counters["miss_mm"] = worst;
  state.counters["failures"] = failures;
}
void BM_Ik_KdlLma_5Joint(benchmark::State& state) { ikKdl(state, false); }
void BM_Ik_KdlLma_3Joint(benchmark::State& state) { ikKdl(state, true); }

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

void depthMtkit(benchmark::State& state, bool leaf) {
  int const depth = static_cast<int>(state.range(0));
  auto const m = deepChain(depth);
  std::vector<Part const*> const chain = chainFromBase(m->headPart());
  Part const* const moved = leaf ? chain[chain.size() - 2] : chain.front();
  double value = 1.0;
  for (auto _ : state) {
    value = value == 1.0 ? 2.0 : 1.0;
    m->moveAxis(moved, value);
    benchmark::DoNotOptimize(m->headAttachFrame());
  }
  state.counters["parts"] = depth;
}
void BM_Depth_Mtkit_MoveBaseAxis(benchmark::State& state) { depthMtkit(state, false); }
void BM_Depth_Mtkit_MoveLeafAxis(benchmark::State& state) { depthMtkit(state, true); }

void BM_Depth_Kdl(benchmark::State& state) {
  auto const m = deepChain(static_cast<int>(state.range(0)));
  KdlChain const chain = headChain(*m);
  KDL::ChainFkSolverPos_recursive solver(chain.chain);
  KDL::JntArray q(chain.chain.getNrOfJoints());
  KDL::Frame out;
  double value = 1.0;
  for (auto _ : state) {
    value = value == 1.0 ? 2.0 : 1.0;
    q(0) = value;
    solver.JntToCart(q, out);
    benchmark::DoNotOptimize(out);
  }
}

void machineArgs(benchmark::internal::Benchmark* b) {
  for (std::size_t i = 0; i < examples().size(); ++i) b->Arg(static_cast<int>(i));
}

void depthArgs(benchmark::internal::Benchmark* b) {
  for (int d : {2, 4, 8, 16, 32, 64}) b->Arg(d);
}

}  // namespace

BENCHMARK(BM_Fk_Mtkit_MoveBaseAxis)->Apply(machineArgs);
BENCHMARK(BM_Fk_Mtkit_MoveLastAxis)->Apply(machineArgs);
BENCHMARK(BM_Fk_Mtkit_MoveEachAxisInTurn)->Apply(machineArgs);
BENCHMARK(BM_Fk_Kdl)->Apply(machineArgs);
BENCHMARK(BM_Ik_Mtkit_CachedPose)->Apply(machineArgs);
BENCHMARK(BM_Ik_Mtkit_NewPose)->Apply(machineArgs);
BENCHMARK(BM_Ik_KdlLma_5Joint)->Apply(machineArgs);
BENCHMARK(BM_Ik_KdlLma_3Joint)->Apply(machineArgs);
BENCHMARK(BM_Depth_Mtkit_MoveBaseAxis)->Apply(depthArgs);
BENCHMARK(BM_Depth_Mtkit_MoveLeafAxis)->Apply(depthArgs);
BENCHMARK(BM_Depth_Kdl)->Apply(depthArgs);

BENCHMARK_MAIN();
