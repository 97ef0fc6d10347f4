#include "ReplayRun.h"

#include <json/json.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <sstream>

#include "machine/machine/ForwardingSimulationStream.h"
#include "machine/machine/Machine.h"
#include "machine/machine/MachineFileLoader.h"
#include "machine/machine/MachineUtils.h"
#include "machine/machine/NCToolInsertionSimulationStream.h"
#include "machine/machine/Part.h"
#include "machine/machine/PostChainSimulationStream.h"
#include "machine/machine/SimulationStreamTextFileReader.h"
#include "machine/machine/SolverSimulationStream.h"
#include "machine/machine/TravelLimitSimulationStream.h"
#include "nc/NCTool.h"
#include "nc/NCUnit.h"
#include "nc/ToolGeometry.h"

namespace mtkit_python {

namespace {

using machine::SimulationStream;

double const kNaN = std::numeric_limits<double>::quiet_NaN();

/// The file's text, or a ReplayFileError with the operating system's reason.
std::string readWhole(std::string const& path) {
  machine::MachineFileLoader::FileText file = machine::MachineFileLoader::readFile(path);
  if (!file.ok()) throw ReplayFileError(file.error);
  return std::move(file.text);
}

// The machine is loaded and built as `mtkit simulate` does it before a
// replay: an MTK file or a machine file, the default kinematics and
// controller, a check that the kinematics can move, and the axes ordered
// chain first.

std::unique_ptr<machine::Machine> loadMachine(std::string const& path) {
  machine::MachineFileLoader::BuiltMachine built = machine::MachineFileLoader::loadMachine(path);
  if (built.errorNumber != 0) throw ReplayFileError(built.error);
  if (!built.ok()) throw ReplayInputError(built.error);
  return std::move(built.machine);
}

/// The tools file of `mtkit simulate --tools`, read the same way and with the
/// same texts: operation ids to tools with a radius, a number, a unit and a
/// thread pitch.
std::map<int, Orvo::NCTool> readTools(std::string const& path) {
  std::string const text = readWhole(path);
  Json::CharReaderBuilder builder;
  builder["rejectDupKeys"] = true;
  Json::Value root;
  std::string parseErrors;
  std::istringstream in(text);
  if (!Json::parseFromStream(builder, in, &root, &parseErrors)) {
    std::string error = "'" + path + "' is not JSON: " + parseErrors;
    while (!error.empty() && (error.back() == '\n' || error.back() == ' ')) error.pop_back();
    throw ReplayInputError(error);
  }
  if (!root.isObject()) throw ReplayInputError("'" + path + "' must be a JSON object that maps operation ids to tools");
  std::map<int, Orvo::NCTool> tools;
  for (auto it = root.begin(); it != root.end(); ++it) {
    std::string const key = it.name();
    std::string const where = "'" + path + "', operation \"" + key + "\": ";
    char* end = nullptr;
    errno = 0;
    long const id = key.empty() ? 0 : std::strtol(key.c_str(), &end, 10);
    if (key.empty() || *end != '\0' || errno == ERANGE || id < INT_MIN || id > INT_MAX)
      throw ReplayInputError("'" + path + "': \"" + key + "\" is not an operation id (a decimal integer)");
    Json::Value const& entry = *it;
    if (!entry.isObject()) throw ReplayInputError(where + "the tool must be an object");
    for (std::string const& member : entry.getMemberNames())
      if (member != "tool" && member != "radius" && member != "unit" && member != "thread_pitch")
        throw ReplayInputError(where + "unknown member \"" + member + "\" (known: tool, radius, unit, thread_pitch)");
    Json::Value const& radius = entry["radius"];
    if (!radius.isNumeric() || radius.asDouble() < 0)
      throw ReplayInputError(where + "\"radius\" must be a number, not negative");
    int number = 0;
    if (entry.isMember("tool")) {
      if (!entry["tool"].isInt()) throw ReplayInputError(where + "\"tool\" must be an integer");
      number = entry["tool"].asInt();
    }
    int unit = Orvo::NCUnit::MILLIMETER;
    if (entry.isMember("unit")) {
      static std::map<std::string, int> const units = {{"mm", Orvo::NCUnit::MILLIMETER},
                                                       {"cm", Orvo::NCUnit::CENTIMETER},
                                                       {"m", Orvo::NCUnit::METER},
                                                       {"inch", Orvo::NCUnit::INCH},
                                                       {"ft", Orvo::NCUnit::FOOT}};
      auto const found = entry["unit"].isString() ? units.find(entry["unit"].asString()) : units.end();
      if (found == units.end())
        throw ReplayInputError(where + "\"unit\" must be one of \"mm\", \"cm\", \"m\", \"inch\", \"ft\"");
      unit = found->second;
    }
    double pitch = 0.0;
    if (entry.isMember("thread_pitch")) {
      if (!entry["thread_pitch"].isNumeric() || entry["thread_pitch"].asDouble() < 0)
        throw ReplayInputError(where + "\"thread_pitch\" must be a number, not negative");
      pitch = entry["thread_pitch"].asDouble();
    }
    // Compensation offsets by the geometry's radius, half its diameter.
    Orvo::ToolGeometry const geometry(2.0 * radius.asDouble(), 0.0, 0.0, 0.0);
    tools.emplace(static_cast<int>(id), Orvo::NCTool(number, geometry, unit, pitch));
  }
  return tools;
}

char const* severityName(SimulationStream::IssueCode code) {
  switch (SimulationStream::severityOfIssue(code).level()) {
    case Orvo::NCMessageSeverity::INFORMATION: return "information";
    case Orvo::NCMessageSeverity::WARNING: return "warning";
    case Orvo::NCMessageSeverity::ERROR: return "error";
    case Orvo::NCMessageSeverity::FATAL: return "fatal";
    default: return "none";
  }
}

/// What the head and the tail of the chain share: the reader's line, the
/// line of the motion in flight, and whether an issue is the stream file's
/// own.
struct LineState {
  machine::SimulationStreamTextFileReader const* reader = nullptr;
  /// The line of a marked motion that has not reached the tail yet; 0 for
  /// none.
  long motionLine = 0;
  bool issueFromStream = false;
  std::optional<std::string> refusal;
  long refusalLine = 0;

