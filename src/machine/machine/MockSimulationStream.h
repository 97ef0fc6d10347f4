#pragma once
// A terminal stream that records every call reaching it, with its
// arguments, so that what a link hands on can be checked afterwards. It
// forwards nothing and never fails by itself: even an API version it would
// not accept is only recorded.

#include <map>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "machine/machine/SimulationStream.h"

namespace machine {

class MockSimulationStream : public SimulationStream {
public:
  enum class Method : int {
    DoOnApiVersion = 0,
    DoOnAxisOrdering = 1,
    DoOnAxisValues = 2,
    DoOnNcOutput = 3,
    DoOnNcProgramId = 4,
    DoOnOperationId = 5,
    DoOnMachineId = 6,
    DoOnCommand = 7,
    DoOnPatternOpen = 8,
    DoOnPatternClose = 9,
    DoOnPatternChildInstance = 10,
    DoOnSection = 11,
    DoOnSectionEnd = 12,
    DoOnWorkOffset = 13,
    DoOnIssue = 14,
    DoOnNCContext = 15,
    DoOnNCTool = 16,
    DoOnSimGroup = 17,
    DoOnSimGroupEnd = 18,
    DoOnTaggedFrame = 19,
    DoOnLinear = 20,
    DoOnRapid = 21,
    DoOnHelical = 22,
    DoOnLinear5D = 23,
    DoOnRapid5D = 24,
    DoOnNcCodeMovement = 25,
    /// Named, but no event records it.
    DoOnKinematicInterpolationMode = 26,
    DoOnTCPCoordMode = 27,
    DoOnTiltedWorkPlane = 28,
    DoOnRetractAlongToolAxisToLimit = 29,
    DoOnSpindleSpeed = 30,
    DoOnToolpathEntityIndex = 31,
  };

  struct DoOnApiVersionData {
    int major;
    int minor;
  };
  struct DoOnIssueData {
    IssueCode code;
    std::string message;
  };
  struct DoOnHelicalData {
    Orvo::Helix helix;
    Orvo::Point3D end;
    double feed;
    MotionSettings settings;
  };
  struct DoOnLinearData {
    Orvo::Point3D target;
    double feed;
    MotionSettings settings;
  };
  struct DoOnLinear5DData {
    Orvo::Point3D target;
    Orvo::Vector3D toolAxis;
    double feed;
    MotionSettings settings;
  };
  struct DoOnRapidData {
    Orvo::Point3D target;
    MotionSettings settings;
  };
  struct DoOnRapid5DData {
    Orvo::Point3D target;
    Orvo::Vector3D toolAxis;
    MotionSettings settings;
  };

  // What each event keeps: ids, offsets and instances as int; a toolpath
  // entity index as its unsigned number; the TCP mode, and of a tilted work
  // plane whether it is active, as bool (the plane itself is polymorphic and
  // not kept); a spindle speed as double; texts as string; nothing for the
  // section end and the retract.
  using Payload = std::variant<std::monostate, int, unsigned int, bool, double, std::string, Orvo::AxisValues,
                               Orvo::AxisOrdering, Orvo::TaggedFrame, Orvo::NCTool, Orvo::NCContext,
                               DoOnApiVersionData, DoOnIssueData, DoOnHelicalData, DoOnLinearData, DoOnLinear5DData,
                               DoOnRapidData, DoOnRapid5DData, SectionType, SimulationStreamCommand, NcCodeMovement>;

  struct CallData {
    Method method;
    std::string methodName;
    Payload payload;
  };

  MockSimulationStream() = default;
  ~MockSimulationStream() override;

  int numCalls() const noexcept { return static_cast<int>(m_calls.size()); }
  /// Not bounds-checked.
  CallData const& call(int i) const { return m_calls[static_cast<std::size_t>(i)]; }
  /// Calls of the method of that text; 0 if none.
  int countOf(std::string const& name) const;
  /// Positions of the method's calls, ascending.
  std::vector<int> positionsOf(std::string const& name) const { return recentPositionsOf(name, 0); }
  /// The same, from position `start` on.
  std::vector<int> recentPositionsOf(std::string const& name, int start) const;
  /// Each call's method text on its own line, to the standard output.
  void print() const;

  /// The method's text, "UNKNOWN" for a value that is not a Method.
  static std::string asString(Method method);

