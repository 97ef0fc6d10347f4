#pragma once
// A link of a chain: it owns the next stream and hands every event on,
// through the next stream's public operation so that its guard runs too.
// Subclasses override the slots they rewrite.
//
// The API version is not handed on: each link accepts or refuses it for
// itself, and the next link implies 1.0 on its first event. Nor does a link
// look at the next stream's isOk(): a failed tail leaves the links ahead of
// it ok.

#include <memory>

#include "machine/machine/SimulationStream.h"

namespace machine {

class ForwardingSimulationStream : public SimulationStream {
public:
  /// `stream`, the next stream, must not be null.
  explicit ForwardingSimulationStream(std::unique_ptr<SimulationStream> stream);

  SimulationStream* forwardStream() const noexcept { return m_forwardStream.get(); }
  /// Hands the next stream to the caller. The link is unusable afterwards:
  /// any event would be handed on through a null pointer.
  SimulationStream* release() noexcept { return m_forwardStream.release(); }

protected:
  ~ForwardingSimulationStream() override;

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
  void doOnToolpathEntityIndex(Orvo::ToolpathEntityIndex const& index) override;

  std::unique_ptr<SimulationStream> m_forwardStream;
};

}  // namespace machine
