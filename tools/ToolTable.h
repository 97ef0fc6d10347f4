#pragma once
// The tools of a recorded stream, for mtkit simulate --tools FILE. A stream
// text file records that a tool event happened but not the tool, so cutter
// compensation on a replay needs them from beside the stream. FILE is one
// JSON object that maps operation ids to their tool:
//
//   {
//     "3": { "tool": 3, "radius": 5, "unit": "mm" },
//     "4": { "tool": 7, "radius": 0.125, "unit": "inch", "thread_pitch": 0.05 }
//   }
//
//   "radius"        the cutter radius that compensation offsets by; required,
//                   not negative
//   "tool"          the tool number; an integer, 0 if left out
//   "unit"          of radius and pitch: "mm" (the default), "cm", "m",
//                   "inch" or "ft"
//   "thread_pitch"  travel per spindle turn when threading; 0 if left out
//
// Keys are operation ids as decimal integers. Any other member is refused,
// so that a misspelt name does not pass unnoticed.

#include <map>
#include <optional>
#include <string>

#include "nc/NCTool.h"

namespace mtkit_tool {

class ToolTable {
public:
  /// The table of `path`, or empty with the reason in `error`.
  static std::optional<ToolTable> read(std::string const& path, std::string& error);

  /// The tool of the operation; one of no size (number 0, radius 0), which
  /// compensation does not offset by, for an operation the file leaves out.
  Orvo::NCTool toolFor(int operationId) const;
  bool has(int operationId) const { return m_tools.count(operationId) != 0; }
  std::size_t size() const noexcept { return m_tools.size(); }

private:
  std::map<int, Orvo::NCTool> m_tools;
};

}  // namespace mtkit_tool
