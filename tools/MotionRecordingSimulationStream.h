#pragma once
// A link that records the machine motions of the events that pass it (one
// for each Operation section, with its context and starting pose) while it
// hands every event on unchanged: a MachineMotionSimulationStream on the
// side of a chain.

#include <memory>

#include "machine/machine/ForwardingSimulationStream.h"
#include "machine/machine/MachineMotionSimulationStream.h"
#include "machine/machine/MachineMotions.h"

namespace mtkit_tool {

class MotionRecordingSimulationStream : public machine::ForwardingSimulationStream {
public:
  explicit MotionRecordingSimulationStream(std::unique_ptr<machine::SimulationStream> next);
  ~MotionRecordingSimulationStream() override;

  /// False once the recorder met a section in a context that is not valid;
  /// what it recorded before stays.
  bool isRecordingOk() const noexcept { return m_recorder.isOk(); }
  /// The motions recorded so far, taken out of the recorder.
  machine::MachineMotions takeMotions();

private:
  void doOnAxisOrdering(Orvo::AxisOrdering const& ordering) override;
  void doOnAxisValues(Orvo::AxisValues const& values) override;
  void doOnNcProgramId(int id) override;
  void doOnOperationId(int id) override;
  void doOnMachineId(int id) override;
  void doOnPatternOpen(int id) override;
  void doOnPatternClose(int id) override;
  void doOnPatternChildInstance(int instance) override;
  void doOnSection(SectionType type) override;
  void doOnSectionEnd() override;
  void doOnWorkOffset(int offset) override;

  machine::MachineMotionSimulationStream m_recorder;
};

}  // namespace mtkit_tool
