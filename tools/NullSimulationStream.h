#pragma once
// A terminal stream that takes every event and keeps nothing: the end of a
// chain whose results are read from the links ahead of it.

#include "machine/machine/SimulationStream.h"

namespace mtkit_tool {

class NullSimulationStream : public machine::SimulationStream {
public:
  NullSimulationStream() = default;
  ~NullSimulationStream() override;

private:
  void doOnAxisOrdering(Orvo::AxisOrdering const&) override {}
  void doOnAxisValues(Orvo::AxisValues const&) override {}
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
  void doOnIssue(IssueCode, std::string const&) override {}
  void doOnNCContext(Orvo::NCContext const&) override {}
  void doOnNCTool(Orvo::NCTool const&) override {}
  void doOnSimGroup(std::string const&) override {}
  void doOnSimGroupEnd(std::string const&) override {}
  void doOnTaggedFrame(Orvo::TaggedFrame const&) override {}
  void doOnLinear(Orvo::Point3D const&, double, machine::MotionSettings const&) override {}
  void doOnRapid(Orvo::Point3D const&, machine::MotionSettings const&) override {}
  void doOnHelical(Orvo::Helix const&, Orvo::Point3D const&, double, machine::MotionSettings const&) override {}
  void doOnLinear5D(Orvo::Point3D const&, Orvo::Vector3D const&, double, machine::MotionSettings const&) override {}
  void doOnRapid5D(Orvo::Point3D const&, Orvo::Vector3D const&, machine::MotionSettings const&) override {}
  void doOnNcCodeMovement(machine::NcCodeMovement const&) override {}
  void doOnTCPCoordMode(bool) override {}
  void doOnTiltedWorkPlane(machine::NcCodeTiltedWorkPlane const&) override {}
  void doOnRetractAlongToolAxisToLimit() override {}
  void doOnSpindleSpeed(double) override {}
};

}  // namespace mtkit_tool
