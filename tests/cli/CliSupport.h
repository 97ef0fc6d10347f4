#pragma once
// What the tests of the installed tool share: the examples of the install,
// scratch files with bad input, and checks of a run's status and texts.
//
// MTKIT_TOOL_PATH and MTKIT_EXAMPLES_DIR name the tool and the examples of
// the scratch install (tests/CMakeLists.txt), so every run here is a run of
// bin/mtkit as installed, with no LD_LIBRARY_PATH.

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tools/ToolRunner.h"

namespace mtkit_cli {

using mtkit_test::ToolRun;

/// `text` in single quotes, for the shell.
inline std::string quoted(std::string const& text) { return "'" + text + "'"; }

inline std::string example(std::string const& relative) {
  return (std::filesystem::path(MTKIT_EXAMPLES_DIR) / relative).string();
}

/// The installed tool with ARGS (quoted for the shell). The test program
/// has taken LD_LIBRARY_PATH out of its environment (CliSupport.cpp), so only
/// the tool's install RPATH can find the library.
inline ToolRun run(std::string const& args) { return mtkit_test::runTool(args); }

/// "mtkit COMMAND: REST", a whole message line.
inline std::string line(std::string const& command, std::string const& rest) {
  return "mtkit " + command + ": " + rest + "\n";
}

/// The line that follows every usage error.
inline std::string helpHint(std::string const& command) {
  return "Run 'mtkit " + command + " --help' for its arguments.\n";
}

inline bool contains(std::string const& text, std::string const& part) { return text.find(part) != std::string::npos; }

/// A scratch folder of bad machine inputs, one file (or folder) each, made
/// once for the test program and removed at its end.
class BadInputs {
public:
  static BadInputs const& get();

  std::string dir;
  std::string missing;    // a path with nothing there
  std::string directory;  // a folder
  std::string empty;      // a file of no bytes
  std::string garbage;    // bytes that are no JSON
  std::string truncated;  // a machine file cut in the middle
  std::string emptyObject;  // {}
  std::string emptyArray;   // []
  std::string nested;       // 100000 nested brackets
};

}  // namespace mtkit_cli
