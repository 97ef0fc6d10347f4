#include "machine/machine/MockSimulationStream.h"

#include <iostream>

namespace machine {

MockSimulationStream::~MockSimulationStream() = default;

std::string MockSimulationStream::asString(Method method) {
  static char const* const names[] = {"doOnApiVersion",
                                      "doOnAxisOrdering",
                                      "doOnAxisValues",
                                      "doOnNcOutput",
                                      "doOnNcProgramId",
                                      "doOnOperationId",
                                      "doOnMachineId",
                                      "doOnCommand",
                                      "doOnPatternOpen",
                                      "doOnPatternClose",
                                      "doOnPatternChildInstance",
                                      "doOnSection",
                                      "doOnSectionEnd",
                                      "doOnWorkOffset",
                                      "doOnIssue",
                                      "doOnNCContext",
                                      "doOnNCTool",
                                      "doOnSimGroup",
                                      "doOnSimGroupEnd",
                                      "doOnTaggedFrame",
                                      "doOnLinear",
                                      "doOnRapid",
                                      "doOnHelical",
                                      "doOnLinear5D",
                                      "doOnRapid5D",
                                      "doOnNcCodeMovement",
                                      "doOnKinematicInterpolationMode",
                                      "doOnTCPCoordMode",
                                      "doOnTiltedWorkPlane",
                                      "doOnRetractAlongToolAxisToLimit",
                                      "doOnSpindleSpeed",
                                      "doOnToolpathEntityIndex"};
  int const index = static_cast<int>(method);
  if (index < 0 || index >= static_cast<int>(sizeof(names) / sizeof(names[0]))) return "UNKNOWN";
  return names[index];
}

int MockSimulationStream::countOf(std::string const& name) const {
  auto const it = m_counts.find(name);
  return it == m_counts.end() ? 0 : it->second;
}

std::vector<int> MockSimulationStream::recentPositionsOf(std::string const& name, int start) const {
  std::vector<int> positions;
  int const count = countOf(name);
  for (int occurrence = 0; occurrence < count; ++occurrence) {
    int const position = m_positions.at(std::make_pair(name, occurrence));
    if (position >= start) positions.push_back(position);
  }
  return positions;
}

void MockSimulationStream::print() const {
  for (CallData const& call : m_calls) std::cout << call.methodName << '\n';
}

void MockSimulationStream::recordCall(Method method, Payload payload) {
  std::string name = asString(method);
  int const position = numCalls();
  int& count = m_counts[name];
  m_positions[std::make_pair(name, count)] = position;
  ++count;
  m_calls.push_back(CallData{method, std::move(name), std::move(payload)});
}

void MockSimulationStream::doOnApiVersion(int major, int minor) {
  recordCall(Method::DoOnApiVersion, DoOnApiVersionData{major, minor});
}
void MockSimulationStream::doOnAxisOrdering(Orvo::AxisOrdering const& ordering) {
  recordCall(Method::DoOnAxisOrdering, ordering);
}
void MockSimulationStream::doOnAxisValues(Orvo::AxisValues const& values) { recordCall(Method::DoOnAxisValues, values); }
void MockSimulationStream::doOnNcOutput(std::string const& text) { recordCall(Method::DoOnNcOutput, text); }
void MockSimulationStream::doOnNcProgramId(int id) { recordCall(Method::DoOnNcProgramId, id); }
void MockSimulationStream::doOnOperationId(int id) { recordCall(Method::DoOnOperationId, id); }
void MockSimulationStream::doOnMachineId(int id) { recordCall(Method::DoOnMachineId, id); }
void MockSimulationStream::doOnCommand(SimulationStreamCommand const& command) {
  recordCall(Method::DoOnCommand, command);
}
void MockSimulationStream::doOnPatternOpen(int id) { recordCall(Method::DoOnPatternOpen, id); }
void MockSimulationStream::doOnPatternClose(int id) { recordCall(Method::DoOnPatternClose, id); }
void MockSimulationStream::doOnPatternChildInstance(int instance) {
  recordCall(Method::DoOnPatternChildInstance, instance);
}
void MockSimulationStream::doOnSection(SectionType type) { recordCall(Method::DoOnSection, type); }
void MockSimulationStream::doOnSectionEnd() { recordCall(Method::DoOnSectionEnd, std::monostate{}); }
void MockSimulationStream::doOnWorkOffset(int offset) { recordCall(Method::DoOnWorkOffset, offset); }
void MockSimulationStream::doOnIssue(IssueCode code, std::string const& message) {
  recordCall(Method::DoOnIssue, DoOnIssueData{code, message});
}
void MockSimulationStream::doOnNCContext(Orvo::NCContext const& context) { recordCall(Method::DoOnNCContext, context); }
void MockSimulationStream::doOnNCTool(Orvo::NCTool const& tool) { recordCall(Method::DoOnNCTool, tool); }
void MockSimulationStream::doOnSimGroup(std::string const& name) { recordCall(Method::DoOnSimGroup, name); }
void MockSimulationStream::doOnSimGroupEnd(std::string const& name) { recordCall(Method::DoOnSimGroupEnd, name); }
void MockSimulationStream::doOnTaggedFrame(Orvo::TaggedFrame const& frame) { recordCall(Method::DoOnTaggedFrame, frame); }
void MockSimulationStream::doOnLinear(Orvo::Point3D const& target, double feed, MotionSettings const& settings) {
  recordCall(Method::DoOnLinear, DoOnLinearData{target, feed, settings});
}
void MockSimulationStream::doOnRapid(Orvo::Point3D const& target, MotionSettings const& settings) {
  recordCall(Method::DoOnRapid, DoOnRapidData{target, settings});
}
void MockSimulationStream::doOnHelical(Orvo::Helix const& helix, Orvo::Point3D const& end, double feed,
                                       MotionSettings const& settings) {
  recordCall(Method::DoOnHelical, DoOnHelicalData{helix, end, feed, settings});
}
void MockSimulationStream::doOnLinear5D(Orvo::Point3D const& target, Orvo::Vector3D const& toolAxis, double feed,
                                        MotionSettings const& settings) {
  recordCall(Method::DoOnLinear5D, DoOnLinear5DData{target, toolAxis, feed, settings});
}
void MockSimulationStream::doOnRapid5D(Orvo::Point3D const& target, Orvo::Vector3D const& toolAxis,
                                       MotionSettings const& settings) {
  recordCall(Method::DoOnRapid5D, DoOnRapid5DData{target, toolAxis, settings});
}
void MockSimulationStream::doOnNcCodeMovement(NcCodeMovement const& movement) {
  recordCall(Method::DoOnNcCodeMovement, movement);
}
void MockSimulationStream::doOnTCPCoordMode(bool on) { recordCall(Method::DoOnTCPCoordMode, on); }
void MockSimulationStream::doOnTiltedWorkPlane(NcCodeTiltedWorkPlane const& plane) {
  recordCall(Method::DoOnTiltedWorkPlane, plane.isActive());
}
void MockSimulationStream::doOnRetractAlongToolAxisToLimit() {
  recordCall(Method::DoOnRetractAlongToolAxisToLimit, std::monostate{});
}
void MockSimulationStream::doOnSpindleSpeed(double speed) { recordCall(Method::DoOnSpindleSpeed, speed); }
void MockSimulationStream::doOnToolpathEntityIndex(Orvo::ToolpathEntityIndex const& index) {
  recordCall(Method::DoOnToolpathEntityIndex, index.index());
}

}  // namespace machine
