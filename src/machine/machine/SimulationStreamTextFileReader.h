#pragma once
// Replays a file written by TextFileSimulationStream into a target stream,
// one event per line, also while the writer is still at work.
//
// A line counts only when its line feed has arrived. At the end of the file
// the reader asks the completion callback whether post processing is done;
// while it answers false the reader sleeps a second and reads on, and once
// it answers true (or when there is no callback) one more pass reads what
// the writer added in the meantime, and import() returns. A last line
// without its line feed is never dispatched.
//
// Numbers are read independently of the process locale. Records with an
// unknown keyword or an unknown version digit are skipped. The reader fails
// (isOk() false) on a file it cannot open, a header that does not match, or
// axis values whose count does not fit the target's axis ordering.

#include <locale.h>

#include <cstdio>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "machine/machine/SimulationStream.h"

namespace machine {

class SimulationStreamTextFileReader {
public:
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

  /// The number of the last line read (the header is line 1): after a failed
  /// import, the line that failed it.
  long lineNumber() const noexcept { return m_lineNumber; }

private:
  struct Input;

  /// The next whole line, without its line feed, into `line`; false when the
  /// file has ended (after completion) or a read failed.
  bool getline(Input& input, std::string& line);
  bool isPostProcessingCompleted() const;
  void setIsOk(bool isOk) noexcept { m_isOk = isOk; }

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

  /// The "C" numeric locale, for the rare number that the fast parser hands
  /// back to strtod_l.
  locale_t m_locale;
  std::shared_ptr<SimulationStream> m_stream;
  bool m_isOk = true;
  std::function<bool()> m_isPostProcessingCompletedCallback;
  long m_lineNumber = 0;
  /// Scratch for string fields, reused from line to line.
  std::string m_string;
  std::string m_string2;
};

}  // namespace machine
