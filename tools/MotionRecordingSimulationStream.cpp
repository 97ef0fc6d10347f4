#include "MotionRecordingSimulationStream.h"

namespace mtkit_tool {

MotionRecordingSimulationStream::MotionRecordingSimulationStream(std::unique_ptr<machine::SimulationStream> next)
    : ForwardingSimulationStream(std::move(next)) {}

MotionRecordingSimulationStream::~MotionRecordingSimulationStream() = default;

machine::MachineMotions MotionRecordingSimulationStream::takeMotions() {
  machine::MachineMotions motions;
  for (machine::MachineMotion& motion : m_recorder.motionRange()) motions.insert(std::move(motion));
  m_recorder.motionRange().clear();
  return motions;
}

// Each event goes to the recorder first, then on through the next link's
// own guard.

void MotionRecordingSimulationStream::doOnAxisOrdering(Orvo::AxisOrdering const& ordering) {
  m_recorder.onAxisOrdering(ordering);
  forwardStream()->onAxisOrdering(ordering);
}

void MotionRecordingSimulationStream::doOnAxisValues(Orvo::AxisValues const& values) {
  m_recorder.onAxisValues(values);
  forwardStream()->onAxisValues(values);
}

void MotionRecordingSimulationStream::doOnNcProgramId(int id) {
  m_recorder.onNcProgramId(id);
  forwardStream()->onNcProgramId(id);
}

void MotionRecordingSimulationStream::doOnOperationId(int id) {
  m_recorder.onOperationId(id);
  forwardStream()->onOperationId(id);
}

void MotionRecordingSimulationStream::doOnMachineId(int id) {
  m_recorder.onMachineId(id);
  forwardStream()->onMachineId(id);
}

void MotionRecordingSimulationStream::doOnPatternOpen(int id) {
  m_recorder.onPatternOpen(id);
  forwardStream()->onPatternOpen(id);
}

void MotionRecordingSimulationStream::doOnPatternClose(int id) {
  m_recorder.onPatternClose(id);
  forwardStream()->onPatternClose(id);
}

void MotionRecordingSimulationStream::doOnPatternChildInstance(int instance) {
  m_recorder.onPatternChildInstance(instance);
  forwardStream()->onPatternChildInstance(instance);
}

void MotionRecordingSimulationStream::doOnSection(SectionType type) {
  m_recorder.onSection(type);
  forwardStream()->onSection(type);
}

void MotionRecordingSimulationStream::doOnSectionEnd() {
  m_recorder.onSectionEnd();
  forwardStream()->onSectionEnd();
}

void MotionRecordingSimulationStream::doOnWorkOffset(int offset) {
  m_recorder.onWorkOffset(offset);
  forwardStream()->onWorkOffset(offset);
}

}  // namespace mtkit_tool