  /// The reader's last line, once the reader is gone.
  long lastLine = 0;

  long readerLine() const noexcept { return reader ? reader->lineNumber() : lastLine; }
  long currentLine() const noexcept { return motionLine > 0 ? motionLine : readerLine(); }
};

// Lines of poses. The compensator of the standard chain looks ahead, so the
// line being read when a pose comes out is not that of its motion. The head
// marks each motion with its line by a toolpath entity index just ahead of
// it (a replayed text file has none of its own, and the chain keeps an index
// in its place among the motions); the tail reads the marks. This is how
// `mtkit simulate --csv` numbers its rows.

/// The head: marks motions, refuses an ordering that names parts the machine
/// does not have (the solver could not move them), and tells the tail which
/// issues the stream file recorded.
class HeadLink final : public machine::ForwardingSimulationStream {
public:
  HeadLink(std::unique_ptr<SimulationStream> next, machine::Machine const& machine, LineState& state)
      : ForwardingSimulationStream(std::move(next)), m_machine(machine), m_state(state) {}
  ~HeadLink() override = default;

private:
  void mark() {
    long const line = m_state.readerLine();
    if (line > 0 && line < static_cast<long>(Orvo::ToolpathEntityIndex::kNoIndex))
      forwardStream()->onToolpathEntityIndex(Orvo::ToolpathEntityIndex(static_cast<std::uint32_t>(line)));
  }
  void doOnAxisOrdering(Orvo::AxisOrdering const& ordering) override {
    for (int i = 0; i < ordering.size(); ++i) {
      if (!m_machine.find(ordering.machinePartId(i))) {
        std::string names;
        Orvo::AxisOrdering const& own = m_machine.axisOrdering();
        for (int j = 0; j < own.size(); ++j) names += (j ? " " : "") + own.axisName(j).name();
        m_state.refusal = "the axis ordering names part '" + ordering.machinePartId(i).id() + "' (axis " +
                          ordering.axisName(i).name() + "), which the machine does not have (axes: " +
                          (names.empty() ? std::string("none") : names) + ")";
        m_state.refusalLine = m_state.readerLine();
        setIsOk(false);
        return;
      }
    }
    forwardStream()->onAxisOrdering(ordering);
  }
  void doOnIssue(IssueCode code, std::string const& message) override {
    m_state.issueFromStream = true;
    forwardStream()->onIssue(code, message);
    m_state.issueFromStream = false;
  }
  void doOnLinear(Orvo::Point3D const& target, double feed, machine::MotionSettings const& settings) override {
    mark();
    forwardStream()->onLinear(target, feed, settings);
  }
  void doOnRapid(Orvo::Point3D const& target, machine::MotionSettings const& settings) override {
    mark();
    forwardStream()->onRapid(target, settings);
  }
  void doOnHelical(Orvo::Helix const& helix, Orvo::Point3D const& end, double feed,
                   machine::MotionSettings const& settings) override {
    mark();
    forwardStream()->onHelical(helix, end, feed, settings);
  }
  void doOnLinear5D(Orvo::Point3D const& target, Orvo::Vector3D const& toolAxis, double feed,
                    machine::MotionSettings const& settings) override {
    mark();
    forwardStream()->onLinear5D(target, toolAxis, feed, settings);
  }
  void doOnRapid5D(Orvo::Point3D const& target, Orvo::Vector3D const& toolAxis,
                   machine::MotionSettings const& settings) override {
    mark();
    forwardStream()->onRapid5D(target, toolAxis, settings);
  }

