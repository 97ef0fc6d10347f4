// Events through the solver stream against the bare solver work they stand
// for, and the guard of one forwarding link against a plain virtual call.
//
// Pairs, read side by side (the program prints the ratios at the end):
//   BM_Stream_PlaceholderMoves / BM_Bare_PlaceholderMoves   at most 1.3
//   BM_Guarded_ForwardingLink  / BM_Plain_VirtualLink       at most 2
//
// The moves are those of a 5-axis example machine: a placeholder with the
// rotary axes and a 5-axis rapid to a target, the rotary pose changing every
// 100 moves as in a tool path, so that the solver's cache is rebuilt once
// per pose in both members of the pair.
//
// Ratios are of CPU time. On a loaded machine run with
//   --benchmark_repetitions=8 --benchmark_enable_random_interleaving=true
// and the medians are compared.

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <limits>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "machine/machine/ForwardingSimulationStream.h"
#include "machine/machine/MachineDefinitionReader.h"
#include "machine/machine/MachineSolver.h"
#include "machine/machine/MachineSpecification.h"
#include "machine/machine/SolverSimulationStream.h"

namespace {

using machine::MotionSettings;
using machine::SimulationStream;

constexpr int kMoves = 10000;
constexpr int kMovesPerPose = 100;

// A terminal that takes every event and does nothing with it.
class NullStream final : public SimulationStream {
  void doOnAxisOrdering(Orvo::AxisOrdering const&) override {}
  void doOnAxisValues(Orvo::AxisValues const& values) override { benchmark::DoNotOptimize(values.size()); }
  void doOnNcOutput(std::string const&) override {}
  void doOnNcProgramId(int) override {}
  void doOnOperationId(int) override {}
  void doOnMachineId(int) override {}
  void doOnCommand(machine::SimulationStreamCommand const&) override {}
  void doOnPatternOpen(int) override {}
  void doOnPatternClose(int) override {}
  void doOnPatternChildInstance(int) override {}
  void doOnSection(SectionType) override {}
  void doOnSectionEnd() override {}
  void doOnWorkOffset(int) override {}
  void doOnIssue(IssueCode, std::string const&) override {}
  void doOnNCContext(Orvo::NCContext const&) override {}
  void doOnNCTool(Orvo::NCTool const&) override {}
  void doOnSimGroup(std::string const&) override {}
  void doOnSimGroupEnd(std::string const&) override {}
  void doOnTaggedFrame(Orvo::TaggedFrame const&) override {}
  void doOnLinear(Orvo::Point3D const&, double, MotionSettings const&) override {}
  void doOnRapid(Orvo::Point3D const&, MotionSettings const&) override {}
  void doOnHelical(Orvo::Helix const&, Orvo::Point3D const&, double, MotionSettings const&) override {}
  void doOnLinear5D(Orvo::Point3D const&, Orvo::Vector3D const&, double, MotionSettings const&) override {}
  void doOnRapid5D(Orvo::Point3D const& target, Orvo::Vector3D const&, MotionSettings const&) override {
    benchmark::DoNotOptimize(target.x);
  }
  void doOnNcCodeMovement(machine::NcCodeMovement const&) override {}
  void doOnTCPCoordMode(bool) override {}
  void doOnTiltedWorkPlane(machine::NcCodeTiltedWorkPlane const&) override {}
  void doOnRetractAlongToolAxisToLimit() override {}
  void doOnSpindleSpeed(double speed) override { benchmark::DoNotOptimize(speed); }
};

class Link final : public machine::ForwardingSimulationStream {
public:
  using ForwardingSimulationStream::ForwardingSimulationStream;
  ~Link() override = default;
};

std::unique_ptr<machine::Machine> exampleMachine() {
  std::ifstream in(std::filesystem::path(MTKIT_EXAMPLES_DIR) / "machines" / "headtable_5axis.json");
  auto result = machine::MachineDefinitionReader().read(in);
  if (result.isError()) return nullptr;
  auto const definition = result.getMachineDefinition();
  auto const spec = machine::MachineSpecification::makeDefaultForDefinition(*definition, true);
  if (!spec) return nullptr;
  auto m = std::make_unique<machine::Machine>(*spec);
  m->setAxisOrdering(m->fullOrdering());
  return m;
}

struct Moves {
  std::unique_ptr<machine::Machine> machine;
  std::vector<Orvo::AxisValues> placeholders;
  std::vector<Orvo::Point3D> targets;
  Orvo::Vector3D toolAxis{0, 0, 1};

