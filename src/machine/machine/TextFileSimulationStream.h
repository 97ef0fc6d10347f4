#pragma once
// A terminal stream that writes every event it receives to a text file, one
// event to a line, for SimulationStreamTextFileReader to replay later or
// while the file is still being written.
//
// The file opens with "TextFileSimulationStream: 1 0". A line is a keyword
// with its colon, a record version digit and the fields, separated by single
// blanks, and ends in a line feed. Numbers never depend on the process
// locale: doubles are written as printf's "%.17g" writes them in the "C"
// locale (NaN as "nan" or "-nan", infinities as "inf" or "-inf"), so that
// every value, placeholders included, survives the round trip exactly.
//
// Tool, context, TCP, tilted work plane and toolpath entity events are not
// carried: a file replays the motions of a run after the solver.

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "machine/machine/SimulationStream.h"

namespace machine {

class TextFileSimulationStream : public SimulationStream {
public:
  /// Opens (truncates) `path` and writes the header. A file that cannot be
  /// opened leaves the stream not ok from the start.
  explicit TextFileSimulationStream(std::filesystem::path const& path);
  /// Closes the file, which flushes what is still buffered.
  ~TextFileSimulationStream() override;

private:
  /// The open file, with its stdio buffer and the "C" numeric locale; the
  /// platform's types stay in the source.
  struct File;

  /// Fails the stream when the file is gone or has seen a write error, so a
  /// line is either written whole or the stream stops trusting the file.
  void checkStream();
  /// `text` between double quotes, with its escapes, through m_escapeBuffer.
  void writeEscaped(File& file, std::string_view text);
  /// Origin, x axis and z axis: nine numbers separated by blanks.
  static void writeFrame(File& file, Orvo::Frame const& frame);
  /// The 15 stored numbers of the helix in their stored order.
  static void writeHelix(File& file, Orvo::Helix const& helix);

  /// Writes any version as it comes: a text file records, it doesn't judge.
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

  /// Null when the file could not be opened.
  std::unique_ptr<File> m_file;
  /// Reused for every escaped string, so that its storage is kept.
  std::string m_escapeBuffer;
};

}  // namespace machine
