// Copying a script-facing axis against copying a plain struct with the same
// fields. Every axis and its range are unit consumers, which join the
// program-wide list under its lock when made and leave it when destroyed, so
// the difference is that list and lock work: two joins and two leaves per copy.
//
// Pair, read side by side (the program prints the ratio at the end):
//   BM_Copy_Axis / BM_Copy_PlainAxis   at most 3
//
// Ratios are of CPU time. On a loaded machine run with
//   --benchmark_repetitions=8 --benchmark_enable_random_interleaving=true
// and the medians are compared.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "machine/machine/PostMachineConfig/Axis.h"
#include "machine/machine/PostMachineConfig/Range.h"
#include "nc/MachinePartId.h"

namespace {

using com::vantora::Vector;
using com::vantora::post::Axis;
using com::vantora::post::Range;

// The fields of Range and Axis, unit factors included, with nothing behind.
struct PlainRange {
  double toInternal = 1.0;
  double toExternal = 1.0;
  double minimum = 1.0;
  double maximum = 0.0;
  Range::Actuator actuator = Range::LINEAR;
};

struct PlainAxis {
  double toInternal = 1.0;
  double toExternal = 1.0;
  bool enabled = false;
  unsigned int actuator = 1;
  bool table = false;
  Vector axis;
  Vector offset;
  double homePosition = 0.0;
  bool hasHomePosition = false;
  double displacement = 0.0;
  int coordinate = -1;
  bool cyclic = false;
  bool tcpEnabled = true;
  PlainRange range;
  int preference = 0;
  double resolution = 0.0;
  double maximumFeed = 0.0;
  double rapidFeed = 0.0;
  std::wstring name;
  int reset = 0;
  int controlType = 0;
  Orvo::MachinePartId machinePartId;
  double toolChangePosition = 0.0;
  bool hasToolChangePosition = false;
  Vector effectiveAxis;
  bool aggregate = false;
};

// A table C axis as a machine configuration holds one: short name and part
// id, so that neither copy allocates.
Axis makeAxis() {
  Axis a(true, Vector(0, 0, 1), Vector(10, 20, 0), 2, Range(-3, 3, Range::ROTATIONAL));
  a.setName(L"C");
  a.setMachinePartId(Orvo::MachinePartId("table_c"));
  a.setResolution(0.001);
  a.setMaximumFeed(100);
  return a;
}

PlainAxis makePlainAxis() {
  PlainAxis a;
  a.enabled = true;
  a.table = true;
  a.axis = Vector(0, 0, 1);
  a.offset = Vector(10, 20, 0);
  a.coordinate = 2;
  a.range.minimum = -3;
  a.range.maximum = 3;
  a.range.actuator = Range::ROTATIONAL;
  a.name = L"C";
  a.machinePartId = Orvo::MachinePartId("table_c");
  a.resolution = 0.001;
  a.maximumFeed = 100;
  a.effectiveAxis = Vector(0, 0, 1);
  return a;
}

void BM_Copy_Axis(benchmark::State& state) {
  Axis const source = makeAxis();
  for (auto _ : state) {
    Axis copy(source);
    benchmark::DoNotOptimize(copy);
    benchmark::ClobberMemory();
  }
}
BENCHMARK(BM_Copy_Axis);

void BM_Copy_PlainAxis(benchmark::State& state) {
  PlainAxis const source = makePlainAxis();
  for (auto _ : state) {
    PlainAxis copy(source);
    benchmark::DoNotOptimize(copy);
    benchmark::ClobberMemory();
  }
}
BENCHMARK(BM_Copy_PlainAxis);

// Keeps the CPU time per iteration of each benchmark for the ratio.
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
  std::printf("%-16s / %-18s = %.3f (limit %.1f) %s\n", numerator, denominator, ratio, limit,
              ratio <= limit ? "ok" : "OVER");
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
  printRatio(reporter, "BM_Copy_Axis", "BM_Copy_PlainAxis", 3.0);
  return 0;
}
