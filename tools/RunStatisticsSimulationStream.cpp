#include "RunStatisticsSimulationStream.h"

#include <cstdint>

namespace mtkit_tool {

RunStatisticsSimulationStream::RunStatisticsSimulationStream(std::unique_ptr<machine::SimulationStream> next,
                                                             std::function<long()> lineSource, int posesKept)
    : ForwardingSimulationStream(std::move(next)),
      m_lineSource(std::move(lineSource)),
      m_posesKept(posesKept > 0 ? static_cast<std::size_t>(posesKept) : 0u) {}

RunStatisticsSimulationStream::~RunStatisticsSimulationStream() = default;

void RunStatisticsSimulationStream::setProgress(std::function<void()> progress, long interval) {
  m_progress = std::move(progress);
  m_progressInterval = interval > 0 ? interval : 1;
}

long RunStatisticsSimulationStream::numSections() const {
  long total = 0;
  for (auto const& entry : m_sections) total += entry.second;
  return total;
}

long RunStatisticsSimulationStream::issuesOf(int code) const {
  auto const found = m_issues.find(code);
  return found == m_issues.end() ? 0 : found->second;
}

long RunStatisticsSimulationStream::currentLine() const {
  if (m_motionLine > 0) return m_motionLine;
  return m_lineSource ? m_lineSource() : 0;
}

void RunStatisticsSimulationStream::markMotion() {
  if (!m_marksMotionLines) return;
  long const line = m_lineSource ? m_lineSource() : 0;
  if (line > 0 && line < static_cast<long>(Orvo::ToolpathEntityIndex::kNoIndex))
    forwardStream()->onToolpathEntityIndex(Orvo::ToolpathEntityIndex(static_cast<std::uint32_t>(line)));
}

void RunStatisticsSimulationStream::doOnToolpathEntityIndex(Orvo::ToolpathEntityIndex const& index) {
  if (!m_readsMotionLines) {
    forwardStream()->onToolpathEntityIndex(index);
    return;
  }
  m_motionLine = index.isValid() ? static_cast<long>(index.index()) : 0;
}

void RunStatisticsSimulationStream::count() {
  ++m_events;
  if (m_progress && m_events % m_progressInterval == 0) m_progress();
}

void RunStatisticsSimulationStream::doOnAxisOrdering(Orvo::AxisOrdering const& ordering) {
  count();
  if (m_orderingCheck) {
    if (auto refusal = m_orderingCheck(ordering)) {
      m_refusal = std::move(refusal);
      m_refusalLine = currentLine();
      setIsOk(false);
      return;
    }
  }
  m_ordering = ordering;
  forwardStream()->onAxisOrdering(ordering);
}

void RunStatisticsSimulationStream::doOnAxisValues(Orvo::AxisValues const& values) {
  count();
  ++m_axisValues;
  if (m_firstPoses.size() < m_posesKept) m_firstPoses.push_back(Pose{currentLine(), values});
  forwardStream()->onAxisValues(values);
}

void RunStatisticsSimulationStream::doOnSection(SectionType type) {
  count();
  ++m_sections[type];
  forwardStream()->onSection(type);
}

void RunStatisticsSimulationStream::doOnIssue(IssueCode code, std::string const& message) {
  count();
  int const number = static_cast<int>(code);
  ++m_issues[number];
  long const line = currentLine();
  auto const found = m_issueGroupIndex.find(std::make_pair(number, message));
  if (found != m_issueGroupIndex.end()) {
    IssueGroup& group = m_issueGroups[found->second];
    ++group.count;
    if (line > 0 && group.firstLines.size() < kLinesKept) group.firstLines.push_back(line);
  } else if (m_issueGroups.size() < kGroupsKept) {
    m_issueGroupIndex.emplace(std::make_pair(number, message), m_issueGroups.size());
    m_issueGroups.push_back(IssueGroup{number, message, 1, line > 0 ? std::vector<long>{line} : std::vector<long>{}});
  } else {
    ++m_issuesNotGrouped;
  }
  forwardStream()->onIssue(code, message);
}

void RunStatisticsSimulationStream::doOnNcOutput(std::string const& text) {
  count();
  forwardStream()->onNcOutput(text);
}
void RunStatisticsSimulationStream::doOnNcProgramId(int id) {
  count();
  forwardStream()->onNcProgramId(id);
}
void RunStatisticsSimulationStream::doOnOperationId(int id) {
  count();
  forwardStream()->onOperationId(id);
}
void RunStatisticsSimulationStream::doOnMachineId(int id) {
  count();
  forwardStream()->onMachineId(id);
}
void RunStatisticsSimulationStream::doOnCommand(machine::SimulationStreamCommand const& command) {
  count();
  forwardStream()->onCommand(command);
}
void RunStatisticsSimulationStream::doOnPatternOpen(int id) {
  count();
  forwardStream()->onPatternOpen(id);
}
void RunStatisticsSimulationStream::doOnPatternClose(int id) {
  count();
  forwardStream()->onPatternClose(id);
}
void RunStatisticsSimulationStream::doOnPatternChildInstance(int instance) {
  count();
  forwardStream()->onPatternChildInstance(instance);
}
void RunStatisticsSimulationStream::doOnSectionEnd() {
  count();
  forwardStream()->onSectionEnd();
}
void RunStatisticsSimulationStream::doOnWorkOffset(int offset) {
  count();
  forwardStream()->onWorkOffset(offset);
}
void RunStatisticsSimulationStream::doOnNCContext(Orvo::NCContext const& context) {
  count();
  forwardStream()->onNCContext(context);
}
void RunStatisticsSimulationStream::doOnNCTool(Orvo::NCTool const& tool) {
  count();
  forwardStream()->onNCTool(tool);
}
void RunStatisticsSimulationStream::doOnSimGroup(std::string const& name) {
  count();
  forwardStream()->onSimGroup(name);
}
void RunStatisticsSimulationStream::doOnSimGroupEnd(std::string const& name) {
  count();
  forwardStream()->onSimGroupEnd(name);
}
void RunStatisticsSimulationStream::doOnTaggedFrame(Orvo::TaggedFrame const& frame) {
  count();
  forwardStream()->onTaggedFrame(frame);
}
void RunStatisticsSimulationStream::doOnLinear(Orvo::Point3D const& target, double feed,
                                               machine::MotionSettings const& settings) {
  count();
  markMotion();
  forwardStream()->onLinear(target, feed, settings);
  motionPassed();
}
void RunStatisticsSimulationStream::doOnRapid(Orvo::Point3D const& target, machine::MotionSettings const& settings) {
  count();
  markMotion();
  forwardStream()->onRapid(target, settings);
  motionPassed();
}
void RunStatisticsSimulationStream::doOnHelical(Orvo::Helix const& helix, Orvo::Point3D const& end, double feed,
                                                machine::MotionSettings const& settings) {
  count();
  markMotion();
  forwardStream()->onHelical(helix, end, feed, settings);
  motionPassed();
}
void RunStatisticsSimulationStream::doOnLinear5D(Orvo::Point3D const& target, Orvo::Vector3D const& toolAxis,
                                                 double feed, machine::MotionSettings const& settings) {
  count();
  markMotion();
  forwardStream()->onLinear5D(target, toolAxis, feed, settings);
  motionPassed();
}
void RunStatisticsSimulationStream::doOnRapid5D(Orvo::Point3D const& target, Orvo::Vector3D const& toolAxis,
                                                machine::MotionSettings const& settings) {
  count();
  markMotion();
  forwardStream()->onRapid5D(target, toolAxis, settings);
  motionPassed();
}
void RunStatisticsSimulationStream::doOnNcCodeMovement(machine::NcCodeMovement const& movement) {
  count();
  forwardStream()->onNcCodeMovement(movement);
}
void RunStatisticsSimulationStream::doOnTCPCoordMode(bool on) {
  count();
  forwardStream()->onTCPCoordMode(on);
}
void RunStatisticsSimulationStream::doOnTiltedWorkPlane(machine::NcCodeTiltedWorkPlane const& plane) {
  count();
  forwardStream()->onTiltedWorkPlane(plane);
}
void RunStatisticsSimulationStream::doOnRetractAlongToolAxisToLimit() {
  count();
  forwardStream()->onRetractAlongToolAxisToLimit();
}
void RunStatisticsSimulationStream::doOnSpindleSpeed(double speed) {
  count();
  forwardStream()->onSpindleSpeed(speed);
}

}  // namespace mtkit_tool
