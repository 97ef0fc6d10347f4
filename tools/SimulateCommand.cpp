#include "SimulateCommand.h"

#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <optional>
#include <ostream>
#include <sstream>

#include "CommandSupport.h"
#include "CsvPoseSimulationStream.h"
#include "NullSimulationStream.h"
#include "RunStatisticsSimulationStream.h"
#include "machine/machine/SimulationStreamTextFileReader.h"
#include "machine/machine/SolverSimulationStream.h"
#include "machine/machine/TextFileSimulationStream.h"

namespace mtkit_tool {
namespace {

using machine::SimulationStream;

char const* const kUsage =
    "mtkit simulate MACHINE STREAM [-o OUT] [--csv] [--follow [--idle SECONDS]] [--poses N]";

/// A file at least this long gets a progress bar when standard error is a terminal.
constexpr std::uintmax_t kProgressBarBytes = 1u << 20;

struct Options {
  std::string machine;
  std::string stream;
  std::string output;
  bool csv = false;
  bool follow = false;
  double idleSeconds = 5.0;
  int poses = 5;
};

std::optional<Options> parseOptions(std::vector<std::string> const& args, std::ostream& err) {
  Options options;
  std::vector<std::string> positional;
  for (std::size_t i = 0; i < args.size(); ++i) {
    std::string const& arg = args[i];
    auto value = [&](char const* what) -> std::optional<std::string> {
      if (i + 1 >= args.size()) {
        err << "mtkit simulate: " << arg << " needs " << what << "\n";
        return std::nullopt;
      }
      return args[++i];
    };
    if (arg == "-o" || arg == "--output") {
      auto v = value("a file name");
      if (!v) return std::nullopt;
      options.output = *v;
    } else if (arg == "--csv") {
      options.csv = true;
    } else if (arg == "--follow") {
      options.follow = true;
    } else if (arg == "--idle") {
      auto v = value("a number of seconds");
      if (!v) return std::nullopt;
      auto const seconds = parseNumber(*v);
      if (!seconds || *seconds < 0) {
        err << "mtkit simulate: --idle needs a number of seconds, got '" << *v << "'\n";
        return std::nullopt;
      }
      options.idleSeconds = *seconds;
    } else if (arg == "--poses") {
      auto v = value("a count");
      if (!v) return std::nullopt;
      auto const count = parseNumber(*v);
      if (!count || *count < 0 || *count != static_cast<int>(*count)) {
        err << "mtkit simulate: --poses needs a count, got '" << *v << "'\n";
        return std::nullopt;
      }
      options.poses = static_cast<int>(*count);
    } else if (arg.size() > 1 && arg[0] == '-') {
      err << "mtkit simulate: unknown option '" << arg << "': " << kUsage << "\n";
      return std::nullopt;
    } else {
      positional.push_back(arg);
    }
  }
  if (positional.size() != 2) {
    err << "mtkit simulate: expected a machine file and a stream file: " << kUsage << "\n";
    return std::nullopt;
  }
  options.machine = positional[0];
  options.stream = positional[1];
  return options;
}

long countLines(std::string const& path) {
  std::FILE* file = std::fopen(path.c_str(), "rb");
  if (!file) return 0;
  static char buffer[1 << 16];
  long lines = 0;
  std::size_t got;
  while ((got = std::fread(buffer, 1, sizeof buffer, file)) > 0)
    for (std::size_t i = 0; i < got; ++i) lines += buffer[i] == '\n';
  std::fclose(file);
  return lines;
}

// Draws "[#####.....]  45%" on standard error, at most ten times a second.
class ProgressBar {
public:
  explicit ProgressBar(long totalLines) : m_total(totalLines > 0 ? totalLines : 1) {}
  void update(long line) {
    auto const now = std::chrono::steady_clock::now();
    if (now - m_last < std::chrono::milliseconds(100)) return;
    m_last = now;
    draw(line);
  }
  void finish() {
    draw(m_total);
    std::fputc('\n', stderr);
  }

private:
  void draw(long line) {
    int const width = 40;
    double const fraction = std::min(1.0, static_cast<double>(line) / static_cast<double>(m_total));
    int const filled = static_cast<int>(fraction * width);
    std::string bar(static_cast<std::size_t>(filled), '#');
    bar.append(static_cast<std::size_t>(width - filled), '.');
    std::fprintf(stderr, "\rsimulate [%s] %3d%%", bar.c_str(), static_cast<int>(fraction * 100.0));
    std::fflush(stderr);
  }

