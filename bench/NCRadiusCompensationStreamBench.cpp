// The cutter radius compensator with compensation on against the same
// events with compensation off (no side in the flags), alone and at the head
// of a chain that ends in the solver stream.
//
// Pairs, read side by side (the program prints the ratios at the end):
//   BM_Chain_On        / BM_Chain_Off        at most 2
//   BM_Compensator_On  / BM_Compensator_Off  (for information)
//
// The events are those of a finishing pass as a CAM system writes it: a
// marker and a motion per move; data 0 is a wavy profile cut into short
// lines, 8 laps at falling Z, outside; 1 a rounded pocket of lines and arcs,
// 40 laps, inside; 2 a rounded rectangle in 1000 short lines, outside. The
// look-ahead is 100 moves. The chain stands in for the post chain: after
// the compensator, a link turns each motion into a placeholder and a motion
// for the solver stream, which solves the 5-axis example machine.
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
#include "machine/machine/SolverSimulationStream.h"
#include "nc/Helix.h"
#include "nc/NCRadiusCompensationStream.h"
#include "nc/ToolGeometry.h"

namespace {

using machine::MotionSettings;
using machine::SimulationStream;
using Orvo::Point3D;
using Orvo::Vector3D;

constexpr double kPi = 3.14159265358979323846;

struct Move {
  bool arc = false;
  Point3D target;
  Point3D centre;
  Vector3D normal{0, 0, 1};
};

// Laps of a closed profile at falling Z, joined by plunges.
std::vector<Move> wavyProfile() {
  std::vector<Move> moves;
  int const perLap = 400;
  for (int lap = 0; lap < 8; ++lap) {
    double const z = -1.0 - lap;
    for (int i = 0; i <= perLap; ++i) {
      double const t = 2.0 * kPi * i / perLap;
      double const r = 40.0 + 6.0 * std::sin(5.0 * t);
      Move m;
      m.target = Point3D(r * std::cos(t), r * std::sin(t), z);
      moves.push_back(m);
    }
  }
  return moves;
}

// A square pocket 60 wide with corners of radius 8, counterclockwise, each
// side in 20 lines.
std::vector<Move> roundedPocket() {
  std::vector<Move> moves;
  double const h = 30.0;
  double const k = 8.0;
  // Per side: where it ends, and the centre of the corner after it.
  double const ends[4][2] = {{h, h - k}, {-h + k, h}, {-h, -h + k}, {h - k, -h}};
  double const centres[4][2] = {{h - k, h - k}, {-h + k, h - k}, {-h + k, -h + k}, {h - k, -h + k}};
  for (int lap = 0; lap < 40; ++lap) {
    double const z = -0.5 - 0.5 * lap;
    Point3D from(h, -h + k, z);
    Move plunge;
    plunge.target = from;
    moves.push_back(plunge);
    for (int side = 0; side < 4; ++side) {
      Point3D const to(ends[side][0], ends[side][1], z);
      for (int i = 1; i <= 20; ++i) {
        Move m;
        double const f = i / 20.0;
        m.target = Point3D(from.x + (to.x - from.x) * f, from.y + (to.y - from.y) * f, z);
        moves.push_back(m);
      }
      Move arc;
      arc.arc = true;
      arc.centre = Point3D(centres[side][0], centres[side][1], z);
      double const a = (side + 1) * kPi / 2.0;
      arc.target = Point3D(centres[side][0] + k * std::cos(a), centres[side][1] + k * std::sin(a), z);
      moves.push_back(arc);
      from = arc.target;
    }
  }
  return moves;
}

// A rectangle 120 by 80 with corners of radius 20, clockwise, in 1000 moves
// of equal length (about 0.37 mm): straight runs and finely broken arcs.
std::vector<Move> finelyBrokenRectangle() {
  std::vector<Move> moves;
  double const hx = 40.0, hy = 20.0, r = 20.0;
  double const lengths[] = {hy, kPi * r / 2, 2 * hx, kPi * r / 2, 2 * hy, kPi * r / 2, 2 * hx, kPi * r / 2, hy};
  double const perimeter = 4 * hx + 4 * hy + 2 * kPi * r;
  for (int i = 0; i < 1000; ++i) {
    double s = perimeter * i / 1000;
    int part = 0;
    while (part < 8 && s > lengths[part]) s -= lengths[part++];
    Move m;
    auto corner = [&](double cx, double cy, double from) {
      m.target = Point3D(cx + r * std::cos(from - s / r), cy + r * std::sin(from - s / r), -5.0);
    };
    switch (part) {
      case 0: m.target = Point3D(-hx - r, s, -5.0); break;
      case 1: corner(-hx, hy, kPi); break;
      case 2: m.target = Point3D(-hx + s, hy + r, -5.0); break;
      case 3: corner(hx, hy, kPi / 2); break;
      case 4: m.target = Point3D(hx + r, hy - s, -5.0); break;
      case 5: corner(hx, -hy, 0); break;
      case 6: m.target = Point3D(hx - s, -hy - r, -5.0); break;
      case 7: corner(-hx, -hy, -kPi / 2); break;
      default: m.target = Point3D(-hx - r, -hy + s, -5.0); break;
    }
    moves.push_back(m);
  }
  return moves;
}

// Takes whatever comes out.
class NullNCStream final : public Orvo::NCStream {
public:
  bool passThrough(std::wstring const&) override { return true; }
  bool passThrough(std::string const&) override { return true; }
  bool onComment(std::wstring const&) override { return true; }
  bool onComment(std::string const&) override { return true; }
  bool onCommand(Command) override { return true; }
  bool onToolpathEntityIndex(Orvo::ToolpathEntityIndex const&) override { return true; }
  bool onMachineCommand(int) override { return true; }
  bool onCoolant(int) override { return true; }
  bool onSpindleSpeed(double) override { return true; }
  bool onRadiusCompensationMode(bool) override { return true; }
  bool onRadiusCompensation(int) override { return true; }
  bool onOpen() override { return true; }
  bool onParameter(std::string const&, Point3D const&) override { return true; }
  bool onParameter(std::string const&, double) override { return true; }
  bool onParameter(std::string const&, int) override { return true; }
  bool onParameter(std::string const&, std::wstring const&) override { return true; }
  bool onParameter(std::string const&, std::string const&) override { return true; }
  bool onStock(Point3D const&, Point3D const&) override { return true; }
  bool onContext(Orvo::NCContext const&) override { return true; }
  bool onTool(Orvo::NCTool const&) override { return true; }
  bool onToolChange(Orvo::NCTool const&) override { return true; }
  bool onSection() override { return true; }
  bool onGroup(std::string const&) override { return true; }
  bool onTurnGroup(std::string const&) override { return true; }
  bool onGroupEnd() override { return true; }
  bool onTurnGroupEnd() override { return true; }
  bool onSectionEnd() override { return true; }
  bool onDwell(double) override { return true; }
  bool onRapid(Point3D const& p, unsigned int) override { return take(p); }
  bool onRapid5D(Point3D const& p, Vector3D const&, unsigned int) override { return take(p); }
  bool onLinear(Point3D const& p, double, unsigned int) override { return take(p); }
  bool onLinear5D(Point3D const& p, Vector3D const&, double, unsigned int) override { return take(p); }
  bool onLinearExtrude(Point3D const&, double, double, unsigned int) override { return true; }
  bool onCWArc(Point3D const&, Point3D const& e, Vector3D const&, double, unsigned int) override { return take(e); }
  bool onCCWArc(Point3D const&, Point3D const& e, Vector3D const&, double, unsigned int) override { return take(e); }
  bool onCircular(Point3D const&, Point3D const& e, Vector3D const&, double, double, unsigned int) override {
    return take(e);
  }
  bool onCWArcExtrude(Point3D const&, Point3D const&, Vector3D const&, double, double, unsigned int) override {
    return true;
  }
  bool onCCWArcExtrude(Point3D const&, Point3D const&, Vector3D const&, double, double, unsigned int) override {
    return true;
  }
  bool onCircularExtrude(Point3D const&, Point3D const&, Vector3D const&, double, double, double,
                         unsigned int) override {
    return true;
  }
  bool onCWCircle(Point3D const&, Point3D const&, Vector3D const&, double, unsigned int) override { return true; }
  bool onCCWCircle(Point3D const&, Point3D const&, Vector3D const&, double, unsigned int) override { return true; }
  bool onSpline(std::vector<Point3D> const&, double, unsigned int) override { return true; }
  bool onBezier(std::vector<Point3D> const&, double, unsigned int) override { return true; }
  bool onNURBS(std::vector<Point3D> const&, std::vector<double> const&, std::vector<double> const&, int, double,
               unsigned int) override {
    return true;
  }
  bool onSkip() override { return true; }
  bool onLineNumber(unsigned int n) override {
    benchmark::DoNotOptimize(n);
    return true;
  }
  bool onMachineAxisOrdering(Orvo::AxisOrdering const&) override { return true; }
  bool onMachineAxisValues(Orvo::AxisValues const&) override { return true; }
  bool onFrame(Orvo::Frame const&) override { return true; }
  bool onClose() override { return true; }

private:
  bool take(Point3D const& p) {
    benchmark::DoNotOptimize(p.x);
    return true;
  }
};

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
  void doOnLinear(Point3D const& p, double, MotionSettings const&) override { benchmark::DoNotOptimize(p.x); }
  void doOnRapid(Point3D const& p, MotionSettings const&) override { benchmark::DoNotOptimize(p.x); }
  void doOnHelical(Orvo::Helix const&, Point3D const& p, double, MotionSettings const&) override {
    benchmark::DoNotOptimize(p.x);
  }
  void doOnLinear5D(Point3D const& p, Vector3D const&, double, MotionSettings const&) override {
    benchmark::DoNotOptimize(p.x);
  }
  void doOnRapid5D(Point3D const& p, Vector3D const&, MotionSettings const&) override {
    benchmark::DoNotOptimize(p.x);
  }
  void doOnNcCodeMovement(machine::NcCodeMovement const&) override {}
  void doOnTCPCoordMode(bool) override {}
  void doOnTiltedWorkPlane(machine::NcCodeTiltedWorkPlane const&) override {}
  void doOnRetractAlongToolAxisToLimit() override {}
  void doOnSpindleSpeed(double) override {}
};

