#pragma once
// A recorded stream replayed through the machine's chain, in C++ from end to
// end, with its poses gathered in flat arrays that the binding hands to NumPy
// once. Nothing here knows Python, so a C++ program can run the very same
// replay (the benchmark does).

#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace mtkit_python {

/// A file that cannot be read at all (Python's OSError).
class ReplayFileError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

/// A file that is read but cannot be used, or a stream the chain refused
/// (Python's ValueError).
class ReplayInputError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

struct ReplayOptions {
  std::string machinePath;
  std::string streamPath;
  /// The tools of the stream's operations; empty for none.
  std::string toolsPath;
  /// The solver stream alone instead of the standard chain.
  bool solverOnly = false;
};

struct ReplayIssue {
  int code = 0;
  /// "none", "information", "warning", "error" or "fatal".
  std::string severity;
  std::string text;
  /// The stream line of the event that raised it; 0 when unknown.
  long line = 0;
};

struct ReplayResult {
  /// The machine's axes, chain axes first, as the command line tool orders
  /// and names them.
  std::vector<std::string> axisNames;
  /// "mm" or "deg" for each axis.
  std::vector<std::string> axisUnits;
  /// The travel of each axis as the travel check applies it; empty for an
  /// axis that has no limit (an infinite range or a cyclic axis).
  std::vector<std::optional<std::pair<double, double>>> limits;
  /// Row-major, one row of axisNames.size() values per pose; NaN for an
  /// axis the stream's ordering leaves out or the solver could not solve.
  std::vector<double> poses;
  /// The stream line of each pose.
  std::vector<std::int64_t> lines;
  /// Three per pose: the tool axis in table coordinates at the pose, by the
  /// machine's forward kinematics; NaN for a pose whose rotary values are
  /// not all known.
  std::vector<double> toolDirections;
  std::vector<ReplayIssue> issues;
  /// The lines of the solver's failures (issues the stream file recorded
  /// itself are not counted).
  std::vector<long> solveFailures;
  /// The lines the reader read.
  long streamLines = 0;

  std::size_t numPoses() const noexcept { return lines.size(); }
};

/// Throws ReplayFileError or ReplayInputError with a sentence that names the
/// file.
ReplayResult runReplay(ReplayOptions const& options);

}  // namespace mtkit_python