  long m_total;
  std::chrono::steady_clock::time_point m_last{};
};

std::string sectionName(SimulationStream::SectionType type) {
  switch (type) {
    case SimulationStream::SectionType::Operation: return "Operation";
    case SimulationStream::SectionType::BeforeOperation: return "BeforeOperation";
    case SimulationStream::SectionType::AfterOperation: return "AfterOperation";
    case SimulationStream::SectionType::NoTool: return "NoTool";
    default: return "INVALID";
  }
}

}  // namespace

int runSimulate(std::vector<std::string> const& args, std::ostream& out, std::ostream& err) {
  auto const options = parseOptions(args, err);
  if (!options) return 1;

  auto machine = loadMachine("simulate", options->machine, err);
  if (!machine) return 1;
  auto solver = machine->makeMachineSolver();
  if (!solver) {
    err << "mtkit simulate: '" << options->machine
        << "': the machine has fewer than two linear axes on its head and table chains; there is nothing to solve\n";
    return 1;
  }
  if (!std::ifstream(options->stream, std::ios::binary)) {
    err << "mtkit simulate: cannot open '" << options->stream << "'\n";
    return 1;
  }

  // The chain: reader, input statistics, solver, output statistics, the
  // writer of OUT. The statistics links ask the reader for the line that is
  // being replayed.
  machine::SimulationStreamTextFileReader* reader = nullptr;
  auto lineSource = [&reader]() { return reader ? reader->lineNumber() : 0L; };
  std::unique_ptr<SimulationStream> terminal;
  if (options->output.empty())
    terminal = std::make_unique<NullSimulationStream>();
  else if (options->csv)
    terminal = std::make_unique<CsvPoseSimulationStream>(options->output, lineSource);
  else
    terminal = std::make_unique<machine::TextFileSimulationStream>(options->output);
  SimulationStream const* const terminalView = terminal.get();
  if (!terminal->isOk()) {
    err << "mtkit simulate: cannot write '" << options->output << "'\n";
    return 1;
  }
  auto output = std::make_unique<RunStatisticsSimulationStream>(std::move(terminal), lineSource, options->poses);
  RunStatisticsSimulationStream const* const outputView = output.get();
  auto solverStream = std::make_unique<machine::SolverSimulationStream>(std::move(output), std::move(solver));
  auto input = std::make_shared<RunStatisticsSimulationStream>(std::move(solverStream), lineSource, 0);
  machine::Machine const& machineRef = *machine;
  input->setOrderingCheck([&machineRef](Orvo::AxisOrdering const& ordering) -> std::optional<std::string> {
    for (int i = 0; i < ordering.size(); ++i) {
      if (!machineRef.find(ordering.machinePartId(i)))
        return "the axis ordering names part '" + ordering.machinePartId(i).id() + "' (axis " +
               ordering.axisName(i).name() + "), which the machine does not have (axes: " + axisNames(machineRef) +
               ")";
    }
    return std::nullopt;
  });

  machine::SimulationStreamTextFileReader importer(input);
  reader = &importer;

  std::optional<ProgressBar> progress;
  if (options->follow) {
    // The writer counts as done once the file has kept its size for the
    // idle time: the format has no end record, and a writer flushes in
    // 32768-byte steps, so silence is the one sign a reader can see.
    auto lastSize = std::make_shared<std::uintmax_t>(static_cast<std::uintmax_t>(-1));
    auto lastChange = std::make_shared<std::chrono::steady_clock::time_point>(std::chrono::steady_clock::now());
    std::string const path = options->stream;
    double const idle = options->idleSeconds;
    importer.setIsPostProcessingCompletedCallback([=]() {
      std::error_code error;
      std::uintmax_t const size = std::filesystem::file_size(path, error);
      auto const now = std::chrono::steady_clock::now();
      if (error || size != *lastSize) {
        *lastSize = size;
        *lastChange = now;
        return false;
      }
      return std::chrono::duration<double>(now - *lastChange).count() >= idle;
    });
  } else if (::isatty(STDERR_FILENO)) {
    std::error_code error;
    if (std::filesystem::file_size(options->stream, error) >= kProgressBarBytes && !error) {
      progress.emplace(countLines(options->stream));
      input->setProgress([&progress, &importer]() { progress->update(importer.lineNumber()); }, 4096);
    }
  }

  auto const start = std::chrono::steady_clock::now();
  importer.import(options->stream);
  double const seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  if (progress) progress->finish();

  if (input->refusal()) {
    err << "mtkit simulate: " << options->stream << ":" << input->refusalLine() << ": " << *input->refusal() << "\n";
    return 1;
  }
  if (!importer.isOk()) {
    if (importer.lineNumber() <= 1)
      err << "mtkit simulate: '" << options->stream
          << "' is not a simulation stream text file: its first line is not \"TextFileSimulationStream: 1 0\"\n";
    else
      err << "mtkit simulate: " << options->stream << ":" << importer.lineNumber()
          << ": the number of axis values does not fit the axis ordering ("
          << (input->ordering().size() > 0 ? std::to_string(input->ordering().size()) + " axes"
                                           : std::string("no ordering yet"))
          << ")\n";
    return 1;
  }
  if (!terminalView->isOk()) {
    err << "mtkit simulate: writing '" << options->output << "' failed\n";
    return 1;
  }

  // The summary.
  std::ostringstream summary;
  summary << "machine:        " << options->machine << " (" << axisNames(*machine) << ")\n";
  summary << "stream:         " << options->stream << ", " << importer.lineNumber() << " lines\n";
  summary << "events:         " << input->events() << " read, " << outputView->events() << " passed on\n";
  summary << "sections:       " << input->numSections();
  if (!input->sections().empty()) {
    summary << " (";
    bool first = true;
    for (auto const& [type, count] : input->sections()) {
      summary << (first ? "" : ", ") << sectionName(type) << " " << count;
      first = false;
    }
    summary << ")";
  }
  summary << "\n";
  summary << "poses:          " << outputView->axisValues() << "\n";
  long totalIssues = 0;
  for (auto const& entry : outputView->issues()) totalIssues += entry.second;
  summary << "issues:         " << totalIssues;
  if (totalIssues > 0) {
    summary << " (";
    bool first = true;
    for (auto const& [code, count] : outputView->issues()) {
      bool const warning = SimulationStream::severityOfIssue(static_cast<SimulationStream::IssueCode>(code)).isWarning();
      summary << (first ? "" : ", ") << "code " << code << " " << (warning ? "warning" : "error") << ": " << count;
      first = false;
    }
    summary << ")";
  }
  summary << "\n";
  int const solveFailed = static_cast<int>(SimulationStream::IssueCode::SOLVE_FAILED);
  summary << "solve failures: " << outputView->issuesOf(solveFailed) - input->issuesOf(solveFailed) << "\n";
  char time[32];
  std::snprintf(time, sizeof time, "%.3f s", seconds);
  summary << "time:           " << time << "\n";
  if (!options->output.empty()) summary << "output:         " << options->output << (options->csv ? " (CSV)" : "") << "\n";
  if (!outputView->firstPoses().empty()) {
    summary << "first poses:\n";
    Orvo::AxisOrdering const& ordering = outputView->ordering();
    for (auto const& pose : outputView->firstPoses()) {
      summary << "  line " << pose.line << ":";
      for (int i = 0; i < pose.values.size(); ++i) {
        std::string const name = i < ordering.size() ? ordering.axisName(i).name() : "#" + std::to_string(i);
        summary << " " << name << "=" << formatNumber(pose.values.value(i).value());
      }
      summary << "\n";
    }
  }
  out << summary.str();
  return 0;
}

}  // namespace mtkit_tool