// Stands in for the way back into the simulation stream: a placeholder
// ahead of each motion, arcs as helices from the last position.
class ToSolver final : public Orvo::NCStream {
public:
  ToSolver(SimulationStream& next, Orvo::AxisValues placeholder) : m_next(next), m_placeholder(std::move(placeholder)) {}

  bool passThrough(std::wstring const&) override { return true; }
  bool passThrough(std::string const&) override { return true; }
  bool onComment(std::wstring const&) override { return true; }
  bool onComment(std::string const&) override { return true; }
  bool onCommand(Command) override { return true; }
  bool onToolpathEntityIndex(Orvo::ToolpathEntityIndex const&) override { return true; }
  bool onMachineCommand(int) override { return true; }
  bool onCoolant(int) override { return true; }
  bool onSpindleSpeed(double) override { return true; }
  bool onRadiusCompensationMode(bool) override { return true; }
  bool onRadiusCompensation(int) override { return true; }
  bool onOpen() override { return true; }
  bool onParameter(std::string const&, Point3D const&) override { return true; }
  bool onParameter(std::string const&, double) override { return true; }
  bool onParameter(std::string const&, int) override { return true; }
  bool onParameter(std::string const&, std::wstring const&) override { return true; }
  bool onParameter(std::string const&, std::string const&) override { return true; }
  bool onStock(Point3D const&, Point3D const&) override { return true; }
  bool onContext(Orvo::NCContext const&) override { return true; }
  bool onTool(Orvo::NCTool const&) override { return true; }
  bool onToolChange(Orvo::NCTool const&) override { return true; }
  bool onSection() override { return true; }
  bool onGroup(std::string const&) override { return true; }
  bool onTurnGroup(std::string const&) override { return true; }
  bool onGroupEnd() override { return true; }
  bool onTurnGroupEnd() override { return true; }
  bool onSectionEnd() override { return true; }
  bool onDwell(double) override { return true; }
  bool onRapid(Point3D const& p, unsigned int f) override {
    m_next.onAxisValues(m_placeholder);
    m_next.onRapid5D(p, Vector3D(0, 0, 1), settings(f));
    m_last = p;
    return true;
  }
  bool onRapid5D(Point3D const& p, Vector3D const& a, unsigned int f) override {
    m_next.onAxisValues(m_placeholder);
    m_next.onRapid5D(p, a, settings(f));
    m_last = p;
    return true;
  }
  bool onLinear(Point3D const& p, double feed, unsigned int f) override {
    m_next.onAxisValues(m_placeholder);
    m_next.onLinear5D(p, Vector3D(0, 0, 1), feed, settings(f));
    m_last = p;
    return true;
  }
  bool onLinear5D(Point3D const& p, Vector3D const& a, double feed, unsigned int f) override {
    m_next.onAxisValues(m_placeholder);
    m_next.onLinear5D(p, a, feed, settings(f));
    m_last = p;
    return true;
  }
  bool onLinearExtrude(Point3D const&, double, double, unsigned int) override { return true; }
  bool onCWArc(Point3D const& c, Point3D const& e, Vector3D const& n, double feed, unsigned int f) override {
    return onCCWArc(c, e, -n, feed, f);
  }
  bool onCCWArc(Point3D const& c, Point3D const& e, Vector3D const& n, double feed, unsigned int f) override {
    m_next.onAxisValues(m_placeholder);
    m_next.onHelical(Orvo::Helix(c, m_last, e, n), e, feed, settings(f));
    m_last = e;
    return true;
  }
  bool onCircular(Point3D const& c, Point3D const& e, Vector3D const& n, double sweep, double feed,
                  unsigned int f) override {
    m_next.onAxisValues(m_placeholder);
    m_next.onHelical(Orvo::Helix(c, m_last, e, sweep, n), e, feed, settings(f));
    m_last = e;
    return true;
  }
  bool onCWArcExtrude(Point3D const&, Point3D const&, Vector3D const&, double, double, unsigned int) override {
    return true;
  }
  bool onCCWArcExtrude(Point3D const&, Point3D const&, Vector3D const&, double, double, unsigned int) override {
    return true;
  }
  bool onCircularExtrude(Point3D const&, Point3D const&, Vector3D const&, double, double, double,
                         unsigned int) override {
    return true;
  }
  bool onCWCircle(Point3D const&, Point3D const&, Vector3D const&, double, unsigned int) override { return true; }
  bool onCCWCircle(Point3D const&, Point3D const&, Vector3D const&, double, unsigned int) override { return true; }
  bool onSpline(std::vector<Point3D> const&, double, unsigned int) override { return true; }
  bool onBezier(std::vector<Point3D> const&, double, unsigned int) override { return true; }
  bool onNURBS(std::vector<Point3D> const&, std::vector<double> const&, std::vector<double> const&, int, double,
               unsigned int) override {
    return true;
  }
  bool onSkip() override { return true; }
  bool onLineNumber(unsigned int) override { return true; }
  bool onMachineAxisOrdering(Orvo::AxisOrdering const&) override { return true; }
  bool onMachineAxisValues(Orvo::AxisValues const&) override { return true; }
  bool onFrame(Orvo::Frame const&) override { return true; }
  bool onClose() override { return true; }

private:
  static MotionSettings settings(unsigned int flags) {
    return MotionSettings(flags, machine::NcCodeKinematicInterpolationMode::SYNCHRONIZED,
                          machine::NcCodeRotaryAxisTraverseMode::DIRECT);
  }
  SimulationStream& m_next;
  Orvo::AxisValues m_placeholder;
  Point3D m_last;
};