  machine::Machine const& m_machine;
  LineState& m_state;
};

/// The tool axis of every pose in table coordinates, from the machine
/// itself: where the solved rotary values point the tool, whatever motion
/// the chain held or sent with them. Only the rotary axes turn the tool, so
/// a pose gets its axis when they are known; linear axes left unknown stand
/// at zero for it.
void toolDirectionsOf(machine::Machine& machine, ReplayResult& result) {
  std::size_t const width = result.axisNames.size();
  result.toolDirections.assign(3 * result.numPoses(), kNaN);
  std::vector<bool> rotary(width);
  for (std::size_t i = 0; i < width; ++i) rotary[i] = result.axisUnits[i] == "deg";
  Orvo::AxisValues values(static_cast<int>(width));
  for (std::size_t row = 0; row < result.numPoses(); ++row) {
    double const* const pose = &result.poses[row * width];
    bool known = true;
    for (std::size_t i = 0; i < width && known; ++i) {
      known = !rotary[i] || std::isfinite(pose[i]);
      values.setValue(static_cast<int>(i), Orvo::AxisValue(std::isfinite(pose[i]) ? pose[i] : 0.0));
    }
    if (!known) continue;
    machine.moveTo(values);
    Orvo::Vector3D const axis = machine::MachineUtils::headFrameInTable(machine).zAxis();
    result.toolDirections[3 * row] = axis.x;
    result.toolDirections[3 * row + 1] = axis.y;
    result.toolDirections[3 * row + 2] = axis.z;
  }
}

/// The tail: keeps every pose in the machine's column order with its line
/// and tool axis, and every issue.
class PoseCollector final : public SimulationStream {
public:
  PoseCollector(ReplayResult& result, machine::Machine const& machine, LineState& state)
      : m_result(result), m_machineOrdering(machine.axisOrdering()), m_state(state) {}
  ~PoseCollector() override = default;

private:
  void doOnAxisOrdering(Orvo::AxisOrdering const& ordering) override {
    m_columns.assign(static_cast<std::size_t>(ordering.size()), -1);
    for (int i = 0; i < ordering.size(); ++i)
      for (int j = 0; j < m_machineOrdering.size(); ++j)
        if (m_machineOrdering.machinePartId(j) == ordering.machinePartId(i)) {
          m_columns[static_cast<std::size_t>(i)] = j;
          break;
        }
  }
  void doOnAxisValues(Orvo::AxisValues const& values) override {
    std::size_t const width = static_cast<std::size_t>(m_machineOrdering.size());
    std::size_t const row = m_result.poses.size();
    m_result.poses.resize(row + width, kNaN);
    std::size_t const n = std::min(m_columns.size(), static_cast<std::size_t>(values.size()));
    for (std::size_t i = 0; i < n; ++i)
      if (m_columns[i] >= 0) m_result.poses[row + static_cast<std::size_t>(m_columns[i])] = values[static_cast<int>(i)].value();
    m_result.lines.push_back(m_state.currentLine());
  }
  void doOnIssue(IssueCode code, std::string const& message) override {
    long const line = m_state.currentLine();
    m_result.issues.push_back(ReplayIssue{static_cast<int>(code), severityName(code), message, line});
    if (code == IssueCode::SOLVE_FAILED && !m_state.issueFromStream) m_result.solveFailures.push_back(line);
  }
  void doOnToolpathEntityIndex(Orvo::ToolpathEntityIndex const& index) override {
    m_state.motionLine = index.isValid() ? static_cast<long>(index.index()) : 0;
  }
  /// A motion ends the line of the pose before it.
  void motionPassed() { m_state.motionLine = 0; }
  void doOnLinear(Orvo::Point3D const&, double, machine::MotionSettings const&) override { motionPassed(); }
  void doOnRapid(Orvo::Point3D const&, machine::MotionSettings const&) override { motionPassed(); }
  void doOnHelical(Orvo::Helix const&, Orvo::Point3D const&, double, machine::MotionSettings const&) override {
    motionPassed();
  }
  void doOnLinear5D(Orvo::Point3D const&, Orvo::Vector3D const&, double, machine::MotionSettings const&) override {
    motionPassed();
  }
  void doOnRapid5D(Orvo::Point3D const&, Orvo::Vector3D const&, machine::MotionSettings const&) override {
    motionPassed();
  }

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
  void doOnNCContext(Orvo::NCContext const&) override {}
  void doOnNCTool(Orvo::NCTool const&) override {}
  void doOnSimGroup(std::string const&) override {}
  void doOnSimGroupEnd(std::string const&) override {}
  void doOnTaggedFrame(Orvo::TaggedFrame const&) override {}
  void doOnNcCodeMovement(machine::NcCodeMovement const&) override {}
  void doOnTCPCoordMode(bool) override {}
  void doOnTiltedWorkPlane(machine::NcCodeTiltedWorkPlane const&) override {}
  void doOnRetractAlongToolAxisToLimit() override {}
  void doOnSpindleSpeed(double) override {}

