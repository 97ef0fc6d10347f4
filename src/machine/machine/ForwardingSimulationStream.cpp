#include "machine/machine/ForwardingSimulationStream.h"

#include "util/utility/Basic.h"

namespace machine {

namespace {
constexpr char const* orvoAssertSourcePath = "machine\\machine\\ForwardingSimulationStream";
}  // namespace

ForwardingSimulationStream::ForwardingSimulationStream(std::unique_ptr<SimulationStream> stream)
    : m_forwardStream(std::move(stream)) {
  EXPECTS(forwardStream());
}

ForwardingSimulationStream::~ForwardingSimulationStream() = default;

void ForwardingSimulationStream::doOnAxisOrdering(Orvo::AxisOrdering const& ordering) {
  m_forwardStream->onAxisOrdering(ordering);
}
void ForwardingSimulationStream::doOnAxisValues(Orvo::AxisValues const& values) { m_forwardStream->onAxisValues(values); }
void ForwardingSimulationStream::doOnNcOutput(std::string const& text) { m_forwardStream->onNcOutput(text); }
void ForwardingSimulationStream::doOnNcProgramId(int id) { m_forwardStream->onNcProgramId(id); }
void ForwardingSimulationStream::doOnOperationId(int id) { m_forwardStream->onOperationId(id); }
void ForwardingSimulationStream::doOnMachineId(int id) { m_forwardStream->onMachineId(id); }
void ForwardingSimulationStream::doOnCommand(SimulationStreamCommand const& command) {
  m_forwardStream->onCommand(command);
}
void ForwardingSimulationStream::doOnPatternOpen(int id) { m_forwardStream->onPatternOpen(id); }
void ForwardingSimulationStream::doOnPatternClose(int id) { m_forwardStream->onPatternClose(id); }
void ForwardingSimulationStream::doOnPatternChildInstance(int instance) {
  m_forwardStream->onPatternChildInstance(instance);
}
void ForwardingSimulationStream::doOnSection(SectionType type) { m_forwardStream->onSection(type); }
void ForwardingSimulationStream::doOnSectionEnd() { m_forwardStream->onSectionEnd(); }
void ForwardingSimulationStream::doOnWorkOffset(int offset) { m_forwardStream->onWorkOffset(offset); }
void ForwardingSimulationStream::doOnIssue(IssueCode code, std::string const& message) {
  m_forwardStream->onIssue(code, message);
}
void ForwardingSimulationStream::doOnNCContext(Orvo::NCContext const& context) { m_forwardStream->onNCContext(context); }
void ForwardingSimulationStream::doOnNCTool(Orvo::NCTool const& tool) { m_forwardStream->onNCTool(tool); }
void ForwardingSimulationStream::doOnSimGroup(std::string const& name) { m_forwardStream->onSimGroup(name); }
void ForwardingSimulationStream::doOnSimGroupEnd(std::string const& name) { m_forwardStream->onSimGroupEnd(name); }
void ForwardingSimulationStream::doOnTaggedFrame(Orvo::TaggedFrame const& frame) {
  m_forwardStream->onTaggedFrame(frame);
}
void ForwardingSimulationStream::doOnLinear(Orvo::Point3D const& target, double feed, MotionSettings const& settings) {
  m_forwardStream->onLinear(target, feed, settings);
}
void ForwardingSimulationStream::doOnRapid(Orvo::Point3D const& target, MotionSettings const& settings) {
  m_forwardStream->onRapid(target, settings);
}
void ForwardingSimulationStream::doOnHelical(Orvo::Helix const& helix, Orvo::Point3D const& end, double feed,
                                             MotionSettings const& settings) {
  m_forwardStream->onHelical(helix, end, feed, settings);
}
void ForwardingSimulationStream::doOnLinear5D(Orvo::Point3D const& target, Orvo::Vector3D const& toolAxis,
                                              double feed, MotionSettings const& settings) {
  m_forwardStream->onLinear5D(target, toolAxis, feed, settings);
}
void ForwardingSimulationStream::doOnRapid5D(Orvo::Point3D const& target, Orvo::Vector3D const& toolAxis,
                                             MotionSettings const& settings) {
  m_forwardStream->onRapid5D(target, toolAxis, settings);
}
void ForwardingSimulationStream::doOnNcCodeMovement(NcCodeMovement const& movement) {
  m_forwardStream->onNcCodeMovement(movement);
}
void ForwardingSimulationStream::doOnTCPCoordMode(bool on) { m_forwardStream->onTCPCoordMode(on); }
void ForwardingSimulationStream::doOnTiltedWorkPlane(NcCodeTiltedWorkPlane const& plane) {
  m_forwardStream->onTiltedWorkPlane(plane);
}
void ForwardingSimulationStream::doOnRetractAlongToolAxisToLimit() { m_forwardStream->onRetractAlongToolAxisToLimit(); }
void ForwardingSimulationStream::doOnSpindleSpeed(double speed) { m_forwardStream->onSpindleSpeed(speed); }
void ForwardingSimulationStream::doOnToolpathEntityIndex(Orvo::ToolpathEntityIndex const& index) {
  m_forwardStream->onToolpathEntityIndex(index);
}

}  // namespace machine
