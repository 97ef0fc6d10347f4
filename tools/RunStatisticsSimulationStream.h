#pragma once
// A link that counts what passes through it on the way to the next stream:
// events, sections by type, issues by code, axis values, and keeps the first
// few poses with the input line they came from. Issues are also kept by
// code and text, with the lines they came at, so that a summary can say what
// each one said and where, once for a text that repeats. mtkit simulate places one
// ahead of the solver and one behind it, and tells the difference.
//
// Lines of motions. A chain may hold motions back (the compensator of the
// standard chain looks 100 motions ahead), so the line being read when a
// pose comes out is not the line of its motion. The link at the head marks
// each motion with its line by an onToolpathEntityIndex just ahead of it
// (setMarksMotionLines): a replayed text file has no entity indices of its
// own, and the chain keeps an index in its place among the motions. The link
// at the tail reads the marks (setReadsMotionLines) and keeps them from the
// stream behind; between a mark and its motion, currentLine() is the
// motion's line, so that the pose the solver sends for it, and any issue
// raised for it, carry that line. Elsewhere currentLine() is the line being
// read.
//
// It can also check each axis ordering before it goes on (a machine must
// have the parts it names); a refused ordering fails this link, which then
// drops everything that follows, and the reason is kept.

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "machine/machine/ForwardingSimulationStream.h"

namespace mtkit_tool {

class RunStatisticsSimulationStream : public machine::ForwardingSimulationStream {
public:
  struct Pose {
    long line;
    Orvo::AxisValues values;
  };
  /// The issues of one code and text.
  struct IssueGroup {
    int code;
    std::string text;
    long count;
    /// The lines of the first kLinesKept, where the line source knew them.
    std::vector<long> firstLines;
  };
  /// Distinct texts kept; more are counted by code only (a producer that puts
  /// a number in every text would otherwise make the summary a copy).
  static constexpr std::size_t kGroupsKept = 100;
  static constexpr std::size_t kLinesKept = 3;

  /// Empty when the ordering is acceptable, else why it is not.
  using OrderingCheck = std::function<std::optional<std::string>(Orvo::AxisOrdering const&)>;

  RunStatisticsSimulationStream(std::unique_ptr<machine::SimulationStream> next, std::function<long()> lineSource,
                                int posesKept);
  ~RunStatisticsSimulationStream() override;

  void setOrderingCheck(OrderingCheck check) { m_orderingCheck = std::move(check); }
  /// For the link at the head: each motion is preceded by a mark of its line.
  void setMarksMotionLines(bool marks) { m_marksMotionLines = marks; }
  /// For the link at the tail: marks are read and not handed on.
  void setReadsMotionLines(bool reads) { m_readsMotionLines = reads; }
  /// The line of the motion whose mark came last, until that motion has
  /// passed; else the line being read.
  long currentLine() const;
  /// Called every `interval` events, for a progress display.
  void setProgress(std::function<void()> progress, long interval);

  long events() const noexcept { return m_events; }
  long axisValues() const noexcept { return m_axisValues; }
  std::map<SectionType, long> const& sections() const noexcept { return m_sections; }
  long numSections() const;
  std::map<int, long> const& issues() const noexcept { return m_issues; }
  long issuesOf(int code) const;
  /// In the order of their first issue.
  std::vector<IssueGroup> const& issueGroups() const noexcept { return m_issueGroups; }
  /// Issues that came after kGroupsKept texts and had none of them.
  long issuesNotGrouped() const noexcept { return m_issuesNotGrouped; }
  std::vector<Pose> const& firstPoses() const noexcept { return m_firstPoses; }
  Orvo::AxisOrdering const& ordering() const noexcept { return m_ordering; }
  /// Why an ordering was refused, and on which line.
  std::optional<std::string> const& refusal() const noexcept { return m_refusal; }
  long refusalLine() const noexcept { return m_refusalLine; }

private:
  void count();

  void doOnAxisOrdering(Orvo::AxisOrdering const& ordering) override;
  void doOnAxisValues(Orvo::AxisValues const& values) override;
  void doOnNcOutput(std::string const& text) override;
  void doOnNcProgramId(int id) override;
  void doOnOperationId(int id) override;
  void doOnMachineId(int id) override;
  void doOnCommand(machine::SimulationStreamCommand const& command) override;
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
  void doOnLinear(Orvo::Point3D const& target, double feed, machine::MotionSettings const& settings) override;
  void doOnRapid(Orvo::Point3D const& target, machine::MotionSettings const& settings) override;
  void doOnHelical(Orvo::Helix const& helix, Orvo::Point3D const& end, double feed,
                   machine::MotionSettings const& settings) override;
  void doOnLinear5D(Orvo::Point3D const& target, Orvo::Vector3D const& toolAxis, double feed,
                    machine::MotionSettings const& settings) override;
  void doOnRapid5D(Orvo::Point3D const& target, Orvo::Vector3D const& toolAxis,
                   machine::MotionSettings const& settings) override;
  void doOnNcCodeMovement(machine::NcCodeMovement const& movement) override;
  void doOnTCPCoordMode(bool on) override;
  void doOnTiltedWorkPlane(machine::NcCodeTiltedWorkPlane const& plane) override;
  void doOnRetractAlongToolAxisToLimit() override;
  void doOnSpindleSpeed(double speed) override;
  void doOnToolpathEntityIndex(Orvo::ToolpathEntityIndex const& index) override;

  /// Before a motion goes on: its mark, when this link marks them.
  void markMotion();
  /// After a motion went on: the mark it carried is spent.
  void motionPassed() noexcept { m_motionLine = 0; }

  std::function<long()> m_lineSource;
  std::size_t m_posesKept;
  OrderingCheck m_orderingCheck;
  bool m_marksMotionLines = false;
  bool m_readsMotionLines = false;
  /// The line of a mark whose motion has not passed yet; 0 for none.
  long m_motionLine = 0;
  std::function<void()> m_progress;
  long m_progressInterval = 0;
  long m_events = 0;
  long m_axisValues = 0;
  std::map<SectionType, long> m_sections;
  std::map<int, long> m_issues;
  std::vector<IssueGroup> m_issueGroups;
  std::map<std::pair<int, std::string>, std::size_t> m_issueGroupIndex;
  long m_issuesNotGrouped = 0;
  std::vector<Pose> m_firstPoses;
  Orvo::AxisOrdering m_ordering;
  std::optional<std::string> m_refusal;
  long m_refusalLine = 0;
};

}  // namespace mtkit_tool
