#include "SimulateCommand.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <ostream>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "CommandSupport.h"
#include "CsvPoseSimulationStream.h"
#include "MotionRecordingSimulationStream.h"
#include "MotionsFile.h"
#include "NullSimulationStream.h"
#include "RunStatisticsSimulationStream.h"
#include "StrictStreamCheck.h"
#include "ToolTable.h"
#include "machine/machine/MachineFileLoader.h"
#include "machine/machine/NCToolInsertionSimulationStream.h"
#include "machine/machine/PostChainSimulationStream.h"
#include "machine/machine/SimulationStreamTextFileReader.h"
#include "machine/machine/SolverSimulationStream.h"
#include "machine/machine/TextFileSimulationStream.h"
#include "machine/machine/TravelLimitSimulationStream.h"

namespace mtkit_tool {
namespace {

using machine::SimulationStream;

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
  /// The tools of the stream's operations, see ToolTable.
  std::string tools;
  /// The solver stream alone instead of the standard chain.
  bool solverOnly = false;
  /// Where the machine motions of the run go, and in which form.
  std::string motions;
  std::optional<MotionsFormat> motionsFormat;
  /// Exit 1 on any error issue, solve failure, over-travel or malformed
  /// line, and check each line of the stream strictly.
  bool strict = false;
  /// The hidden --test-wait-fifo PATH: see FollowClock.
  std::string testWaitFifo;
};

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

/// The tools of --tools, and the operations that asked for a tool the file
/// does not have.
struct ToolUse {
  ToolTable table;
  std::set<int> missing;
};

// The chain a stream is replayed through: reader, input statistics, the
// tool insertion of --tools, the standard chain (catch errors, radius
// compensation, solver) or with --solver-only the solver alone, output
// statistics, the travel check, the writer of OUT. The statistics links and
// the travel check ask the reader for the line that is being replayed. The
// travel check stands behind the output statistics, which so count the
// issues of the stream and the chain; the travel check counts its own, by
// axis, and OUT records them all.
struct Chain {
  std::unique_ptr<machine::SimulationStreamTextFileReader> reader;
  std::shared_ptr<RunStatisticsSimulationStream> input;
  RunStatisticsSimulationStream const* output = nullptr;
  machine::TravelLimitSimulationStream const* travel = nullptr;
  SimulationStream const* terminal = nullptr;
  std::shared_ptr<ToolUse> tools;
  /// With --motions, the link ahead of the terminal that records them.
  MotionRecordingSimulationStream* motions = nullptr;
};

std::unique_ptr<machine::MachineSolver> makeSolver(Options const& options, machine::Machine const& machine,
                                                   std::ostream& err) {
  auto solver = machine.makeMachineSolver();
  if (!solver)
    err << "mtkit simulate: '" << options.machine
        << "': the machine has fewer than two linear axes on its head and table chains; there is nothing to solve\n";
  return solver;
}

/// The tools of --tools; null without the option, and empty after a message
/// on `err` for a file that cannot be used.
std::optional<std::shared_ptr<ToolUse>> readTools(Options const& options, std::ostream& err) {
  if (options.tools.empty()) return std::shared_ptr<ToolUse>();
  std::string error;
  auto table = ToolTable::read(options.tools, error);
  if (!table) {
    err << "mtkit simulate: --tools: " << error << "\n";
    return std::nullopt;
  }
  auto use = std::make_shared<ToolUse>();
  use->table = std::move(*table);
  return use;
}

bool canOpenStream(Options const& options, std::ostream& err) {
  auto const file = machine::MachineFileLoader::checkReadable(options.stream);
  if (file.ok()) return true;
  err << "mtkit simulate: " << file.error << "\n";
  return false;
}

/// The stream of OUT: nothing, CSV poses or a stream text file.
std::unique_ptr<SimulationStream> makeTerminal(Options const& options, std::function<long()> const& lineSource) {
  if (options.output.empty()) return std::make_unique<NullSimulationStream>();
  if (options.csv) return std::make_unique<CsvPoseSimulationStream>(options.output, lineSource);
  return std::make_unique<machine::TextFileSimulationStream>(options.output);
}

/// An ordering must name parts of the machine, or the solver cannot move them.
RunStatisticsSimulationStream::OrderingCheck orderingCheckFor(machine::Machine const& machine) {
  return [&machine](Orvo::AxisOrdering const& ordering) -> std::optional<std::string> {
    for (int i = 0; i < ordering.size(); ++i) {
      if (!machine.find(ordering.machinePartId(i)))
        return "the axis ordering names part '" + ordering.machinePartId(i).id() + "' (axis " +
               ordering.axisName(i).name() + "), which the machine does not have (axes: " + axisNames(machine) + ")";
    }
    return std::nullopt;
  };
}

std::optional<Chain> buildChain(Options const& options, machine::Machine const& machine,
                                std::unique_ptr<machine::MachineSolver> solver, std::shared_ptr<ToolUse> tools,
                                std::ostream& err) {
  // The reader comes last, since it takes the chain's head; the links that
  // ask it for the line find it through this slot.
  auto readerSlot = std::make_shared<machine::SimulationStreamTextFileReader const*>(nullptr);
  std::function<long()> const lineSource = [readerSlot]() { return *readerSlot ? (*readerSlot)->lineNumber() : 0L; };

  // What comes out of the chain goes by the line of the motion it came
  // from, which the output statistics know (see RunStatisticsSimulationStream);
  // they too come later, so through a slot as well.
  auto outputSlot = std::make_shared<RunStatisticsSimulationStream const*>(nullptr);
  std::function<long()> const outputLineSource = [outputSlot, lineSource]() {
    return *outputSlot ? (*outputSlot)->currentLine() : lineSource();
  };

  Chain chain;
  auto terminal = makeTerminal(options, outputLineSource);
  chain.terminal = terminal.get();
  if (!terminal->isOk()) {
    err << "mtkit simulate: cannot write '" << options.output << "'\n";
    return std::nullopt;
  }
  if (!options.motions.empty()) {
    auto recording = std::make_unique<MotionRecordingSimulationStream>(std::move(terminal));
    chain.motions = recording.get();
    terminal = std::move(recording);
  }
  auto travel = std::make_unique<machine::TravelLimitSimulationStream>(std::move(terminal), machine);
  travel->setLineSource(outputLineSource);
  chain.travel = travel.get();
  auto output = std::make_unique<RunStatisticsSimulationStream>(std::move(travel), lineSource, options.poses);
  output->setReadsMotionLines(true);
  chain.output = output.get();
  *outputSlot = output.get();
  std::unique_ptr<SimulationStream> head;
  if (options.solverOnly)
    head = std::make_unique<machine::SolverSimulationStream>(std::move(output), std::move(solver));
  else
    head = std::make_unique<machine::PostChainSimulationStream>(std::move(output), std::move(solver));
  if (tools) {
    // A stream file records no tools: each section gets its operation's
    // tool from the file, and the compensator its radius.
    chain.tools = tools;
    auto finder = [tools](int operationId) {
      if (!tools->table.has(operationId)) tools->missing.insert(operationId);
      return tools->table.toolFor(operationId);
    };
    head = std::make_unique<machine::NCToolInsertionSimulationStream>(finder, std::move(head));
  }
  chain.input = std::make_shared<RunStatisticsSimulationStream>(std::move(head), lineSource, 0);
  chain.input->setOrderingCheck(orderingCheckFor(machine));
  chain.input->setMarksMotionLines(true);
  chain.reader = std::make_unique<machine::SimulationStreamTextFileReader>(chain.input);
  *readerSlot = chain.reader.get();
  return chain;
}

/// The time that --follow goes by: the steady clock, and the reader's own
/// one-second sleep. Under the hidden option --test-wait-fifo PATH a test
/// drives it instead, so that it can grow the file between known steps with
/// no sleep and no race: each wait reads one byte from the FIFO at PATH and
/// counts as the time asked for. The FIFO is opened at the first wait, which
/// comes only after all there was has been read; so when the test's end of
/// it opens, the tool has read the file up to its end. Once the test closes
/// its end, every wait returns at once.
class FollowClock {
public:
  explicit FollowClock(std::string fifo) : m_fifo(std::move(fifo)) {}
  ~FollowClock() {
    if (m_fifoDescriptor >= 0) ::close(m_fifoDescriptor);
  }
  FollowClock(FollowClock const&) = delete;
  FollowClock& operator=(FollowClock const&) = delete;

