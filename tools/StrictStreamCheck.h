#pragma once
// The strict reading of a stream text file, for `mtkit simulate --strict`.
//
// The library's reader is lenient on purpose: a malformed number is parsed
// as far as it goes (usually to 0), an unknown record or version is skipped,
// and a last line without its line feed is never read. That keeps a replay
// going, but a person who wants to know whether the file says what it seems
// to say needs every such line named. This check reads the file on its own,
// line by line, against the fields each record has when the writer writes
// it, and names each line that the reader would take otherwise than written,
// with the fields at fault:
//
//   Linear5D: x: 'abc' is not a number; y: 'def' is not a number; z, i, j, k, feed, flags: missing
//   SpindleSpeed: speed: '1e400' is beyond the range of a double
//   Rapid: the line has no line feed: the file ends in the middle of it, and it is not read
//
// What it accepts is what the writer writes and the reader reads exactly:
// decimal integers within their type, numbers that strtod reads whole in the
// "C" locale (with "nan", "inf" and their signed forms), strings quoted or
// bare, fields separated by blanks or tabs. The header is left to the
// reader, which refuses a wrong one by itself.

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace mtkit_tool {

class StrictStreamCheck {
public:
  struct MalformedLine {
    long line = 0;
    /// The record's keyword without its colon ("Linear5D"), or the first
    /// token of a line that is no record.
    std::string record;
    /// One text per problem, each naming its field.
    std::vector<std::string> problems;

    /// "Linear5D: x: 'abc' is not a number; ..."
    std::string text() const;
  };

  /// At most this many malformed lines are kept; the others are only counted.
  static constexpr std::size_t kLinesKept = 1000;

  /// Reads the whole file; false when it cannot be opened.
  bool checkFile(std::filesystem::path const& path);

  /// The problems of one line without its line feed (the header excluded);
  /// empty when it is well formed. Remembers axis orderings, so that the
  /// values of later axis values records are named after their axes.
  std::vector<std::string> checkLine(std::string_view line);

  std::vector<MalformedLine> const& malformedLines() const noexcept { return m_lines; }
  long malformedCount() const noexcept { return m_count; }
  /// Lines read, the header included.
  long lineCount() const noexcept { return m_lineCount; }

private:
  void record(long line, std::string_view text, std::vector<std::string> problems);

  std::vector<std::string> m_axisNames;
  std::vector<MalformedLine> m_lines;
  long m_count = 0;
  long m_lineCount = 0;
};

}  // namespace mtkit_tool
