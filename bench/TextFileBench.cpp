// Writing and reading a stream text file of 1,000,000 events, mtkit against
// a baseline that writes the same lines with fprintf("%.17g") and parses
// them with strtod, in one run. Both write through a 32768-byte stdio buffer
// and both readers call the same do-nothing stream.
//
// Ratios are read pairwise: BM_Mtkit_Write / BM_Baseline_Write and
// BM_Mtkit_Read / BM_Baseline_Read.

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "machine/machine/SimulationStream.h"
#include "machine/machine/SimulationStreamTextFileReader.h"
#include "machine/machine/TextFileSimulationStream.h"

namespace {

using machine::MotionSettings;
using machine::SimulationStream;

constexpr int kEvents = 1000000;
constexpr int kAxes = 5;

// A terminal stream that only counts, so that the readers are timed and not
// what receives their events.
class CountingStream final : public SimulationStream {
public:
  long events = 0;

private:
  void doOnAxisOrdering(Orvo::AxisOrdering const&) override { ++events; }
  void doOnAxisValues(Orvo::AxisValues const& v) override { events += v.size() > 0; }
  void doOnNcOutput(std::string const& t) override { events += !t.empty(); }
  void doOnNcProgramId(int) override { ++events; }
  void doOnOperationId(int) override { ++events; }
  void doOnMachineId(int) override { ++events; }
  void doOnCommand(machine::SimulationStreamCommand const&) override { ++events; }
  void doOnPatternOpen(int) override { ++events; }
  void doOnPatternClose(int) override { ++events; }
  void doOnPatternChildInstance(int) override { ++events; }
  void doOnSection(SectionType) override { ++events; }
  void doOnSectionEnd() override { ++events; }
  void doOnWorkOffset(int) override { ++events; }
  void doOnIssue(IssueCode, std::string const&) override { ++events; }
  void doOnNCContext(Orvo::NCContext const&) override { ++events; }
  void doOnNCTool(Orvo::NCTool const&) override { ++events; }
  void doOnSimGroup(std::string const&) override { ++events; }
  void doOnSimGroupEnd(std::string const&) override { ++events; }
  void doOnTaggedFrame(Orvo::TaggedFrame const&) override { ++events; }
  void doOnLinear(Orvo::Point3D const&, double, MotionSettings const&) override { ++events; }
  void doOnRapid(Orvo::Point3D const&, MotionSettings const&) override { ++events; }
  void doOnHelical(Orvo::Helix const&, Orvo::Point3D const&, double, MotionSettings const&) override { ++events; }
  void doOnLinear5D(Orvo::Point3D const&, Orvo::Vector3D const&, double, MotionSettings const&) override {
    ++events;
  }
  void doOnRapid5D(Orvo::Point3D const&, Orvo::Vector3D const&, MotionSettings const&) override { ++events; }
  void doOnNcCodeMovement(machine::NcCodeMovement const&) override { ++events; }
  void doOnTCPCoordMode(bool) override { ++events; }
  void doOnTiltedWorkPlane(machine::NcCodeTiltedWorkPlane const&) override { ++events; }
  void doOnRetractAlongToolAxisToLimit() override { ++events; }
  void doOnSpindleSpeed(double) override { ++events; }
};

// The events of a five-axis finishing pass: poses, 5D feeds and rapids, a
// 3D link now and then, and a block of NC output every tenth event.
struct Events {
  std::vector<double> numbers;
  std::vector<std::string> texts;
  MotionSettings settings{Orvo::NCStream::MOVEMENT_CUTTING, machine::NcCodeKinematicInterpolationMode::SYNCHRONIZED,
                          machine::NcCodeRotaryAxisTraverseMode::SHORTEST};
  Events() {
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> position(-400.0, 400.0);
    numbers.resize(static_cast<std::size_t>(kEvents) * 8);
    for (double& n : numbers) n = position(random);
    for (int i = 0; i < 64; ++i) texts.push_back("N" + std::to_string(10 * i) + " G1 X12.345 Y-6.789 Z0.5 A-12.5 C90.");
  }
  double const* at(int event) const { return numbers.data() + static_cast<std::size_t>(event) * 8; }
};

Events const& events() {
  static Events const e;
  return e;
}

std::filesystem::path scratch(char const* name) {
  return std::filesystem::temp_directory_path() /
         ("mtkit_textfile_bench_" + std::to_string(::getpid()) + "_" + name + ".txt");
}

Orvo::AxisOrdering ordering() {
  Orvo::AxisOrdering o;
  for (char const* name : {"X", "Y", "Z", "A", "C"}) o.append(Orvo::AxisInfo(std::string("part ") + name, name));
  return o;
}

void writeMtkit(std::filesystem::path const& path) {
  Events const& e = events();
  machine::TextFileSimulationStream stream(path);
  stream.onAxisOrdering(ordering());
  Orvo::AxisValues values(kAxes);
  for (int i = 0; i < kEvents; ++i) {
    double const* n = e.at(i);
    switch (i % 10) {
      case 0:
      case 2:
      case 4:
      case 7:
        for (int a = 0; a < kAxes; ++a) values.setValue(a, n[a]);
        stream.onAxisValues(values);
        break;
      case 1:
      case 3:
      case 8: stream.onLinear5D(Orvo::Point3D(n[0], n[1], n[2]), Orvo::Vector3D(0.6, 0, 0.8), n[6], e.settings); break;
      case 5: stream.onLinear(Orvo::Point3D(n[0], n[1], n[2]), n[3], e.settings); break;
      case 6: stream.onRapid5D(Orvo::Point3D(n[0], n[1], n[2]), Orvo::Vector3D(0, 0.6, 0.8), e.settings); break;
      default: stream.onNcOutput(e.texts[static_cast<std::size_t>(i) % e.texts.size()]); break;
    }
  }
}

// The baseline writer: the same lines, each written by one fprintf.
void writeBaseline(std::filesystem::path const& path) {
  Events const& e = events();
  std::FILE* file = std::fopen(path.c_str(), "wb");
  static char buffer[32768];
  std::setvbuf(file, buffer, _IOFBF, sizeof buffer);
  std::fputs("TextFileSimulationStream: 1 0\nApiVersion: 1 0\n", file);
  Orvo::AxisOrdering const o = ordering();
  std::fprintf(file, "AxisOrdering: 2 %d", o.size());
  for (int a = 0; a < o.size(); ++a) std::fprintf(file, " \"%s\" \"%s\"", o.axisName(a).name().c_str(), o.machinePartId(a).c_str());
  std::fputc('\n', file);
  unsigned const flags = e.settings.flags();
  std::string escaped;
  for (int i = 0; i < kEvents; ++i) {
    double const* n = e.at(i);
    switch (i % 10) {
      case 0:
      case 2:
      case 4:
      case 7:
        std::fprintf(file, "AxisValues: 1 %d", kAxes);
        for (int a = 0; a < kAxes; ++a) std::fprintf(file, " %.17g", n[a]);
        std::fputc('\n', file);
        break;
      case 1:
      case 3:
      case 8:
        std::fprintf(file, "Linear5D: 1 %.17g %.17g %.17g %.17g %.17g %.17g %.17g %u\n", n[0], n[1], n[2], 0.6, 0.0, 0.8,
                     n[6], flags);
        break;
      case 5: std::fprintf(file, "Linear: 1 %.17g %.17g %.17g %.17g %u\n", n[0], n[1], n[2], n[3], flags); break;
      case 6:
        std::fprintf(file, "Rapid5D: 1 %.17g %.17g %.17g %.17g %.17g %.17g %u\n", n[0], n[1], n[2], 0.0, 0.6, 0.8, flags);
        break;
      default: {
        std::string const& text = e.texts[static_cast<std::size_t>(i) % e.texts.size()];
        escaped.assign(1, '"');
        for (char c : text) {
          if (c == '"' || c == '\\') escaped.push_back('\\');
          escaped.push_back(c);
        }
        escaped.push_back('"');
        std::fprintf(file, "NcOutput: 1 %s\n", escaped.c_str());
        break;
      }
    }
  }
  std::fclose(file);
}

// The baseline reader: fgets for the lines, strtol, strtoul and strtod for
// the fields, the same checks and the same events.
void readBaseline(std::filesystem::path const& path, SimulationStream& target) {
  std::FILE* file = std::fopen(path.c_str(), "rb");
  std::vector<char> line(1 << 20);
  std::fgets(line.data(), static_cast<int>(line.size()), file);
  std::string text;
  std::vector<Orvo::AxisValue> values;
  while (std::fgets(line.data(), static_cast<int>(line.size()), file)) {
    char* p = line.data();
    char* const colon = std::strchr(p, ':');
    if (!colon) continue;
    std::size_t const length = static_cast<std::size_t>(colon - p) + 1;
    char* rest = colon + 1;
    int const version = static_cast<int>(std::strtol(rest, &rest, 10));
    auto is = [&](char const* keyword) { return std::strlen(keyword) == length && std::memcmp(keyword, p, length) == 0; };
    if (is("AxisValues:")) {
      int const count = static_cast<int>(std::strtol(rest, &rest, 10));
      if (version != 1 || count == 0) continue;
      if (count != target.numAxesInOrdering()) break;
      values.clear();
      for (int a = 0; a < count; ++a) values.emplace_back(std::strtod(rest, &rest));
      target.onAxisValues(Orvo::AxisValues(values));
    } else if (is("Linear5D:")) {
      double v[7];
      for (double& x : v) x = std::strtod(rest, &rest);
      MotionSettings s;
      s.setFlags(static_cast<unsigned>(std::strtoul(rest, &rest, 10)));
      target.onLinear5D(Orvo::Point3D(v[0], v[1], v[2]), Orvo::Vector3D(v[3], v[4], v[5]), v[6], s);
    } else if (is("Linear:")) {
      double v[4];
      for (double& x : v) x = std::strtod(rest, &rest);
      MotionSettings s;
      s.setFlags(static_cast<unsigned>(std::strtoul(rest, &rest, 10)));
      target.onLinear(Orvo::Point3D(v[0], v[1], v[2]), v[3], s);
    } else if (is("Rapid5D:")) {
      double v[6];
      for (double& x : v) x = std::strtod(rest, &rest);
      MotionSettings s;
      s.setFlags(static_cast<unsigned>(std::strtoul(rest, &rest, 10)));
      target.onRapid5D(Orvo::Point3D(v[0], v[1], v[2]), Orvo::Vector3D(v[3], v[4], v[5]), s);
    } else if (is("NcOutput:")) {
      text.clear();
      char* q = std::strchr(rest, '"');
      if (!q) continue;
      for (++q; *q && *q != '"'; ++q) {
        if (*q == '\\' && q[1]) ++q;
        text.push_back(*q);
      }
      target.onNcOutput(text);
    } else if (is("ApiVersion:")) {
      target.onApiVersion(version, static_cast<int>(std::strtol(rest, &rest, 10)));
    } else if (is("AxisOrdering:")) {
      int const count = static_cast<int>(std::strtol(rest, &rest, 10));
      target.onAxisOrdering(Orvo::AxisOrdering(count));
    }
  }
  std::fclose(file);
}

struct Files {
  std::filesystem::path mtkit = scratch("mtkit");
  std::filesystem::path baseline = scratch("baseline");
  Files() { writeMtkit(mtkit); }
  ~Files() {
    std::filesystem::remove(mtkit);
    std::filesystem::remove(baseline);
  }
};

Files& files() {
  static Files f;
  return f;
}

void BM_Mtkit_Write(benchmark::State& state) {
  events();
  for (auto _ : state) writeMtkit(files().mtkit);
  state.counters["bytes"] = static_cast<double>(std::filesystem::file_size(files().mtkit));
}

void BM_Baseline_Write(benchmark::State& state) {
  events();
  for (auto _ : state) writeBaseline(files().baseline);
  // Both writers must have written the same bytes for the race to be fair.
  state.counters["same_bytes"] =
      std::filesystem::file_size(files().baseline) == std::filesystem::file_size(files().mtkit) ? 1 : 0;
}

void BM_Mtkit_Read(benchmark::State& state) {
  long seen = 0;
  for (auto _ : state) {
    auto target = std::make_shared<CountingStream>();
    machine::SimulationStreamTextFileReader reader(target);
    reader.import(files().mtkit);
    if (!reader.isOk()) state.SkipWithError("the reader failed");
    seen = target->events;
  }
  state.counters["events"] = static_cast<double>(seen);
}

void BM_Baseline_Read(benchmark::State& state) {
  long seen = 0;
  for (auto _ : state) {
    CountingStream target;
    readBaseline(files().mtkit, target);
    seen = target.events;
  }
  state.counters["events"] = static_cast<double>(seen);
}

}  // namespace

BENCHMARK(BM_Mtkit_Write)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_Baseline_Write)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_Mtkit_Read)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_Baseline_Read)->Unit(benchmark::kMillisecond)->Iterations(3);

BENCHMARK_MAIN();
