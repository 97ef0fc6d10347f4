// What the Python package costs over the C++ it binds, in one run: the
// package is imported into an interpreter embedded in this program, and each
// Python benchmark runs a loop written in Python, as a script would, beside
// the same work done in C++.
//
//   BM_Fk_Cpp / BM_Fk_Python          64 poses of the five-axis head-head
//       example: move every axis and take the tool tip of a 100 mm tool in
//       table coordinates (the head's attach frame through the table's):
//       moveTo and the frames in C++, one tool_tip_at call in Python, which
//       pays for the call, the list of five numbers to AxisValues, the loop
//       and the NumPy array it returns.
//   BM_FkTwoCalls_Python              the same as two calls, move_to and
//       tool_tip: the Python side pays for two calls.
//   BM_Orientation_Cpp / BM_Orientation_Python   64 tool directions to the
//       first rotary solution (getABCByDirection / abc_by_direction) of the
//       script-facing configuration of the same machine.
//   BM_Replay_Cpp / BM_Replay_Python  a recorded swarf program replayed
//       through the standard chain: the C++ replay that the binding runs,
//       and mtkit.replay from Python, which also hands the poses to NumPy and
//       the issues to Python objects.
//
// The ratios to read are Python over C++ of each pair. The Python loops
// include the interpreter's own loop and attribute lookups: that is what a
// script pays per call.

#include <benchmark/benchmark.h>
#include <pybind11/embed.h>
#include <pybind11/stl.h>

#include <cmath>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "../python/src/ReplayRun.h"
#include "machine/machine/Machine.h"
#include "machine/machine/MachineDefinition.h"
#include "machine/machine/MachineFileLoader.h"
#include "machine/machine/MachineUtils.h"
#include "machine/machine/PostMachineConfig/MachineConfiguration.h"

namespace py = pybind11;