std::unique_ptr<machine::Machine> exampleMachine() {
  std::ifstream in(std::filesystem::path(MTKIT_EXAMPLES_DIR) / "machines" / "headtable_5axis.json");
  auto result = machine::MachineDefinitionReader().read(in);
  if (result.isError()) return nullptr;
  auto const definition = result.getMachineDefinition();
  auto const specification = machine::MachineSpecification::makeDefaultForDefinition(*definition, true);
  if (!specification) return nullptr;
  auto m = std::make_unique<machine::Machine>(*specification);
  m->setAxisOrdering(m->fullOrdering());
  return m;
}

// Feeds the moves with a lead-in and a lead-out, `side` in the flags of the
// contour (0 for none), and flushes.
std::size_t feed(Orvo::NCRadiusCompensationStream& comp, std::vector<Move> const& moves, unsigned int side) {
  unsigned int line = 1;
  unsigned int const flags = 3u | side;
  Point3D const first = moves.front().target;
  comp.onLineNumber(line++);
  comp.onRapid(Point3D(first.x * 1.5, first.y * 1.5, 5.0), 1u);
  comp.onLineNumber(line++);
  comp.onLinear(Point3D(first.x * 1.5, first.y * 1.5, first.z), 200.0, 3u);
  for (Move const& m : moves) {
    comp.onLineNumber(line++);
    if (m.arc)
      comp.onCCWArc(m.centre, m.target, m.normal, 400.0, flags);
    else
      comp.onLinear(m.target, 400.0, flags);
  }
  comp.onLineNumber(line++);
  comp.onLinear(Point3D(first.x * 1.5, first.y * 1.5, 5.0), 200.0, 3u);
  comp.onRadiusCompensationMode(false);
  return moves.size() + 3;
}