  // The payload of the i-th call of an event, counted from 0 per event. An
  // occurrence that was not recorded throws std::out_of_range; a call that
  // holds another payload throws std::bad_variant_access.
  DoOnApiVersionData apiVersion(int i) const { return payloadOf<DoOnApiVersionData>(Method::DoOnApiVersion, i); }
  Orvo::AxisOrdering axisOrdering(int i) const { return payloadOf<Orvo::AxisOrdering>(Method::DoOnAxisOrdering, i); }
  Orvo::AxisValues axisValues(int i) const { return payloadOf<Orvo::AxisValues>(Method::DoOnAxisValues, i); }
  SimulationStreamCommand command(int i) const { return payloadOf<SimulationStreamCommand>(Method::DoOnCommand, i); }
  DoOnHelicalData helical(int i) const { return payloadOf<DoOnHelicalData>(Method::DoOnHelical, i); }
  DoOnIssueData issue(int i) const { return payloadOf<DoOnIssueData>(Method::DoOnIssue, i); }
  DoOnLinearData linear(int i) const { return payloadOf<DoOnLinearData>(Method::DoOnLinear, i); }
  DoOnLinear5DData linear5D(int i) const { return payloadOf<DoOnLinear5DData>(Method::DoOnLinear5D, i); }
  int machineId(int i) const { return payloadOf<int>(Method::DoOnMachineId, i); }
  std::string ncOutput(int i) const { return payloadOf<std::string>(Method::DoOnNcOutput, i); }
  int ncProgramId(int i) const { return payloadOf<int>(Method::DoOnNcProgramId, i); }
  std::string onSimGroup(int i) const { return payloadOf<std::string>(Method::DoOnSimGroup, i); }
  std::string onSimGroupEnd(int i) const { return payloadOf<std::string>(Method::DoOnSimGroupEnd, i); }
  int operationId(int i) const { return payloadOf<int>(Method::DoOnOperationId, i); }
  int patternChildInstance(int i) const { return payloadOf<int>(Method::DoOnPatternChildInstance, i); }
  int patternClose(int i) const { return payloadOf<int>(Method::DoOnPatternClose, i); }
  int patternOpen(int i) const { return payloadOf<int>(Method::DoOnPatternOpen, i); }
  DoOnRapidData rapid(int i) const { return payloadOf<DoOnRapidData>(Method::DoOnRapid, i); }
  DoOnRapid5DData rapid5D(int i) const { return payloadOf<DoOnRapid5DData>(Method::DoOnRapid5D, i); }
  Orvo::TaggedFrame taggedFrame(int i) const { return payloadOf<Orvo::TaggedFrame>(Method::DoOnTaggedFrame, i); }
  int workOffset(int i) const { return payloadOf<int>(Method::DoOnWorkOffset, i); }
  // Readers of the other events.
  NcCodeMovement ncCodeMovement(int i) const { return payloadOf<NcCodeMovement>(Method::DoOnNcCodeMovement, i); }
  SectionType section(int i) const { return payloadOf<SectionType>(Method::DoOnSection, i); }
  bool tcpCoordMode(int i) const { return payloadOf<bool>(Method::DoOnTCPCoordMode, i); }
  /// Whether the i-th plane was active.
  bool tiltedWorkPlane(int i) const { return payloadOf<bool>(Method::DoOnTiltedWorkPlane, i); }
  double spindleSpeed(int i) const { return payloadOf<double>(Method::DoOnSpindleSpeed, i); }
  Orvo::NCTool ncTool(int i) const { return payloadOf<Orvo::NCTool>(Method::DoOnNCTool, i); }
  Orvo::NCContext ncContext(int i) const { return payloadOf<Orvo::NCContext>(Method::DoOnNCContext, i); }
  unsigned int toolpathEntityIndex(int i) const { return payloadOf<unsigned int>(Method::DoOnToolpathEntityIndex, i); }

private:
  template <typename T>
  T const& payloadOf(Method method, int occurrence) const {
    int const position = m_positions.at(std::make_pair(asString(method), occurrence));
    return std::get<T>(m_calls.at(static_cast<std::size_t>(position)).payload);
  }

  void recordCall(Method method, Payload payload);

  void doOnApiVersion(int major, int minor) override;
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

  std::vector<CallData> m_calls;
  std::map<std::string, int> m_counts;
  std::map<std::pair<std::string, int>, int> m_positions;
};

}  // namespace machine