  Moves() : machine(exampleMachine()) {
    if (!machine) return;
    std::mt19937_64 random(2026);
    std::uniform_real_distribution<double> angle(-60.0, 60.0);
    std::uniform_real_distribution<double> coordinate(-100.0, 100.0);
    double const nan = std::numeric_limits<double>::quiet_NaN();
    Orvo::AxisValues pose(machine->numOrderedParts());
    for (int move = 0; move < kMoves; ++move) {
      if (move % kMovesPerPose == 0)
        for (int i = 3; i < pose.size(); ++i) pose.setValue(i, angle(random));
      for (int i = 0; i < 3; ++i) pose.setValue(i, nan);
      placeholders.push_back(pose);
      targets.emplace_back(coordinate(random), coordinate(random), coordinate(random));
    }
  }
};

Moves const& moves() {
  static Moves const m;
  return m;
}

void BM_Stream_PlaceholderMoves(benchmark::State& state) {
  Moves const& d = moves();
  if (!d.machine) return state.SkipWithError("example machine missing");
  machine::SolverSimulationStream stream(std::make_unique<NullStream>(), d.machine->makeMachineSolver());
  stream.onAxisOrdering(d.machine->axisOrdering());
  MotionSettings const settings(1u, machine::NcCodeKinematicInterpolationMode::SYNCHRONIZED,
                                machine::NcCodeRotaryAxisTraverseMode::DIRECT);
  int i = 0;
  for (auto _ : state) {
    stream.onAxisValues(d.placeholders[static_cast<std::size_t>(i)]);
    stream.onRapid5D(d.targets[static_cast<std::size_t>(i)], d.toolAxis, settings);
    if (++i == kMoves) i = 0;
  }
  state.SetItemsProcessed(state.iterations() * 2);
  state.counters["events/s"] = benchmark::Counter(static_cast<double>(state.iterations() * 2), benchmark::Counter::kIsRate);
}

void BM_Bare_PlaceholderMoves(benchmark::State& state) {
  Moves const& d = moves();
  if (!d.machine) return state.SkipWithError("example machine missing");
  auto const solver = d.machine->makeMachineSolver();
  solver->moveToHome();
  int i = 0;
  for (auto _ : state) {
    solver->moveTo(d.placeholders[static_cast<std::size_t>(i)]);
    auto const result = solver->moveToolTipTo(d.targets[static_cast<std::size_t>(i)]);
    benchmark::DoNotOptimize(result);
    Orvo::AxisValues const solved = solver->axisValues();
    benchmark::DoNotOptimize(solved.values().data());
    if (++i == kMoves) i = 0;
  }
  state.SetItemsProcessed(state.iterations() * 2);
  state.counters["events/s"] = benchmark::Counter(static_cast<double>(state.iterations() * 2), benchmark::Counter::kIsRate);
}

void BM_Guarded_ForwardingLink(benchmark::State& state) {
  std::unique_ptr<SimulationStream> head = std::make_unique<Link>(std::make_unique<NullStream>());
  SimulationStream* const stream = head.get();
  benchmark::DoNotOptimize(stream);
  double speed = 1.0;
  for (auto _ : state) {
    stream->onSpindleSpeed(speed);
    speed += 1.0;
  }
  state.SetItemsProcessed(state.iterations());
}

// The same two hops as plain virtual calls with no guard.
struct PlainSink {
  virtual ~PlainSink() = default;
  virtual void spindleSpeed(double speed) = 0;
};
struct PlainTerminal final : PlainSink {
  void spindleSpeed(double speed) override { benchmark::DoNotOptimize(speed); }
};
struct PlainLink final : PlainSink {
  explicit PlainLink(std::unique_ptr<PlainSink> next) : m_next(std::move(next)) {}
  void spindleSpeed(double speed) override { m_next->spindleSpeed(speed); }
  std::unique_ptr<PlainSink> m_next;
};

void BM_Plain_VirtualLink(benchmark::State& state) {
  std::unique_ptr<PlainSink> head = std::make_unique<PlainLink>(std::make_unique<PlainTerminal>());
  PlainSink* const sink = head.get();
  benchmark::DoNotOptimize(sink);
  double speed = 1.0;
  for (auto _ : state) {
    sink->spindleSpeed(speed);
    speed += 1.0;
  }
  state.SetItemsProcessed(state.iterations());
}

BENCHMARK(BM_Stream_PlaceholderMoves);
BENCHMARK(BM_Bare_PlaceholderMoves);
BENCHMARK(BM_Guarded_ForwardingLink);
BENCHMARK(BM_Plain_VirtualLink);

// Keeps the time per iteration of each benchmark for the ratios.
class RatioReporter : public benchmark::ConsoleReporter {
public:
  void ReportRuns(std::vector<Run> const& runs) override {
    // The median of repetitions where there are any, else the single run.
    for (Run const& run : runs) {
      if (run.error_occurred) continue;
      std::string const& name = run.run_name.function_name;
      if (run.run_type == Run::RT_Aggregate && run.aggregate_name == "median") {
        times[name] = run.GetAdjustedCPUTime();
        medians[name] = true;
      } else if (run.run_type == Run::RT_Iteration && !medians[name]) {
        times[name] = run.GetAdjustedCPUTime();
      }
    }
    ConsoleReporter::ReportRuns(runs);
  }
  std::map<std::string, double> times;
  std::map<std::string, bool> medians;
};

void printRatio(RatioReporter const& r, char const* numerator, char const* denominator, double limit) {
  auto const a = r.times.find(numerator);
  auto const b = r.times.find(denominator);
  if (a == r.times.end() || b == r.times.end() || b->second <= 0.0) return;
  double const ratio = a->second / b->second;
  std::printf("%-28s / %-26s = %.2f (limit %.1f) %s\n", numerator, denominator, ratio, limit,
              ratio <= limit ? "ok" : "OVER");
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
  printRatio(reporter, "BM_Stream_PlaceholderMoves", "BM_Bare_PlaceholderMoves", 1.3);
  printRatio(reporter, "BM_Guarded_ForwardingLink", "BM_Plain_VirtualLink", 2.0);
  return 0;
}