std::vector<Move> const& data(int which) {
  static std::vector<Move> const wavy = wavyProfile();
  static std::vector<Move> const pocket = roundedPocket();
  static std::vector<Move> const rectangle = finelyBrokenRectangle();
  return which == 0 ? wavy : (which == 1 ? pocket : rectangle);
}

// Outside of the wavy profile (counterclockwise: the right), inside of the
// pocket (the left), outside of the rectangle (clockwise: the left).
unsigned int sideFor(int which) { return which == 1 ? 128u : (which == 0 ? 256u : 128u); }

void runCompensator(benchmark::State& state, bool on) {
  int const which = static_cast<int>(state.range(0));
  NullNCStream out;
  Orvo::NCRadiusCompensationStream comp{Orvo::ScopePointer<Orvo::NCStream>(&out)};
  comp.setLookAhead(100);
  comp.onTool(Orvo::NCTool(1, Orvo::ToolGeometry(6.0, 0, 20, 50)));
  std::size_t moves = 0;
  for (auto _ : state) moves += feed(comp, data(which), on ? sideFor(which) : 0u);
  state.SetItemsProcessed(static_cast<std::int64_t>(moves));
}

void runChain(benchmark::State& state, bool on) {
  int const which = static_cast<int>(state.range(0));
  static std::unique_ptr<machine::Machine> const m = exampleMachine();
  if (!m) return state.SkipWithError("example machine missing");
  machine::SolverSimulationStream solver(std::make_unique<NullStream>(), m->makeMachineSolver());
  solver.onAxisOrdering(m->axisOrdering());
  solver.onSection(SimulationStream::SectionType::Operation);
  Orvo::AxisValues placeholder(m->numOrderedParts());
  double const nan = std::numeric_limits<double>::quiet_NaN();
  for (int i = 0; i < placeholder.size(); ++i) placeholder.setValue(i, i < 3 ? nan : 0.0);
  ToSolver link(solver, placeholder);
  Orvo::NCRadiusCompensationStream comp{Orvo::ScopePointer<Orvo::NCStream>(&link)};
  comp.setLookAhead(100);
  comp.onTool(Orvo::NCTool(1, Orvo::ToolGeometry(6.0, 0, 20, 50)));
  std::size_t moves = 0;
  for (auto _ : state) moves += feed(comp, data(which), on ? sideFor(which) : 0u);
  state.SetItemsProcessed(static_cast<std::int64_t>(moves));
}

