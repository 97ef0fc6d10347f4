#pragma once
// A terminal stream that records, for each Operation section, a
// MachineMotion with the section's motion context, the axis ordering and the
// first axis values after the section began: the pose the operation starts
// from. Later values, motions, tools, NC output, issues and commands are
// ignored. The application takes the records from motionRange() once the
// run is over.
//
// The context lives across sections: identifiers and open patterns stay
// until they are changed. A section of any type in a context that is not
// valid ends the stream (isOk() false), and the motions recorded so far stay.

#include <optional>
#include <vector>

#include "machine/machine/MachineMotion.h"
#include "machine/machine/SimulationStream.h"
#include "nc/AxisOrdering.h"
#include "nc/MotionContext.h"

namespace machine {

class MachineMotionSimulationStream : public SimulationStream {
public:
  MachineMotionSimulationStream();
  ~MachineMotionSimulationStream() override;

  /// The live records, for the application to take.
  std::vector<MachineMotion>& motionRange() noexcept { return m_motions; }

private:
  void doOnAxisOrdering(Orvo::AxisOrdering const& ordering) override;
  void doOnAxisValues(Orvo::AxisValues const& values) override;
  void doOnNcOutput(std::string const& text) override;
  void doOnNcProgramId(int id) override;
  void doOnOperationId(int id) override;
  void doOnMachineId(int id) override;
  void doOnCommand(SimulationStreamCommand const& command) override;
  void doOnPatternOpen(int id) override;
  void doOnPatternClose(int id) override;
  void doOnPatternChildInstance(int instance) override;
  void doOnSection(SectionType type) override;
  void doOnSectionEnd() override;
  void doOnWorkOffset(int offset) override;
  void doOnIssue(IssueCode code, std::string const& message) override;
  void doOnNCContext(Orvo::NCContext const& context) override;
  void doOnNCTool(Orvo::NCTool const& tool) override;
  void doOnSimGroup(std::string const& name) override;
  void doOnSimGroupEnd(std::string const& name) override;
  void doOnTaggedFrame(Orvo::TaggedFrame const& frame) override;
  void doOnLinear(Orvo::Point3D const& target, double feed, MotionSettings const& settings) override;
  void doOnRapid(Orvo::Point3D const& target, MotionSettings const& settings) override;
  void doOnHelical(Orvo::Helix const& helix, Orvo::Point3D const& end, double feed,
                   MotionSettings const& settings) override;
  void doOnLinear5D(Orvo::Point3D const& target, Orvo::Vector3D const& toolAxis, double feed,
                    MotionSettings const& settings) override;
  void doOnRapid5D(Orvo::Point3D const& target, Orvo::Vector3D const& toolAxis,
                   MotionSettings const& settings) override;
  void doOnNcCodeMovement(NcCodeMovement const& movement) override;
  void doOnTCPCoordMode(bool on) override;
  void doOnTiltedWorkPlane(NcCodeTiltedWorkPlane const& plane) override;
  void doOnRetractAlongToolAxisToLimit() override;
  void doOnSpindleSpeed(double speed) override;

  Orvo::MotionContext m_context;
  std::optional<MachineMotion> m_currentMotion;
  bool m_awaitingAxisValues = false;
  Orvo::AxisOrdering m_axisOrdering{1};
  std::vector<MachineMotion> m_motions;
};

}  // namespace machine
