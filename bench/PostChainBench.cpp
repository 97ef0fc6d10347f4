// Events through the standard post chain with cutter compensation applied,
// against the same events with no compensation side, and against the solver
// stream alone.
//
// Pairs, read side by side (the program prints the ratios at the end):
//   BM_PostChain_CompensationOn / BM_PostChain_CompensationOff   at most 2
//   BM_PostChain_CompensationOff / BM_SolverStream_Alone         reported
//
// One iteration is one Operation section of a 2.5D contour on the 3-axis
// example mill: for each of 1000 moves round a rounded rectangle, the NC
// block, a placeholder and a linear move, as a post sends them. With the
// compensation on, the moves carry side 1 and the tool has a radius of 5;
// off, the same moves carry no side. The chain's look-ahead holds 100 moves,
// so NC output and placeholders are queued and sent again in step with the
// moves that come out.
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
#include <string>
#include <vector>

#include "machine/machine/MachineDefinitionReader.h"
#include "machine/machine/MachineSolver.h"
#include "machine/machine/MachineSpecification.h"
#include "machine/machine/PostChainSimulationStream.h"
#include "machine/machine/SolverSimulationStream.h"

namespace {

using machine::MotionSettings;
using machine::SimulationStream;

constexpr int kMoves = 1000;
constexpr double kPi = 3.14159265358979323846;

// A terminal that takes every event and does nothing with it.
class NullStream final : public SimulationStream {
  void doOnAxisOrdering(Orvo::AxisOrdering const&) override {}
  void doOnAxisValues(Orvo::AxisValues const& values) override { benchmark::DoNotOptimize(values.size()); }
  void doOnNcOutput(std::string const& text) override { benchmark::DoNotOptimize(text.size()); }
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
  void doOnLinear(Orvo::Point3D const& target, double, MotionSettings const&) override {
    benchmark::DoNotOptimize(target.x);
  }
  void doOnRapid(Orvo::Point3D const&, MotionSettings const&) override {}
  void doOnHelical(Orvo::Helix const&, Orvo::Point3D const& end, double, MotionSettings const&) override {
    benchmark::DoNotOptimize(end.x);
  }
  void doOnLinear5D(Orvo::Point3D const&, Orvo::Vector3D const&, double, MotionSettings const&) override {}
  void doOnRapid5D(Orvo::Point3D const&, Orvo::Vector3D const&, MotionSettings const&) override {}
  void doOnNcCodeMovement(machine::NcCodeMovement const&) override {}
  void doOnTCPCoordMode(bool) override {}
  void doOnTiltedWorkPlane(machine::NcCodeTiltedWorkPlane const&) override {}
  void doOnRetractAlongToolAxisToLimit() override {}
  void doOnSpindleSpeed(double) override {}
};

std::unique_ptr<machine::Machine> exampleMachine() {
  std::ifstream in(std::filesystem::path(MTKIT_EXAMPLES_DIR) / "machines" / "vmc_3axis.json");
  auto result = machine::MachineDefinitionReader().read(in);
  if (result.isError()) return nullptr;
  auto const specification = machine::MachineSpecification::makeDefaultForDefinition(*result.getMachineDefinition(), true);
  if (!specification) return nullptr;
  auto m = std::make_unique<machine::Machine>(*specification);
  m->setAxisOrdering(m->fullOrdering());
  return m;
}

// A rounded rectangle 120 by 80 around (0, 0), corner radius 20, at depth
// -5, walked clockwise (the outside is on the left) in kMoves steps.
struct Contour {
  std::unique_ptr<machine::Machine> machine;
  std::vector<Orvo::Point3D> points;
  std::vector<std::string> blocks;
  Orvo::AxisValues placeholder;

