#include "machine/machine/MachineMotionSimulationStream.h"

#include "util/utility/Basic.h"

namespace {
constexpr char const* orvoAssertSourcePath = "machine\\machine\\MachineMotionSimulationStream";
}

namespace machine {

MachineMotionSimulationStream::MachineMotionSimulationStream() = default;

MachineMotionSimulationStream::~MachineMotionSimulationStream() = default;

void MachineMotionSimulationStream::doOnMachineId(int id) { m_context.setMachineId(id); }

void MachineMotionSimulationStream::doOnNcProgramId(int id) { m_context.setNcProgramId(id); }

void MachineMotionSimulationStream::doOnOperationId(int id) { m_context.setToolpathId(id); }

void MachineMotionSimulationStream::doOnWorkOffset(int offset) { m_context.setWorkOffset(offset); }

void MachineMotionSimulationStream::doOnPatternOpen(int id) { m_context.openPattern(id); }

void MachineMotionSimulationStream::doOnPatternClose(int) { m_context.closePattern(); }

void MachineMotionSimulationStream::doOnPatternChildInstance(int instance) { m_context.setPatternInstance(instance); }

void MachineMotionSimulationStream::doOnAxisOrdering(Orvo::AxisOrdering const& ordering) {
  m_axisOrdering = ordering;
  if (m_currentMotion) m_currentMotion->setAxisOrdering(ordering);
}

void MachineMotionSimulationStream::doOnSection(SectionType type) {
  if (!m_context.isValid()) {
    // A section in an unidentified context could not be told from another.
    setIsOk(false);
    return;
  }
  if (type != SectionType::Operation) return;
  m_currentMotion.emplace(m_context);
  m_currentMotion->setAxisOrdering(m_axisOrdering);
  m_awaitingAxisValues = true;
}

void MachineMotionSimulationStream::doOnAxisValues(Orvo::AxisValues const& values) {
  if (!m_awaitingAxisValues) return;
  ORVO_ASSERT(m_currentMotion);
  if (m_currentMotion) m_currentMotion->appendEntity(values);
  m_awaitingAxisValues = false;
}

void MachineMotionSimulationStream::doOnSectionEnd() {
  if (m_currentMotion) {
    m_motions.push_back(std::move(*m_currentMotion));
    m_currentMotion.reset();
  }
  m_awaitingAxisValues = false;
}

// Everything else is of no concern to the records.
void MachineMotionSimulationStream::doOnNcOutput(std::string const&) {}
void MachineMotionSimulationStream::doOnCommand(SimulationStreamCommand const&) {}
void MachineMotionSimulationStream::doOnIssue(IssueCode, std::string const&) {}
void MachineMotionSimulationStream::doOnNCContext(Orvo::NCContext const&) {}
void MachineMotionSimulationStream::doOnNCTool(Orvo::NCTool const&) {}
void MachineMotionSimulationStream::doOnSimGroup(std::string const&) {}
void MachineMotionSimulationStream::doOnSimGroupEnd(std::string const&) {}
void MachineMotionSimulationStream::doOnTaggedFrame(Orvo::TaggedFrame const&) {}
void MachineMotionSimulationStream::doOnLinear(Orvo::Point3D const&, double, MotionSettings const&) {}
void MachineMotionSimulationStream::doOnRapid(Orvo::Point3D const&, MotionSettings const&) {}
void MachineMotionSimulationStream::doOnHelical(Orvo::Helix const&, Orvo::Point3D const&, double,
                                                MotionSettings const&) {}
void MachineMotionSimulationStream::doOnLinear5D(Orvo::Point3D const&, Orvo::Vector3D const&, double,
                                                 MotionSettings const&) {}
void MachineMotionSimulationStream::doOnRapid5D(Orvo::Point3D const&, Orvo::Vector3D const&, MotionSettings const&) {}
void MachineMotionSimulationStream::doOnNcCodeMovement(NcCodeMovement const&) {}
void MachineMotionSimulationStream::doOnTCPCoordMode(bool) {}
void MachineMotionSimulationStream::doOnTiltedWorkPlane(NcCodeTiltedWorkPlane const&) {}
void MachineMotionSimulationStream::doOnRetractAlongToolAxisToLimit() {}
void MachineMotionSimulationStream::doOnSpindleSpeed(double) {}

}  // namespace machine
