#pragma once
// The sink of NC events on their way from a post-processor run to the
// machine simulation. Producers call the public on... operations; each runs
// the guard and then the private virtual doOn... of the same name. A
// terminal stream consumes events, a link (ForwardingSimulationStream) owns
// the next stream and hands them on.
//
// The guard: a stream that has failed (isOk() false) drops every event
// without a trace, and a stream that has seen no API version implies 1.0
// once, before its first event, through doOnApiVersion(1, 0).
//
// No event returns a value. Problems go down the chain as onIssue events; a
// stream that fails keeps a false isOk(), which the application polls.

#include <string>

#include "machine/machine/MotionSettings.h"
#include "machine/machine/NcCodeMovement.h"
#include "machine/machine/NcCodeTiltedWorkPlane.h"
#include "machine/machine/SimulationStreamCommand.h"
#include "nc/AxisOrdering.h"
#include "nc/AxisValues.h"
#include "nc/Helix.h"
#include "nc/NCContext.h"
#include "nc/NCMessageSeverity.h"
#include "nc/NCTool.h"
#include "nc/TaggedFrame.h"
#include "nc/ToolpathEntityIndex.h"
#include "util/utility/math/Point3D.h"
#include "util/utility/math/Vector3D.h"

namespace machine {

class SimulationStream {
public:
  enum class SectionType : int {
    /// Only the state of a stream that has seen no section; never sent.
    INVALID = -1,
    Operation = 0,
    BeforeOperation = 1,
    AfterOperation = 2,
    NoTool = 3,
  };

  /// Issue codes travel as plain integers: a producer may send codes that
  /// have no name here, and they pass through unchanged.
  enum class IssueCode : int {
    SOLVE_FAILED = 8,
    TWP_WHILE_TCP_ACTIVE = 14,
    TCP_WHILE_TWP_ACTIVE = 15,
    TCP_CHANGE_WHILE_COMPENSATING = 16,
    TWP_CHANGE_WHILE_COMPENSATING = 17,
    /// The one code of warning severity; only ever classified here.
    POST_WARNING = 19,
  };

  virtual ~SimulationStream();

  SimulationStream(SimulationStream const&) = delete;
  SimulationStream& operator=(SimulationStream const&) = delete;

  /// Not guarded by the implied version: the producer's version is checked
  /// by doOnApiVersion and counts as seen whatever the outcome.
  void onApiVersion(int major, int minor) {
    if (!m_isOk) return;
    doOnApiVersion(major, minor);
    m_apiVersionSeen = true;
  }
  void onAxisOrdering(Orvo::AxisOrdering const& ordering) {
    if (!isPreCheckOk()) return;
    m_numAxesInOrdering = ordering.size();
    doOnAxisOrdering(ordering);
  }
  /// Must carry numAxesInOrdering() values.
  void onAxisValues(Orvo::AxisValues const& avs);
  void onNcOutput(std::string const& text) {
    if (!isPreCheckOk()) return;
    doOnNcOutput(text);
  }
  void onNcOutput(std::wstring const& text);
  void onNcProgramId(int id) {
    if (!isPreCheckOk()) return;
    doOnNcProgramId(id);
  }
  void onOperationId(int id) {
    if (!isPreCheckOk()) return;
    doOnOperationId(id);
  }
  void onMachineId(int id) {
    if (!isPreCheckOk()) return;
    doOnMachineId(id);
  }
  void onCommand(SimulationStreamCommand const& command) {
    if (!isPreCheckOk()) return;
    doOnCommand(command);
  }
  void onPatternOpen(int id) {
    if (!isPreCheckOk()) return;
    doOnPatternOpen(id);
  }
  void onPatternClose(int id) {
    if (!isPreCheckOk()) return;
    doOnPatternClose(id);
  }
  void onPatternChildInstance(int instance) {
    if (!isPreCheckOk()) return;
    doOnPatternChildInstance(instance);
  }
  void onSection(SectionType type) {
    if (!isPreCheckOk()) return;
    doOnSection(type);
  }
  void onSectionEnd() {
    if (!isPreCheckOk()) return;
    doOnSectionEnd();
  }
  void onWorkOffset(int offset) {
    if (!isPreCheckOk()) return;
    doOnWorkOffset(offset);
  }
  /// `message` is UTF-8.
  void onIssue(IssueCode code, std::string const& message) {
    if (!isPreCheckOk()) return;
    doOnIssue(code, message);
  }
  void onIssue(IssueCode code, std::wstring const& message);
  void onNCContext(Orvo::NCContext const& context) {
    if (!isPreCheckOk()) return;
    doOnNCContext(context);
  }
  void onNCTool(Orvo::NCTool const& tool) {
    if (!isPreCheckOk()) return;
    doOnNCTool(tool);
  }
  void onSimGroup(std::string const& name) {
    if (!isPreCheckOk()) return;
    doOnSimGroup(name);
  }
  void onSimGroupEnd(std::string const& name) {
    if (!isPreCheckOk()) return;
    doOnSimGroupEnd(name);
  }
  void onTaggedFrame(Orvo::TaggedFrame const& frame) {
    if (!isPreCheckOk()) return;
    doOnTaggedFrame(frame);
  }
  void onLinear(Orvo::Point3D const& target, double feed, MotionSettings const& settings) {
    if (!isPreCheckOk()) return;
    doOnLinear(target, feed, settings);
  }
  void onRapid(Orvo::Point3D const& target, MotionSettings const& settings) {
    if (!isPreCheckOk()) return;
    doOnRapid(target, settings);
  }
  void onHelical(Orvo::Helix const& helix, Orvo::Point3D const& end, double feed, MotionSettings const& settings) {
    if (!isPreCheckOk()) return;
    doOnHelical(helix, end, feed, settings);
  }
  void onLinear5D(Orvo::Point3D const& target, Orvo::Vector3D const& toolAxis, double feed,
                  MotionSettings const& settings) {
    if (!isPreCheckOk()) return;
    doOnLinear5D(target, toolAxis, feed, settings);
  }
  void onRapid5D(Orvo::Point3D const& target, Orvo::Vector3D const& toolAxis, MotionSettings const& settings) {
    if (!isPreCheckOk()) return;
    doOnRapid5D(target, toolAxis, settings);
  }
  void onNcCodeMovement(NcCodeMovement const& movement) {
    if (!isPreCheckOk()) return;
    doOnNcCodeMovement(movement);
  }
  void onTCPCoordMode(bool on) {
    if (!isPreCheckOk()) return;
    doOnTCPCoordMode(on);
  }
  void onTiltedWorkPlane(NcCodeTiltedWorkPlane const& plane) {
    if (!isPreCheckOk()) return;
    doOnTiltedWorkPlane(plane);
  }
  void onRetractAlongToolAxisToLimit() {
    if (!isPreCheckOk()) return;
    doOnRetractAlongToolAxisToLimit();
  }
  void onSpindleSpeed(double speed) {
    if (!isPreCheckOk()) return;
    doOnSpindleSpeed(speed);
  }
  /// Only the failure check: this event neither implies nor marks a version.
  void onToolpathEntityIndex(Orvo::ToolpathEntityIndex const& index) {
    if (!m_isOk) return;
    doOnToolpathEntityIndex(index);
  }