  bool isDrivenByTest() const noexcept { return !m_fifo.empty(); }
  double seconds() const {
    if (!isDrivenByTest())
      return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
    return m_waited;
  }
  /// Only for a clock driven by a test; otherwise the reader sleeps itself.
  void wait(std::chrono::seconds duration) {
    if (m_fifoDescriptor < 0) m_fifoDescriptor = ::open(m_fifo.c_str(), O_RDONLY);
    char byte;
    if (m_fifoDescriptor >= 0 && ::read(m_fifoDescriptor, &byte, 1) < 0) {
      // Interrupted or broken: the wait is over either way.
    }
    m_waited += static_cast<double>(duration.count());
  }

private:
  std::string m_fifo;
  int m_fifoDescriptor = -1;
  double m_waited = 0.0;
};

/// The writer counts as done once the file has kept its size for the idle
/// time: the format has no end record, and a writer flushes in 32768-byte
/// steps, so silence is the one sign a reader can see.
std::function<bool()> followCompletion(Options const& options, std::shared_ptr<FollowClock> const& clock) {
  auto lastSize = std::make_shared<std::uintmax_t>(static_cast<std::uintmax_t>(-1));
  auto lastChange = std::make_shared<double>(clock->seconds());
  std::string const path = options.stream;
  double const idle = options.idleSeconds;
  return [=]() {
    std::error_code error;
    std::uintmax_t const size = std::filesystem::file_size(path, error);
    double const now = clock->seconds();
    if (error || size != *lastSize) {
      *lastSize = size;
      *lastChange = now;
      return false;
    }
    return now - *lastChange >= idle;
  };
}

/// Reads the whole stream into the chain; the seconds it took.
double replay(Options const& options, Chain& chain) {
  machine::SimulationStreamTextFileReader& reader = *chain.reader;
  std::optional<ProgressBar> progress;
  if (options.follow) {
    auto const clock = std::make_shared<FollowClock>(options.testWaitFifo);
    if (clock->isDrivenByTest())
      reader.setSleepFunction([clock](std::chrono::seconds duration) { clock->wait(duration); });
    reader.setIsPostProcessingCompletedCallback(followCompletion(options, clock));
  } else if (::isatty(STDERR_FILENO)) {
    std::error_code error;
    if (std::filesystem::file_size(options.stream, error) >= kProgressBarBytes && !error) {
      progress.emplace(countLines(options.stream));
      chain.input->setProgress([&progress, &reader]() { progress->update(reader.lineNumber()); }, 4096);
    }
  }
  auto const start = std::chrono::steady_clock::now();
  reader.import(options.stream);
  double const seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  if (progress) progress->finish();
  return seconds;
}

/// False after a message on `err` when the replay failed: an ordering the
/// machine refused, a reader that gave up, or an output that failed.
bool checkReplay(Options const& options, Chain const& chain, std::ostream& err) {
  RunStatisticsSimulationStream const& input = *chain.input;
  if (input.refusal()) {
    err << "mtkit simulate: " << options.stream << ":" << input.refusalLine() << ": " << *input.refusal() << "\n";
    return false;
  }
  machine::SimulationStreamTextFileReader const& reader = *chain.reader;
  using Failure = machine::SimulationStreamTextFileReader::Failure;
  switch (reader.failure()) {
    case Failure::NONE: break;
    case Failure::CANNOT_OPEN: err << "mtkit simulate: cannot open '" << options.stream << "'\n"; return false;
    case Failure::NOT_A_STREAM_FILE:
      err << "mtkit simulate: '" << options.stream
          << "' is not a simulation stream text file: " << reader.failureReason() << "\n";
      return false;
    default:
      err << "mtkit simulate: " << options.stream << ":" << reader.failureLine() << ": " << reader.failureReason()
          << "\n";
      return false;
  }
  if (!chain.terminal->isOk()) {
    err << "mtkit simulate: writing '" << options.output << "' failed\n";
    return false;
  }
  return true;
}

/// " (Operation 1, NoTool 2)", or nothing when there were no sections.
std::string sectionCounts(RunStatisticsSimulationStream const& input) {
  if (input.sections().empty()) return "";
  std::string text = " (";
  bool first = true;
  for (auto const& [type, count] : input.sections()) {
    text += (first ? "" : ", ") + sectionName(type) + " " + std::to_string(count);
    first = false;
  }
  return text + ")";
}

/// "line 25", "lines 16, 19, 22"; empty when no line is known.
std::string linesText(std::vector<long> const& lines) {
  if (lines.empty()) return "";
  std::string text = lines.size() == 1 ? "line " : "lines ";
  for (std::size_t i = 0; i < lines.size(); ++i) text += (i == 0 ? "" : ", ") + std::to_string(lines[i]);
  return text;
}

bool isWarning(int code) {
  return SimulationStream::severityOfIssue(static_cast<SimulationStream::IssueCode>(code)).isWarning();
}

/// What the summary tells of the issues: those of the stream and the chain
/// (the output statistics) and those of the travel check, by code.
struct IssueTotals {
  std::map<int, long> byCode;
  long total = 0;
  long errors = 0;
};

IssueTotals issueTotals(Chain const& chain) {
  IssueTotals totals;
  totals.byCode = chain.output->issues();
  if (chain.travel->overTravels() > 0)
    totals.byCode[static_cast<int>(machine::TravelLimitSimulationStream::OUT_OF_TRAVEL)] +=
        chain.travel->overTravels();
  for (auto const& [code, count] : totals.byCode) {
    totals.total += count;
    if (!isWarning(code)) totals.errors += count;
  }
  return totals;
}

/// The total, " (code 19 warning: 1, ...)", then a line for each text: once
/// with its line, or with its count and first lines when it repeats. The
/// travel check's issues are told by axis under over-travel.
std::string issueLines(Chain const& chain, IssueTotals const& totals) {
  std::string text = std::to_string(totals.total);
  if (totals.total > 0) {
    text += " (";
    bool first = true;
    for (auto const& [code, count] : totals.byCode) {
      text += std::string(first ? "" : ", ") + "code " + std::to_string(code) + (isWarning(code) ? " warning" : " error") +
              ": " + std::to_string(count);
      first = false;
    }
    text += ")";
  }
  text += "\n";
  for (RunStatisticsSimulationStream::IssueGroup const& group : chain.output->issueGroups()) {
    text += "  code " + std::to_string(group.code) + (isWarning(group.code) ? " warning" : " error");
    std::string const lines = linesText(group.firstLines);
    if (group.count == 1) {
      if (!lines.empty()) text += " at " + lines;
    } else {
      text += ", " + std::to_string(group.count) + " times";  // a count of 1 is told above
      if (!lines.empty()) text += ", first at " + lines;
    }
    text += ": " + group.text + "\n";
  }
  if (chain.output->issuesNotGrouped() > 0)
    text += "  and " + std::to_string(chain.output->issuesNotGrouped()) + " more with other texts\n";
  if (chain.travel->overTravels() > 0)
    text += "  code " + std::to_string(static_cast<int>(machine::TravelLimitSimulationStream::OUT_OF_TRAVEL)) +
            " error, " + std::to_string(chain.travel->overTravels()) +
            (chain.travel->overTravels() == 1 ? " time" : " times") + ": out of travel, by axis above\n";
  return text;
}

/// The travel check's axes in the order of the stream's axis ordering, then
/// the machine's others in its own order.
std::vector<machine::TravelLimitSimulationStream::AxisTravel const*> axesInOrder(
    machine::TravelLimitSimulationStream const& travel, Orvo::AxisOrdering const& ordering) {
  std::vector<machine::TravelLimitSimulationStream::AxisTravel const*> axes;
  for (int i = 0; i < ordering.size(); ++i)
    if (auto const* axis = travel.axis(ordering.machinePartId(i)))
      if (std::find(axes.begin(), axes.end(), axis) == axes.end()) axes.push_back(axis);
  for (auto const& axis : travel.axes())
    if (std::find(axes.begin(), axes.end(), &axis) == axes.end()) axes.push_back(&axis);
  return axes;
}

/// "none (X Y Z A checked; C without limit)", or the poses out of travel and
/// a line for each axis that left its travel.
std::string overTravelLines(machine::TravelLimitSimulationStream const& travel, Orvo::AxisOrdering const& ordering) {
  using AxisTravel = machine::TravelLimitSimulationStream::AxisTravel;
  std::vector<AxisTravel const*> const axes = axesInOrder(travel, ordering);
  if (travel.posesOutOfTravel() == 0) {
    std::string checked, unlimited;
    for (AxisTravel const* axisPointer : axes) {
      AxisTravel const& axis = *axisPointer;
      std::string& list = axis.isLimited ? checked : unlimited;
      list += (list.empty() ? "" : " ") + axis.name;
    }
    std::string text = "none (" + (checked.empty() ? std::string("no axis has limits") : checked + " checked");
    if (!unlimited.empty()) text += "; " + unlimited + " without limit";
    return text + ")\n";
  }
  std::string text = std::to_string(travel.posesOutOfTravel()) + " of " + std::to_string(travel.poses()) +
                     (travel.poses() == 1 ? " pose\n" : " poses\n");
  for (AxisTravel const* axisPointer : axes) {
    AxisTravel const& axis = *axisPointer;
    if (axis.count == 0) continue;
    char const* const unit = axis.type == machine::AxisType::ROTARY ? "deg" : "mm";
    text += "  " + axis.name + ": " + std::to_string(axis.count) + (axis.count == 1 ? " pose at " : " poses, ") +
            (axis.lowest == axis.highest ? compactNumber(axis.lowest)
                                         : compactNumber(axis.lowest) + " to " + compactNumber(axis.highest)) +
            " " + unit + ", outside " + rangeText(axis.range, unit);
    if (!axis.firstLines.empty()) text += "; first at " + linesText(axis.firstLines);
    text += "\n";
  }
  return text;
}

/// "186 (X Y Z in mm, B C in deg)": the count and the units of the ordering.
std::string posesLine(RunStatisticsSimulationStream const& output, machine::Machine const& machine) {
  std::string text = std::to_string(output.axisValues());
  Orvo::AxisOrdering const& ordering = output.ordering();
  std::string linear, rotary;
  for (int i = 0; i < ordering.size(); ++i) {
    auto const part = machine.find(ordering.machinePartId(i));
    if (!part || !(*part)->axis()) continue;
    std::string& list = (*part)->axis()->axisType() == machine::AxisType::ROTARY ? rotary : linear;
    list += (list.empty() ? "" : " ") + ordering.axisName(i).name();
  }
  if (linear.empty() && rotary.empty()) return text;
  text += " (";
  if (!linear.empty()) text += linear + " in mm";
  if (!rotary.empty()) text += (linear.empty() ? "" : ", ") + rotary + " in deg";
  return text + ")";
}

/// Three significant digits, in ms below a second: "4.20 ms", "0.987 ms",
/// "12.3 s"; whole seconds from 100 on.
std::string timeText(double seconds) {
  char buffer[32];
  if (seconds < 0.9995)
    std::snprintf(buffer, sizeof buffer, "%#.3g ms", seconds * 1000.0);
  else if (seconds < 9.995)
    std::snprintf(buffer, sizeof buffer, "%.2f s", seconds);
  else if (seconds < 99.95)
    std::snprintf(buffer, sizeof buffer, "%.1f s", seconds);
  else
    std::snprintf(buffer, sizeof buffer, "%.0f s", seconds);
  return buffer;
}

/// "  line 12: X=1.000000 mm Y=...", a line for each pose kept.
std::string firstPoses(RunStatisticsSimulationStream const& output, machine::Machine const& machine) {
  std::string text;
  Orvo::AxisOrdering const& ordering = output.ordering();
  std::vector<std::string> units;
  for (int i = 0; i < ordering.size(); ++i) {
    auto const part = machine.find(ordering.machinePartId(i));
    units.push_back(part && (*part)->axis() ? std::string(" ") + axisUnit(*(*part)->axis()) : std::string());
  }
  for (auto const& pose : output.firstPoses()) {
    text += "  line " + std::to_string(pose.line) + ":";
    for (int i = 0; i < pose.values.size(); ++i) {
      bool const known = i < ordering.size();
      std::string const name = known ? ordering.axisName(i).name() : "#" + std::to_string(i);
      text += " " + name + "=" + formatNumber(pose.values.value(i).value()) +
              (known ? units[static_cast<std::size_t>(i)] : std::string());
    }
    text += "\n";
  }
  return text;
}

/// "2 operations", then "; no tool for operation 7, 9" when sections asked
/// for tools that the file does not have.
std::string toolCounts(ToolUse const& tools) {
  std::size_t const n = tools.table.size();
  std::string text = std::to_string(n) + (n == 1 ? " operation" : " operations");
  if (tools.missing.empty()) return text;
  text += tools.missing.size() == 1 ? "; no tool for operation " : "; no tool for operations ";
  bool first = true;
  for (int id : tools.missing) {
    text += (first ? "" : ", ") + std::to_string(id);
    first = false;
  }
  return text;
}

std::string summary(Options const& options, machine::Machine const& machine, Chain const& chain, double seconds,
                    StrictStreamCheck const* check) {
  RunStatisticsSimulationStream const& input = *chain.input;
  RunStatisticsSimulationStream const& output = *chain.output;
  int const solveFailed = static_cast<int>(SimulationStream::IssueCode::SOLVE_FAILED);
  std::ostringstream text;
  text << "machine:        " << options.machine << " (" << axisNames(machine) << ")\n";
  text << "stream:         " << options.stream << ", " << chain.reader->lineNumber() << " lines\n";
  text << "chain:          "
       << (options.solverOnly ? "solver only" : "standard (catch errors, radius compensation, solver)")
       << ", then the travel check\n";
  if (chain.tools) text << "tools:          " << options.tools << ", " << toolCounts(*chain.tools) << "\n";
  text << "events:         " << input.events() << " read, " << output.events() << " passed on\n";
  text << "sections:       " << input.numSections() << sectionCounts(input) << "\n";
  text << "poses:          " << posesLine(output, machine) << "\n";
  text << "over-travel:    " << overTravelLines(*chain.travel, output.ordering());
  text << "issues:         " << issueLines(chain, issueTotals(chain));
  text << "solve failures: " << output.issuesOf(solveFailed) - input.issuesOf(solveFailed) << "\n";
  if (check) text << "malformed lines: " << check->malformedCount() << "\n";
  text << "time:           " << timeText(seconds) << "\n";
  if (!options.output.empty()) text << "output:         " << options.output << (options.csv ? " (CSV)" : "") << "\n";
  if (chain.motions)
    text << "motions:        " << options.motions << " ("
         << motionsFormatName(options.motionsFormat.value_or(MotionsFormat::JSON)) << ")\n";
  if (!output.firstPoses().empty()) text << "first poses:\n" << firstPoses(output, machine);
  return text.str();
}

/// At most this many malformed lines are named on the error stream.
constexpr std::size_t kMalformedLinesShown = 50;

/// Each malformed line "mtkit simulate: STREAM:LINE: RECORD: FIELD: what";
/// a long list ends with how many more there were.
void reportMalformedLines(Options const& options, StrictStreamCheck const& check, std::ostream& err) {
  std::size_t shown = 0;
  for (StrictStreamCheck::MalformedLine const& line : check.malformedLines()) {
    if (shown == kMalformedLinesShown) break;
    err << "mtkit simulate: " << options.stream << ":" << line.line << ": " << line.text() << "\n";
    ++shown;
  }
  long const more = check.malformedCount() - static_cast<long>(shown);
  if (more > 0)
    err << "mtkit simulate: " << options.stream << ": " << more << " more malformed line" << (more == 1 ? "" : "s")
        << "\n";
}

/// "3 error issues, 1 solve failure, 186 poses out of travel, 2 malformed
/// lines": what --strict fails on, the counts that are not 0. Each issue is
/// counted once: the solver's and the travel check's issues under their own
/// words, the error issues are the others.
std::string strictFailures(Chain const& chain, StrictStreamCheck const* check) {
  int const solveFailed = static_cast<int>(SimulationStream::IssueCode::SOLVE_FAILED);
  long const solveFailures = chain.output->issuesOf(solveFailed) - chain.input->issuesOf(solveFailed);
  struct Part {
    long count;
    char const* one;
    char const* many;
  };
  Part const parts[] = {
      {issueTotals(chain).errors - solveFailures - chain.travel->overTravels(), "error issue", "error issues"},
      {solveFailures, "solve failure", "solve failures"},
      {chain.travel->posesOutOfTravel(), "pose out of travel", "poses out of travel"},
      {check ? check->malformedCount() : 0, "malformed line", "malformed lines"}};
  std::string text;
  for (Part const& part : parts)
    if (part.count != 0)
      text += (text.empty() ? "" : ", ") + std::to_string(part.count) + " " + (part.count == 1 ? part.one : part.many);
  return text;
}

/// Writes the recorded motions to --motions; false after a message on `err`
/// when a section had no valid context or the file cannot be written.
bool saveMotions(Options const& options, MotionRecordingSimulationStream& recording, std::ostream& err) {
  if (!recording.isRecordingOk()) {
    err << "mtkit simulate: --motions: a section began before its machine, program and operation were known, so "
           "its motion cannot be told from others\n";
    return false;
  }
  machine::MachineMotions motions = recording.takeMotions();
  std::string error;
  if (writeMotionsFile(options.motions, motions, options.motionsFormat.value_or(MotionsFormat::JSON), error))
    return true;
  err << "mtkit simulate: --motions: " << error << "\n";
  return false;
}

int runSimulate(Options const& options, std::ostream& out, std::ostream& err) {
  auto const machine = loadMachine("simulate", options.machine, err);
  if (!machine) return 1;
  auto solver = makeSolver(options, *machine, err);
  if (!solver) return 1;
  auto tools = readTools(options, err);
  if (!tools) return 1;
  if (!canOpenStream(options, err)) return 1;
  // The strict check reads the file before the replay, or after it when the
  // file is still being written: only then is it whole.
  std::optional<StrictStreamCheck> check;
  if (options.strict && !options.follow) {
    check.emplace();
    check->checkFile(options.stream);
  }
  auto chain = buildChain(options, *machine, std::move(solver), std::move(*tools), err);
  if (!chain) return 1;
  double const seconds = replay(options, *chain);
  if (options.strict && options.follow) {
    check.emplace();
    check->checkFile(options.stream);
  }
  if (check) reportMalformedLines(options, *check, err);
  if (!checkReplay(options, *chain, err)) return 1;
  if (chain->motions && !saveMotions(options, *chain->motions, err)) return 1;
  StrictStreamCheck const* const checked = check ? &*check : nullptr;
  out << summary(options, *machine, *chain, seconds, checked);
  if (options.strict) {
    std::string const failures = strictFailures(*chain, checked);
    if (failures.empty()) return 0;
    err << "mtkit simulate: --strict: " << failures << "\n";
    return 1;
  }
  if (chain->travel->posesOutOfTravel() > 0) {
    std::string axes;
    for (auto const* axis : axesInOrder(*chain->travel, chain->output->ordering()))
      if (axis->count > 0) axes += (axes.empty() ? "" : ", ") + axis->name;
    long const poses = chain->travel->posesOutOfTravel();
    warn(err, "simulate",
         std::to_string(poses) + (poses == 1 ? " pose is" : " poses are") + " out of the machine's travel (" + axes +
             "); --strict makes that an error");
  }
  return 0;
}

}  // namespace

