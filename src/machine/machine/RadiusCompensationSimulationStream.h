#pragma once
// The bridge to the look-ahead cutter compensator. On the way in it is a
// simulation stream; motions of an Operation section go through
// Orvo::NCRadiusCompensationStream, which works on the older NCStream
// interface and hands them back, delayed and perhaps changed in number, to
// this object's own NCStream side, which turns them into simulation events
// for the next stream. Motions of any other section take the same way past
// the compensator, so that they are transformed alike.
//
// The real work is keeping everything else in step with that delay:
//   - Each motion going in is preceded by a line marker (onLineNumber) with
//     a growing number. NC output of an Operation section is queued under
//     the number of the next marker, and leaves when that marker comes back
//     out, so it stays just ahead of the motion that followed it.
//   - A placeholder onAxisValues of an Operation section is held, and the
//     last values received are sent again ahead of every motion that comes
//     out, so that the solver behind gets one placeholder per motion, also
//     for motions the compensator adds.
//   - Tagged frames "UserTableAttach", "PartReference" and "TPCS" set the
//     transforms between stream space and the compensator's (TPCS) space.
// Other events go on at once, and may overtake motions still held.
//
// Use it through SimulationStream: names that both interfaces have (such as
// onSectionEnd, onSpindleSpeed, onToolpathEntityIndex) are its NCStream side
// when called on this class directly, and that side is private. The
// compensator reaches that side through its NCStream pointer.
//
// The compensator's warnings become onIssue(POST_WARNING, text) on the next
// stream, placed ahead of the motion they concern (see onCompensatorWarning).

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "machine/machine/SimulationStream.h"
#include "nc/AxisValues.h"
#include "nc/NCRadiusCompensationStream.h"
#include "nc/NCStream.h"
#include "util/utility/math/Frame.h"
#include "util/utility/math/Point3D.h"
#include "util/utility/math/Transform3D.h"

namespace machine {

class RadiusCompensationSimulationStream : public SimulationStream, public Orvo::NCStream {
public:
  /// The look-ahead of the compensator, in motions.
  static constexpr std::size_t kLookAhead = 100;

  /// `forward`, the next stream, takes every event that comes out.
  explicit RadiusCompensationSimulationStream(std::unique_ptr<SimulationStream> forward);
  /// Closes the compensator first, while the next stream is still alive, so
  /// that the motions it still holds reach it.
  ~RadiusCompensationSimulationStream() override;

  // The simulation events whose names the NCStream side uses too.
  using SimulationStream::onCommand;
  using SimulationStream::onLinear;
  using SimulationStream::onLinear5D;
  using SimulationStream::onRapid;
  using SimulationStream::onRapid5D;
  using SimulationStream::onSection;

  /// Whether the compensator is applying a compensation side now.
  bool isCompensating() const noexcept { return m_compensator.isCompensating(); }
  SimulationStream* forwardStream() const noexcept { return m_forwardStream.get(); }

  /// Stream space to the compensator's space, and back.
  Orvo::Transform3D const& toCompensator() const noexcept { return m_toCompensator; }
  Orvo::Transform3D const& toStream() const noexcept { return m_toStream; }

private:
  // Reaches the compensator's warning handler, which only the compensator's
  // geometry would otherwise call.
  friend struct RadiusCompensationSimulationStreamTestAccess;

  // The simulation side: slots 2 to 31.
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