  bool isOk() const noexcept { return m_isOk; }
  /// The axis count of the last onAxisOrdering; -1 before the first.
  int numAxesInOrdering() const noexcept { return m_numAxesInOrdering; }

  /// Level 2 (a warning) for code 19, level 3 (an error) for every other.
  static Orvo::NCMessageSeverity severityOfIssue(IssueCode code) noexcept;

protected:
  SimulationStream() = default;

  /// Only a stream's own code may fail it; nothing turns it back to ok by itself.
  void setIsOk(bool isOk) noexcept { m_isOk = isOk; }

private:
  /// Steps 1 and 2 of the guard; whether the event may go on.
  bool isPreCheckOk() {
    if (!m_isOk) return false;
    if (!m_apiVersionSeen) {
      doOnApiVersion(1, 0);
      m_apiVersionSeen = true;
    }
    return m_isOk;
  }

  /// Accepts major 1 with a minor below 1; anything else fails the stream.
  virtual void doOnApiVersion(int major, int minor);
  virtual void doOnAxisOrdering(Orvo::AxisOrdering const& ordering) = 0;
  virtual void doOnAxisValues(Orvo::AxisValues const& values) = 0;
  virtual void doOnNcOutput(std::string const& text) = 0;
  virtual void doOnNcProgramId(int id) = 0;
  virtual void doOnOperationId(int id) = 0;
  virtual void doOnMachineId(int id) = 0;
  virtual void doOnCommand(SimulationStreamCommand const& command) = 0;
  virtual void doOnPatternOpen(int id) = 0;
  virtual void doOnPatternClose(int id) = 0;
  virtual void doOnPatternChildInstance(int instance) = 0;
  virtual void doOnSection(SectionType type) = 0;
  virtual void doOnSectionEnd() = 0;
  virtual void doOnWorkOffset(int offset) = 0;
  virtual void doOnIssue(IssueCode code, std::string const& message) = 0;
  virtual void doOnNCContext(Orvo::NCContext const& context) = 0;
  virtual void doOnNCTool(Orvo::NCTool const& tool) = 0;
  virtual void doOnSimGroup(std::string const& name) = 0;
  virtual void doOnSimGroupEnd(std::string const& name) = 0;
  virtual void doOnTaggedFrame(Orvo::TaggedFrame const& frame) = 0;
  virtual void doOnLinear(Orvo::Point3D const& target, double feed, MotionSettings const& settings) = 0;
  virtual void doOnRapid(Orvo::Point3D const& target, MotionSettings const& settings) = 0;
  virtual void doOnHelical(Orvo::Helix const& helix, Orvo::Point3D const& end, double feed,
                           MotionSettings const& settings) = 0;
  virtual void doOnLinear5D(Orvo::Point3D const& target, Orvo::Vector3D const& toolAxis, double feed,
                            MotionSettings const& settings) = 0;
  virtual void doOnRapid5D(Orvo::Point3D const& target, Orvo::Vector3D const& toolAxis,
                           MotionSettings const& settings) = 0;
  virtual void doOnNcCodeMovement(NcCodeMovement const& movement) = 0;
  virtual void doOnTCPCoordMode(bool on) = 0;
  virtual void doOnTiltedWorkPlane(NcCodeTiltedWorkPlane const& plane) = 0;
  virtual void doOnRetractAlongToolAxisToLimit() = 0;
  virtual void doOnSpindleSpeed(double speed) = 0;
  /// Does nothing here.
  virtual void doOnToolpathEntityIndex(Orvo::ToolpathEntityIndex const& index);

  /// Encodes `wide` as UTF-8 into m_utf8Buffer, reusing its storage.
  void convertWStringToString(std::wstring const& wide);

  bool m_isOk = true;
  bool m_apiVersionSeen = false;
  int m_numAxesInOrdering = -1;
  std::string m_utf8Buffer;
};

}  // namespace machine