Command addSimulateCommand(CLI::App& app) {
  auto options = std::make_shared<Options>();
  CLI::App* const sub = app.add_subcommand(
      "simulate", "replay a recorded stream through the standard post chain (or the solver alone) and summarise");
  sub->add_option("MACHINE", options->machine, "a machine file or an MTK file")->type_name("")->required();
  sub->add_option("STREAM", options->stream, "a simulation stream text file")->type_name("")->required();
  CLI::Option* const output =
      sub->add_option("-o,--output", options->output, "write the stream that comes out (or with --csv its poses) to OUT")
          ->type_name("OUT");
  CLI::Option* const csv = sub->add_flag("--csv", options->csv, "write the poses to OUT as CSV");
  CLI::Option* const follow = sub->add_flag(
      "--follow", options->follow, "read a file that is still being written, until it keeps its size for the idle time");
  CLI::Option* const idle =
      sub->add_option("--idle", options->idleSeconds, "with --follow: the idle time in seconds (default 5)")
          ->type_name("SECONDS")
          ->check(nonNegativeNumberValidator());
  sub->add_option("--poses", options->poses, "print the first N poses (default 5)")
      ->type_name("N")
      ->check(countValidator());
  sub->add_option("--tools", options->tools, "the tools of the stream's operations, a JSON file (see the README)")
      ->type_name("FILE");
  sub->add_flag("--solver-only", options->solverOnly, "replay through the machine's solver alone");
  sub->add_flag("--strict", options->strict,
                "exit 1 on any error issue, solve failure, pose out of travel or malformed stream line, and name "
                "each malformed line");
  CLI::Option* const motions =
      sub->add_option("--motions", options->motions, "write each operation's context and starting pose to FILE")
          ->type_name("FILE");
  CLI::Option* const motionsFormat =
      sub->add_option_function<std::string>(
             "--motions-format", [options](std::string const& word) { options->motionsFormat = parseMotionsFormat(word); },
             "with --motions: json (default) or binary")
          ->type_name("json|binary")
          ->check(CLI::Validator(
              [](std::string& word) -> std::string {
                return parseMotionsFormat(word) ? "" : "'" + word + "' is not json or binary";
              },
              ""));
  // Hidden: for the tool's own tests (see FollowClock).
  sub->add_option("--test-wait-fifo", options->testWaitFifo)->group("");
  sub->footer("Lengths are in mm, angles in degrees, feeds in mm/min. Every pose is checked against the\n"
              "travel of the machine's axes (issue code 100). Exit status 1 when a file cannot be read or\n"
              "written, or the stream cannot be replayed; with --strict also on any error issue, solve\n"
              "failure, pose out of travel or malformed line.");
  return {sub, [=](std::ostream& out, std::ostream& err) {
            // Options that do nothing in this combination are worth a word:
            // the user meant something by them.
            if (csv->count() > 0 && output->count() == 0) warn(err, "simulate", "--csv does nothing without -o OUT");
            if (idle->count() > 0 && follow->count() == 0) warn(err, "simulate", "--idle does nothing without --follow");
            if (motionsFormat->count() > 0 && motions->count() == 0)
              warn(err, "simulate", "--motions-format does nothing without --motions FILE");
            return runSimulate(*options, out, err);
          }};
}

}  // namespace mtkit_tool