  ReplayResult& m_result;
  Orvo::AxisOrdering m_machineOrdering;
  LineState& m_state;
  /// For each index of the stream's ordering, its column; -1 for none.
  std::vector<int> m_columns;
};

}  // namespace



ReplayResult runReplay(ReplayOptions const& options) {
  ReplayResult result;
  auto const machine = loadMachine(options.machinePath);
  auto solver = machine->makeMachineSolver();
  if (!solver)
    throw ReplayInputError("'" + options.machinePath +
                           "': the machine has fewer than two linear axes on its head and table chains; there is "
                           "nothing to solve");
  std::shared_ptr<std::map<int, Orvo::NCTool>> tools;
  if (!options.toolsPath.empty())
    tools = std::make_shared<std::map<int, Orvo::NCTool>>(readTools(options.toolsPath));
  if (auto const stream = machine::MachineFileLoader::checkReadable(options.streamPath); !stream.ok())
    throw ReplayFileError(stream.error);

  Orvo::AxisOrdering const& ordering = machine->axisOrdering();
  for (int i = 0; i < ordering.size(); ++i) {
    result.axisNames.push_back(ordering.axisName(i).name());
    auto const part = machine->find(ordering.machinePartId(i));
    bool const rotary = part && (*part)->axis() && (*part)->axis()->axisType() == machine::AxisType::ROTARY;
    result.axisUnits.push_back(rotary ? "deg" : "mm");
  }

  // reader -> head -> [tool insertion] -> standard chain or solver -> travel
  // check -> collector, as the tool replays (less its statistics).
  LineState state;
  auto collector = std::make_unique<PoseCollector>(result, *machine, state);
  auto travel = std::make_unique<machine::TravelLimitSimulationStream>(std::move(collector), *machine);
  travel->setLineSource([&state]() { return state.currentLine(); });
  machine::TravelLimitSimulationStream const& travelCheck = *travel;
  std::unique_ptr<SimulationStream> chain;
  if (options.solverOnly)
    chain = std::make_unique<machine::SolverSimulationStream>(std::move(travel), std::move(solver));
  else
    chain = std::make_unique<machine::PostChainSimulationStream>(std::move(travel), std::move(solver));
  if (tools) {
    // A stream file records no tools: each section gets its operation's
    // tool from the file, and the compensator its radius; an operation the
    // file leaves out gets a tool of no size.
    auto finder = [tools](int operationId) {
      auto const found = tools->find(operationId);
      return found == tools->end() ? Orvo::NCTool() : found->second;
    };
    chain = std::make_unique<machine::NCToolInsertionSimulationStream>(finder, std::move(chain));
  }
  for (int i = 0; i < ordering.size(); ++i) {
    machine::TravelLimitSimulationStream::AxisTravel const* axis = travelCheck.axis(ordering.machinePartId(i));
    if (axis && axis->isLimited)
      result.limits.emplace_back(std::make_pair(axis->range.min().value(), axis->range.max().value()));
    else
      result.limits.emplace_back(std::nullopt);
  }
  auto reader = std::make_unique<machine::SimulationStreamTextFileReader>(
      std::make_shared<HeadLink>(std::move(chain), *machine, state));
  state.reader = reader.get();
  reader->import(options.streamPath);
  result.streamLines = reader->lineNumber();
  using Failure = machine::SimulationStreamTextFileReader::Failure;
  Failure const failure = reader->failure();
  std::string const failureReason = reader->failureReason();
  long const failureLine = reader->failureLine();
  // A chain has no end event: the compensator hands on what it still holds
  // when it is destroyed, so the poses are complete only once the chain is
  // gone.
  state.lastLine = result.streamLines;
  state.reader = nullptr;
  reader.reset();

  if (state.refusal)
    throw ReplayInputError(options.streamPath + ":" + std::to_string(state.refusalLine) + ": " + *state.refusal);
  switch (failure) {
    case Failure::NONE: break;
    case Failure::CANNOT_OPEN: throw ReplayFileError("cannot open '" + options.streamPath + "'");
    case Failure::NOT_A_STREAM_FILE:
      throw ReplayInputError("'" + options.streamPath +
                             "' is not a simulation stream text file: " + failureReason);
    default:
      throw ReplayInputError(options.streamPath + ":" + std::to_string(failureLine) + ": " +
                             failureReason);
  }
  toolDirectionsOf(*machine, result);
  return result;
}

}  // namespace mtkit_python
