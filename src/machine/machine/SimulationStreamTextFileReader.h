#pragma once
// Replays a file written by TextFileSimulationStream into a target stream,
// one event per line, also while the writer is still at work.
//
// A line counts only when its line feed has arrived. At the end of the file
// the reader asks the completion callback whether post processing is done;
// while it answers false the reader sleeps a second (through the sleep
// function, which a test may replace) and reads on, and once
// it answers true (or when there is no callback) one more pass reads what
// the writer added in the meantime, and import() returns. A last line
// without its line feed is never dispatched.
//
// Numbers are read independently of the process locale. Records with an
// unknown keyword or an unknown version digit are skipped. The reader fails
// (isOk() false) on a file it cannot open, a header that does not match, or
// axis values whose count does not fit the target's axis ordering; failure()
// and its companions tell which of these it was, and where.

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "machine/machine/SimulationStream.h"

namespace machine {

class SimulationStreamTextFileReader {
public:
  /// What made the reader not ok: the first failure, which ended the import.
  enum class Failure {
    NONE,
    CANNOT_OPEN,
    /// The first line does not begin with "TextFileSimulationStream:".
    NOT_A_STREAM_FILE,
    /// The header names a format other than 1.0 (a minor below 0 passes).
    UNSUPPORTED_VERSION,
    /// "AxisValues:" while the target has no axis ordering.
    AXIS_VALUES_WITHOUT_ORDERING,
    /// "AxisValues:" with a count other than the target's number of axes.
    AXIS_VALUES_COUNT,
  };

  explicit SimulationStreamTextFileReader(std::shared_ptr<SimulationStream> target);
  ~SimulationStreamTextFileReader();
  SimulationStreamTextFileReader(SimulationStreamTextFileReader const&) = delete;
  SimulationStreamTextFileReader& operator=(SimulationStreamTextFileReader const&) = delete;

  /// Reads the whole file into the target; returns when the file is done.
  /// Single use: once not ok, the reader stays so.
  void import(std::filesystem::path const& path);
  bool isOk() const noexcept { return m_isOk; }
  /// Asked, on the caller's thread, each time the reader reaches the end of
  /// the file: true once the writer has finished. Empty means finished.
  void setIsPostProcessingCompletedCallback(std::function<bool()> callback);

  /// How the reader waits for the writer, called on the caller's thread
  /// with the one second to wait. By default std::this_thread::sleep_for; a
  /// test may put in a function that waits on its own terms, for example one
  /// that records the call and lets the file grow. Empty restores the sleep.
  using SleepFunction = std::function<void(std::chrono::seconds)>;
  void setSleepFunction(SleepFunction function);

  /// The number of the last line read (the header is line 1).
  long lineNumber() const noexcept { return m_lineNumber; }

  Failure failure() const noexcept { return m_failure; }
  /// The failure in words, for a person (English, empty while ok), for
  /// example "the number of axis values does not fit the axis ordering (5
  /// axes): the record has 3".
  std::string const& failureReason() const noexcept { return m_failureReason; }
  /// The line of the failure: 1 for the header, 0 for a file that could not
  /// be opened, 0 while ok.
  long failureLine() const noexcept { return m_failureLine; }

private:
  /// The open file and its read buffer, for one import.
  struct Input;
  /// The "C" numeric locale. Both keep the platform's types in the source.
  struct NumericLocale;

  /// The next whole line, without its line feed, into `line`; false when the
  /// file has ended (after completion) or a read failed.
  bool getline(Input& input, std::string& line);
  bool isPostProcessingCompleted() const;
  void sleep(std::chrono::seconds duration) const;
  void setIsOk(bool isOk) noexcept { m_isOk = isOk; }
  /// Not ok from now on; the first failure is the one kept.
  void fail(Failure failure, long line, std::string reason);

  // Each takes the rest of the line after the keyword, NUL-terminated.
  void readFileSignature(char* rest);
  void readApiVersion(char* rest);
  void readAxisOrdering(char* rest);
  void readAxisValues(char* rest);
  void readNcOutput(char* rest);
  void readNcProgramId(char* rest);
  void readOperationId(char* rest);
  void readMachineId(char* rest);
  void readCommand(char* rest);
  void readPatternOpen(char* rest);
  void readPatternClose(char* rest);
  void readPatternChildInstance(char* rest);
  void readSection(char* rest);
  void readSectionEnd(char* rest);
  void readWorkOffset(char* rest);
  void readIssue(char* rest);
  void readNCContext(char* rest);
  void readNCTool(char* rest);
  void readSimGroup(char* rest);
  void readSimGroupEnd(char* rest);
  void readTaggedFrame(char* rest);
  void readLinear(char* rest);
  void readRapid(char* rest);
  void readHelical(char* rest);
  void readLinear5D(char* rest);
  void readRapid5D(char* rest);
  void readSpindleSpeed(char* rest);

  /// A string field at `position`, quoted with escapes or a bare token;
  /// `position` is left after it.
  static void readString(char*& position, std::string& out);
  Orvo::Helix readHelix(char*& position) const;

  /// "%d", "%u" and "%.17g" fields: parsed as far as they go, 0 when nothing
  /// parses, with `position` left after what was taken.
  static int readInt(char*& position) noexcept;
  static unsigned int readUnsigned(char*& position) noexcept;
  double readDouble(char*& position) const noexcept;

  /// For the rare number that the fast parser hands back to strtod_l.
  std::unique_ptr<NumericLocale> m_locale;
  std::shared_ptr<SimulationStream> m_stream;
  bool m_isOk = true;
  std::function<bool()> m_isPostProcessingCompletedCallback;
  /// Empty for the real sleep.
  SleepFunction m_sleep;
  long m_lineNumber = 0;
  Failure m_failure = Failure::NONE;
  std::string m_failureReason;
  long m_failureLine = 0;
  /// Scratch for string fields, reused from line to line.
  std::string m_string;
  std::string m_string2;
};

}  // namespace machine