namespace {

std::string const kMachine = std::string(MTKIT_EXAMPLES_DIR) + "/machines/headhead_5axis.json";
std::string const kStream = std::string(MTKIT_EXAMPLES_DIR) + "/streams/headhead_5axis_swarf.txt";
constexpr int kCalls = 64;
constexpr double kToolLength = 100.0;

// The interpreter lives as long as the program; the package is imported once.
py::module_& mtkitModule() {
  static py::scoped_interpreter interpreter;
  static py::module_ module = [] {
    py::module_::import("sys").attr("path").attr("insert")(0, MTKIT_PYTHON_PATH);
    return py::module_::import("mtkit");
  }();
  return module;
}

// Poses inside the example's travel: X, Y, Z in mm, then B and C in degrees.
std::vector<std::vector<double>> poses() {
  std::vector<std::vector<double>> result;
  for (int i = 0; i < kCalls; ++i) {
    double const t = i / double(kCalls);
    result.push_back({1000.0 + 400.0 * t, 800.0 - 300.0 * t, -500.0 + 200.0 * t, -60.0 + 120.0 * t,
                      -170.0 + 340.0 * t});
  }
  return result;
}

// Unit tool directions within 60 degrees of the spindle.
std::vector<std::vector<double>> directions() {
  std::vector<std::vector<double>> result;
  for (int i = 0; i < kCalls; ++i) {
    double const tilt = (i % 16) * (60.0 / 16) * M_PI / 180;
    double const turn = i * (360.0 / kCalls) * M_PI / 180;
    result.push_back({std::sin(tilt) * std::cos(turn), std::sin(tilt) * std::sin(turn), std::cos(tilt)});
  }
  return result;
}

// The machine as mtkit.Machine.from_file builds it.
std::unique_ptr<machine::Machine> cppMachine() {
  machine::MachineFileLoader::BuiltMachine built = machine::MachineFileLoader::loadMachine(kMachine);
  if (!built.machine) throw std::runtime_error(built.error);
  return std::move(built.machine);
}

void BM_Fk_Cpp(benchmark::State& state) {
  std::unique_ptr<machine::Machine> const m = cppMachine();
  std::vector<Orvo::AxisValues> values;
  for (auto const& pose : poses()) values.emplace_back(std::vector<Orvo::AxisValue>(pose.begin(), pose.end()));
  for (auto _ : state) {
    for (Orvo::AxisValues const& v : values) {
      m->moveTo(v);
      Orvo::Frame const head = machine::MachineUtils::headFrameInTable(*m);
      Orvo::Point3D const tip = head.origin() - kToolLength * head.zAxis();
      benchmark::DoNotOptimize(tip);
    }
  }
  state.SetItemsProcessed(state.iterations() * kCalls);
  state.SetLabel("64 x (moveTo + tool tip in table coordinates)");
}
BENCHMARK(BM_Fk_Cpp);

// Runs `call` for each item of `items` in a Python loop, 64 calls per
// iteration; `call` names the subject `s` and the item `item`.
void runPythonLoop(benchmark::State& state, py::object const& subject, py::object const& items, char const* call,
                   char const* label) {
  py::dict scope;
  py::exec(std::string("def run(s, items):\n    for item in items:\n        ") + call + "\n", scope);
  py::object const run = scope["run"];
  for (auto _ : state) run(subject, items);
  state.SetItemsProcessed(state.iterations() * kCalls);
  state.SetLabel(label);
}

void BM_Fk_Python(benchmark::State& state) {
  py::object const m = mtkitModule().attr("Machine").attr("from_file")(kMachine);
  runPythonLoop(state, m, py::cast(poses()), "s.tool_tip_at(item, 100.0)",
                "64 x m.tool_tip_at(pose, 100.0) in a Python loop");
}
BENCHMARK(BM_Fk_Python);

void BM_FkTwoCalls_Python(benchmark::State& state) {
  py::object const m = mtkitModule().attr("Machine").attr("from_file")(kMachine);
  runPythonLoop(state, m, py::cast(poses()), "s.move_to(item); s.tool_tip(100.0)",
                "64 x (m.move_to(pose) + m.tool_tip(100.0)) in a Python loop");
}
BENCHMARK(BM_FkTwoCalls_Python);

void BM_Orientation_Cpp(benchmark::State& state) {
  machine::MachineFileLoader::LoadedFile const file = machine::MachineFileLoader::load(kMachine);
  if (!file.machine) throw std::runtime_error(file.error);
  using com::vantora::post::MachineConfiguration;
  std::unique_ptr<MachineConfiguration> const c = MachineConfiguration::createFromMachineDefinition(*file.machine, true);
  std::vector<com::vantora::Vector> wanted;
  for (auto const& d : directions()) wanted.emplace_back(d[0], d[1], d[2]);
  for (auto _ : state) {
    for (auto const& d : wanted) {
      com::vantora::Vector const abc = c->getABCByDirection(d);
      benchmark::DoNotOptimize(abc);
    }
  }
  state.SetItemsProcessed(state.iterations() * kCalls);
  state.SetLabel("64 x getABCByDirection");
}
BENCHMARK(BM_Orientation_Cpp);

void BM_Orientation_Python(benchmark::State& state) {
  py::object const c = mtkitModule().attr("MachineConfiguration").attr("from_machine_file")(kMachine);
  py::list directionTuples;
  for (auto const& d : directions()) directionTuples.append(py::make_tuple(d[0], d[1], d[2]));
  runPythonLoop(state, c, directionTuples, "s.abc_by_direction(item)",
                "64 x c.abc_by_direction((i, j, k)) in a Python loop");
}
BENCHMARK(BM_Orientation_Python);

void BM_Replay_Cpp(benchmark::State& state) {
  mtkit_python::ReplayOptions options;
  options.machinePath = kMachine;
  options.streamPath = kStream;
  std::size_t poses = 0;
  for (auto _ : state) {
    mtkit_python::ReplayResult const result = mtkit_python::runReplay(options);
    poses = result.numPoses();
    benchmark::DoNotOptimize(result.poses.data());
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(poses));
  state.SetLabel("the swarf program through the standard chain, in C++");
}
BENCHMARK(BM_Replay_Cpp)->Unit(benchmark::kMicrosecond);

void BM_Replay_Python(benchmark::State& state) {
  py::module_& mtkit = mtkitModule();
  py::object const replay = mtkit.attr("replay");
  py::str const machinePath(kMachine);
  py::str const streamPath(kStream);
  std::size_t poses = 0;
  for (auto _ : state) {
    py::object const result = replay(machinePath, streamPath);
    poses = py::len(result);
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(poses));
  state.SetLabel("mtkit.replay(machine, stream) from Python: NumPy poses and Python issues");
}
BENCHMARK(BM_Replay_Python)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