  Contour() : machine(exampleMachine()) {
    double const nan = std::numeric_limits<double>::quiet_NaN();
    placeholder = Orvo::AxisValues(std::vector<Orvo::AxisValue>{nan, nan, nan});
    double const hx = 40.0, hy = 20.0, r = 20.0;
    double const perimeter = 4 * hx + 4 * hy + 2 * kPi * r;
    for (int i = 0; i < kMoves; ++i) {
      // Arc length from the middle of the left edge, clockwise.
      double s = perimeter * i / kMoves;
      Orvo::Point3D p(0, 0, -5);
      double const edgesAndCorners[] = {hy, kPi * r / 2, 2 * hx, kPi * r / 2, 2 * hy, kPi * r / 2, 2 * hx, kPi * r / 2, hy};
      // Left edge up, top-left corner, top edge, ... back to the start.
      int piece = 0;
      while (piece < 8 && s > edgesAndCorners[piece]) s -= edgesAndCorners[piece++];
      auto corner = [&](double cx, double cy, double from) {
        double const a = from - s / r;
        p.x = cx + r * std::cos(a);
        p.y = cy + r * std::sin(a);
      };
      switch (piece) {
        case 0: p.x = -hx - r; p.y = s; break;
        case 1: corner(-hx, hy, kPi); break;
        case 2: p.x = -hx + s; p.y = hy + r; break;
        case 3: corner(hx, hy, kPi / 2); break;
        case 4: p.x = hx + r; p.y = hy - s; break;
        case 5: corner(hx, -hy, 0); break;
        case 6: p.x = hx - s; p.y = -hy - r; break;
        case 7: corner(-hx, -hy, -kPi / 2); break;
        default: p.x = -hx - r; p.y = -hy + s; break;
      }
      points.push_back(p);
      char block[64];
      std::snprintf(block, sizeof block, "N%d G1 X%.3f Y%.3f", 10 * (i + 1), -p.x, -p.y);
      blocks.emplace_back(block);
    }
  }
};

Contour const& contour() {
  static Contour const c;
  return c;
}

/// One operation: tool, section, and per move the NC block, a placeholder
/// and the move. Returns the number of events sent.
long runOperation(SimulationStream& head, Contour const& c, unsigned int side) {
  MotionSettings const settings(Orvo::NCStream::getMovementFlags(Orvo::NCStream::MOVEMENT_CUTTING) | side,
                                machine::NcCodeKinematicInterpolationMode::SYNCHRONIZED,
                                machine::NcCodeRotaryAxisTraverseMode::DIRECT);
  head.onNCTool(Orvo::NCTool(1, Orvo::ToolGeometry(10, 0, 30, 80)));
  head.onSection(SimulationStream::SectionType::Operation);
  for (int i = 0; i < kMoves; ++i) {
    head.onNcOutput(c.blocks[static_cast<std::size_t>(i)]);
    head.onAxisValues(c.placeholder);
    head.onLinear(c.points[static_cast<std::size_t>(i)], 1000, settings);
  }
  head.onSectionEnd();
  return 3 + 3L * kMoves;
}

void runChain(benchmark::State& state, unsigned int side) {
  Contour const& c = contour();
  if (!c.machine) return state.SkipWithError("example machine missing");
  machine::PostChainSimulationStream head(std::make_unique<NullStream>(), c.machine->makeMachineSolver());
  head.onAxisOrdering(c.machine->axisOrdering());
  long events = 0;
  for (auto _ : state) events += runOperation(head, c, side);
  state.SetItemsProcessed(events);
  state.counters["events/s"] = benchmark::Counter(static_cast<double>(events), benchmark::Counter::kIsRate);
}

void BM_PostChain_CompensationOn(benchmark::State& state) { runChain(state, Orvo::NCStream::COMPENSATION_SIDE_1); }

void BM_PostChain_CompensationOff(benchmark::State& state) { runChain(state, 0); }

void BM_SolverStream_Alone(benchmark::State& state) {
  Contour const& c = contour();
  if (!c.machine) return state.SkipWithError("example machine missing");
  machine::SolverSimulationStream head(std::make_unique<NullStream>(), c.machine->makeMachineSolver());
  head.onAxisOrdering(c.machine->axisOrdering());
  long events = 0;
  for (auto _ : state) events += runOperation(head, c, 0);
  state.SetItemsProcessed(events);
  state.counters["events/s"] = benchmark::Counter(static_cast<double>(events), benchmark::Counter::kIsRate);
}

BENCHMARK(BM_PostChain_CompensationOn)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_PostChain_CompensationOff)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_SolverStream_Alone)->Unit(benchmark::kMicrosecond);

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

/// A limit of 0 only reports.
void printRatio(RatioReporter const& r, char const* numerator, char const* denominator, double limit) {
  auto const a = r.times.find(numerator);
  auto const b = r.times.find(denominator);
  if (a == r.times.end() || b == r.times.end() || b->second <= 0.0) return;
  double const ratio = a->second / b->second;
  if (limit > 0)
    std::printf("%-30s / %-30s = %.2f (limit %.1f) %s\n", numerator, denominator, ratio, limit,
                ratio <= limit ? "ok" : "OVER");
  else
    std::printf("%-30s / %-30s = %.2f\n", numerator, denominator, ratio);
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
  printRatio(reporter, "BM_PostChain_CompensationOn", "BM_PostChain_CompensationOff", 2.0);
  printRatio(reporter, "BM_PostChain_CompensationOff", "BM_SolverStream_Alone", 0.0);
  printRatio(reporter, "BM_PostChain_CompensationOn", "BM_SolverStream_Alone", 0.0);
  return 0;
}
