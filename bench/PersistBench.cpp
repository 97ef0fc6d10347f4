// Writing and reading 100,000 machine motions (5 axes, one entity each) in
// both persist encodings, side by side with a bare jsoncpp write and parse of
// the same JSON tree, in one run.
//
// Pairs (the program prints the ratios at the end):
//   BM_Json_Write  / BM_Bare_JsonWrite  at most 1.3: writing the motions'
//       text, against jsoncpp writing the tree of that text (tab indentation,
//       17 digits, special floats);
//   BM_Json_Read   / BM_Bare_JsonParse  at most 1.3: parsing the text and
//       reading the motions from the tree, against parsing the same text
//       with the same reader settings;
//   BM_Binary_Write / BM_Json_Write and BM_Binary_Read / BM_Json_Read at
//       most 0.2 (the binary form at least 5 times as fast).
// Ratios are of CPU time; on a loaded machine run with
//   --benchmark_repetitions=5 --benchmark_enable_random_interleaving=true

#include <benchmark/benchmark.h>
#include <json/reader.h>
#include <json/writer.h>

#include <cstdio>
#include <map>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "machine/machine/MachineClassDatabasePopulator.h"
#include "machine/machine/MachineMotions.h"
#include "nc/BinaryPersistReader.h"
#include "nc/BinaryPersistWriter.h"
#include "nc/JsonPersistReader.h"
#include "nc/JsonPersistWriter.h"
#include "nc/PersistClassDatabase.h"

namespace {

constexpr int kMotions = 100000;

machine::MachineMotions makeMotions() {
  std::mt19937 random(20240613u);
  std::uniform_real_distribution<double> linear(-500.0, 500.0);
  std::uniform_real_distribution<double> angle(-180.0, 180.0);
  Orvo::AxisOrdering ordering;
  for (auto const& [part, name] :
       {std::pair<char const*, char const*>{"x_slide", "X"}, {"y_slide", "Y"}, {"z_slide", "Z"}, {"a_tilt", "A"},
        {"c_rotary", "C"}})
    ordering.append(Orvo::AxisInfo(part, name));
  machine::MachineMotions motions;
  for (int i = 0; i < kMotions; ++i) {
    Orvo::MotionContext context;
    context.setMachineId(1);
    context.setNcProgramId(1 + i / 1000);
    context.setToolpathId(i);
    context.setWorkOffset(54);
    if (i % 4 == 0) {
      context.openPattern(i / 4);
      context.setPatternInstance(i % 16);
    }
    machine::MachineMotion motion(context);
    motion.setAxisOrdering(ordering);
    motion.appendEntity(Orvo::AxisValues(
        std::vector<Orvo::AxisValue>{linear(random), linear(random), linear(random), angle(random), angle(random)}));
    motions.insert(std::move(motion));
  }
  return motions;
}

struct Data {
  persist::PersistClassDatabase database;
  machine::MachineMotions motions = makeMotions();
  Json::Value tree;
  std::string text;
  std::string bytes;
  Data() {
    machine::MachineClassDatabasePopulator().populate(database);
    text = persist::JsonPersistWriter::write(motions);
    tree = persist::JsonPersistReader::parse(text);
    bytes = persist::BinaryPersistWriter::write(motions);
  }
};

Data& data() {
  static Data d;
  return d;
}

// The writer and reader settings of the JSON form, for the bare runs.
std::unique_ptr<Json::StreamWriter> bareWriter() {
  Json::StreamWriterBuilder builder;
  builder["indentation"] = "\t";
  builder["commentStyle"] = "None";
  builder["precision"] = 17;
  builder["useSpecialFloats"] = true;
  builder["emitUTF8"] = true;
  return std::unique_ptr<Json::StreamWriter>(builder.newStreamWriter());
}

std::unique_ptr<Json::CharReader> bareReader() {
  Json::CharReaderBuilder builder;
  Json::CharReaderBuilder::strictMode(&builder.settings_);
  builder["allowSpecialFloats"] = true;
  builder["stackLimit"] = 256;
  return std::unique_ptr<Json::CharReader>(builder.newCharReader());
}

void BM_Json_Write(benchmark::State& state) {
  Data& d = data();
  for (auto _ : state) {
    std::string text = persist::JsonPersistWriter::write(d.motions);
    benchmark::DoNotOptimize(text.data());
  }
  state.SetItemsProcessed(state.iterations() * kMotions);
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * d.text.size()));
}

void BM_Bare_JsonWrite(benchmark::State& state) {
  Data& d = data();
  auto const writer = bareWriter();
  for (auto _ : state) {
    std::ostringstream out;
    writer->write(d.tree, &out);
    out << '\n';
    std::string text = out.str();
    benchmark::DoNotOptimize(text.data());
  }
  state.SetItemsProcessed(state.iterations() * kMotions);
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * d.text.size()));
}

void BM_Json_Read(benchmark::State& state) {
  Data& d = data();
  for (auto _ : state) {
    machine::MachineMotions motions;
    persist::JsonPersistReader::read(d.text, d.database, motions);
    benchmark::DoNotOptimize(motions.motionRange().data());
  }
  state.SetItemsProcessed(state.iterations() * kMotions);
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * d.text.size()));
}

void BM_Bare_JsonParse(benchmark::State& state) {
  Data& d = data();
  auto const reader = bareReader();
  for (auto _ : state) {
    Json::Value tree;
    std::string errors;
    if (!reader->parse(d.text.data(), d.text.data() + d.text.size(), &tree, &errors)) state.SkipWithError("parse");
    benchmark::DoNotOptimize(&tree);
  }
  state.SetItemsProcessed(state.iterations() * kMotions);
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * d.text.size()));
}

void BM_Binary_Write(benchmark::State& state) {
  Data& d = data();
  for (auto _ : state) {
    std::string bytes = persist::BinaryPersistWriter::write(d.motions);
    benchmark::DoNotOptimize(bytes.data());
  }
  state.SetItemsProcessed(state.iterations() * kMotions);
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * d.bytes.size()));
}

void BM_Binary_Read(benchmark::State& state) {
  Data& d = data();
  for (auto _ : state) {
    machine::MachineMotions motions;
    persist::BinaryPersistReader::read(d.bytes, d.database, motions);
    benchmark::DoNotOptimize(motions.motionRange().data());
  }
  state.SetItemsProcessed(state.iterations() * kMotions);
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * d.bytes.size()));
}

BENCHMARK(BM_Json_Write)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Bare_JsonWrite)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Json_Read)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Bare_JsonParse)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Binary_Write)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Binary_Read)->Unit(benchmark::kMillisecond);

// Keeps the CPU time per iteration of each benchmark for the ratios.
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
  std::printf("JSON text %zu bytes, binary %zu bytes, %d motions\n", data().text.size(), data().bytes.size(),
              kMotions);
  printRatio(reporter, "BM_Json_Write", "BM_Bare_JsonWrite", 1.3);
  printRatio(reporter, "BM_Json_Read", "BM_Bare_JsonParse", 1.3);
  printRatio(reporter, "BM_Binary_Write", "BM_Json_Write", 0.2);
  printRatio(reporter, "BM_Binary_Read", "BM_Json_Read", 0.2);
  return 0;
}
