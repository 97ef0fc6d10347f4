#include "RunStatisticsSimulationStream.h"

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

void RunStatisticsSimulationStream::count() {
  ++m_events;
  if (m_progress && m_events % m_progressInterval == 0) m_progress();
}

void RunStatisticsSimulationStream::doOnAxisOrdering(Orvo::AxisOrdering const& ordering) {
  count();
  if (m_orderingCheck) {
    if (auto refusal = m_orderingCheck(ordering)) {
      m_refusal = std::move(refusal);
      m_refusalLine = m_lineSource ? m_lineSource() : 0;
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
  if (m_firstPoses.size() < m_posesKept) m_firstPoses.push_back(Pose{m_lineSource ? m_lineSource() : 0, values});
  forwardStream()->onAxisValues(values);
}

void RunStatisticsSimulationStream::doOnSection(SectionType type) {
  count();
  ++m_sections[type];
  forwardStream()->onSection(type);
}

void RunStatisticsSimulationStream::doOnIssue(IssueCode code, std::string const& message) {
  count();
  ++m_issues[static_cast<int>(code)];
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
  forwardStream()->onLinear(target, feed, settings);
}
void RunStatisticsSimulationStream::doOnRapid(Orvo::Point3D const& target, machine::MotionSettings const& settings) {
  count();
  forwardStream()->onRapid(target, settings);
}
void RunStatisticsSimulationStream::doOnHelical(Orvo::Helix const& helix, Orvo::Point3D const& end, double feed,
                                                machine::MotionSettings const& settings) {
  count();
  forwardStream()->onHelical(helix, end, feed, settings);
}
void RunStatisticsSimulationStream::doOnLinear5D(Orvo::Point3D const& target, Orvo::Vector3D const& toolAxis,
                                                 double feed, machine::MotionSettings const& settings) {
  count();
  forwardStream()->onLinear5D(target, toolAxis, feed, settings);
}
void RunStatisticsSimulationStream::doOnRapid5D(Orvo::Point3D const& target, Orvo::Vector3D const& toolAxis,
                                                machine::MotionSettings const& settings) {
  count();
  forwardStream()->onRapid5D(target, toolAxis, settings);
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