  // The NCStream side: what the compensator (or the bypass) hands out.
  bool passThrough(std::wstring const& text) override;
  bool passThrough(std::string const& text) override;
  bool onComment(std::wstring const& text) override;
  bool onComment(std::string const& text) override;
  bool onCommand(Command command) override;
  bool onToolpathEntityIndex(Orvo::ToolpathEntityIndex const& index) override;
  bool onMachineCommand(int code) override;
  bool onCoolant(int mode) override;
  bool onSpindleSpeed(double speed) override;
  bool onRadiusCompensationMode(bool on) override;
  bool onRadiusCompensation(int side) override;
  bool onOpen() override;
  using Orvo::NCStream::onParameter;
  bool onParameter(std::string const& name, Orvo::Point3D const& value) override;
  bool onParameter(std::string const& name, double value) override;
  bool onParameter(std::string const& name, int value) override;
  bool onParameter(std::string const& name, std::wstring const& value) override;
  bool onParameter(std::string const& name, std::string const& value) override;
  bool onStock(Orvo::Point3D const& minimum, Orvo::Point3D const& maximum) override;
  bool onContext(Orvo::NCContext const& context) override;
  bool onTool(Orvo::NCTool const& tool) override;
  bool onToolChange(Orvo::NCTool const& tool) override;
  bool onSection() override;
  bool onGroup(std::string const& name) override;
  bool onTurnGroup(std::string const& name) override;
  bool onGroupEnd() override;
  bool onTurnGroupEnd() override;
  bool onSectionEnd() override;
  bool onDwell(double seconds) override;
  bool onRapid(Orvo::Point3D const& target, unsigned int flags) override;
  bool onRapid5D(Orvo::Point3D const& target, Orvo::Vector3D const& toolAxis, unsigned int flags) override;
  bool onLinear(Orvo::Point3D const& target, double feed, unsigned int flags) override;
  bool onLinear5D(Orvo::Point3D const& target, Orvo::Vector3D const& toolAxis, double feed,
                  unsigned int flags) override;
  bool onLinearExtrude(Orvo::Point3D const& target, double feed, double extrusion, unsigned int flags) override;
  bool onCWArc(Orvo::Point3D const& center, Orvo::Point3D const& end, Orvo::Vector3D const& normal, double feed,
               unsigned int flags) override;
  bool onCCWArc(Orvo::Point3D const& center, Orvo::Point3D const& end, Orvo::Vector3D const& normal, double feed,
                unsigned int flags) override;
  bool onCircular(Orvo::Point3D const& center, Orvo::Point3D const& end, Orvo::Vector3D const& normal,
                  double sweep, double feed, unsigned int flags) override;
  bool onCWArcExtrude(Orvo::Point3D const& center, Orvo::Point3D const& end, Orvo::Vector3D const& normal,
                      double feed, double extrusion, unsigned int flags) override;
  bool onCCWArcExtrude(Orvo::Point3D const& center, Orvo::Point3D const& end, Orvo::Vector3D const& normal,
                       double feed, double extrusion, unsigned int flags) override;
  bool onCircularExtrude(Orvo::Point3D const& center, Orvo::Point3D const& end, Orvo::Vector3D const& normal,
                         double sweep, double feed, double extrusion, unsigned int flags) override;
  bool onCWCircle(Orvo::Point3D const& center, Orvo::Point3D const& end, Orvo::Vector3D const& normal, double feed,
                  unsigned int flags) override;
  bool onCCWCircle(Orvo::Point3D const& center, Orvo::Point3D const& end, Orvo::Vector3D const& normal, double feed,
                   unsigned int flags) override;
  bool onSpline(std::vector<Orvo::Point3D> const& controlPoints, double feed, unsigned int flags) override;
  bool onBezier(std::vector<Orvo::Point3D> const& controlPoints, double feed, unsigned int flags) override;
  bool onNURBS(std::vector<Orvo::Point3D> const& controlPoints, std::vector<double> const& weights,
               std::vector<double> const& knots, int degree, double feed, unsigned int flags) override;
  bool onSkip() override;
  bool onLineNumber(unsigned int number) override;
  bool onMachineAxisOrdering(Orvo::AxisOrdering const& ordering) override;
  bool onMachineAxisValues(Orvo::AxisValues const& values) override;
  bool onFrame(Orvo::Frame const& frame) override;
  bool onClose() override;

  Orvo::NCStream* ownSide() noexcept { return static_cast<Orvo::NCStream*>(this); }
  /// The marker ahead of a motion going in, in an Operation section.
  void addNcOutputIfNeeded();
  /// Sends the held axis values ahead of a motion coming out.
  void addAxisValuesIfNeeded();
  /// Queues NC output under the marker of the next motion.
  void queueNcOutput(std::string const& text);
  /// Sends what was queued under markers up to `number`.
  void flushQueuedUpTo(unsigned int number);
  void onCompensatorWarning(unsigned int lineNumber, std::string const& message);
  void updateTransformations();
  /// Sends a helical arc from the last position out to `end`.
  void sendArc(Orvo::Helix const& helix, Orvo::Point3D const& end, double feed, unsigned int flags);

  Orvo::NCRadiusCompensationStream m_compensator;
  Orvo::NCStream* m_target;
  std::unique_ptr<SimulationStream> m_forwardStream;
  bool m_axisValuesPending = false;
  bool m_inSection = false;
  std::uint32_t m_nextLineNumber = 1;
  SectionType m_sectionType = SectionType::INVALID;
  Orvo::AxisValues m_lastAxisValues;
  Orvo::Point3D m_lastPosition{0, 0, 0};
  // Used as a ring, oldest entry at m_queuedNcOutputHead: a flush takes
  // entries off the front and a queued text is assigned into a slot whose
  // string storage is reused, so that steady traffic neither shifts the
  // queue nor allocates.
  std::vector<std::pair<unsigned int, std::string>> m_queuedNcOutput;
  Orvo::Frame m_userTableAttachFrame{Orvo::IdentityTag{}};
  Orvo::Frame m_partReferenceFrame{Orvo::IdentityTag{}};
  Orvo::Frame m_tpcsFrame{Orvo::IdentityTag{}};
  Orvo::Transform3D m_toStream;
  Orvo::Transform3D m_toCompensator;
  // Beyond the bridge's own state: the compensator's warnings waiting for
  // the marker of the motion they concern, and the highest marker out.
  std::vector<std::pair<unsigned int, std::string>> m_queuedWarnings;
  unsigned int m_lastMarkerOut = 0;
  std::size_t m_queuedNcOutputHead = 0;
  std::size_t m_queuedNcOutputCount = 0;
};

}  // namespace machine