void BM_Compensator_On(benchmark::State& state) { runCompensator(state, true); }
void BM_Compensator_Off(benchmark::State& state) { runCompensator(state, false); }
void BM_Chain_On(benchmark::State& state) { runChain(state, true); }
void BM_Chain_Off(benchmark::State& state) { runChain(state, false); }

BENCHMARK(BM_Compensator_On)->DenseRange(0, 2)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Compensator_Off)->DenseRange(0, 2)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Chain_On)->DenseRange(0, 2)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Chain_Off)->DenseRange(0, 2)->Unit(benchmark::kMicrosecond);

// Keeps the time per iteration of each benchmark for the ratios.
class RatioReporter : public benchmark::ConsoleReporter {
public:
  void ReportRuns(std::vector<Run> const& runs) override {
    for (Run const& run : runs) {
      if (run.error_occurred) continue;
      std::string const name = run.run_name.function_name + "/" + run.run_name.args;
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

void printRatio(RatioReporter const& r, std::string const& numerator, std::string const& denominator, double limit) {
  auto const a = r.times.find(numerator);
  auto const b = r.times.find(denominator);
  if (a == r.times.end() || b == r.times.end() || b->second <= 0.0) return;
  double const ratio = a->second / b->second;
  if (limit > 0.0)
    std::printf("%-22s / %-22s = %.2f (limit %.1f) %s\n", numerator.c_str(), denominator.c_str(), ratio, limit,
                ratio <= limit ? "ok" : "OVER");
  else
    std::printf("%-22s / %-22s = %.2f\n", numerator.c_str(), denominator.c_str(), ratio);
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
  for (char const* arg : {"0", "1", "2"}) {
    std::string const a(arg);
    printRatio(reporter, "BM_Chain_On/" + a, "BM_Chain_Off/" + a, 2.0);
    printRatio(reporter, "BM_Compensator_On/" + a, "BM_Compensator_Off/" + a, 0.0);
  }
  return 0;
}
