#pragma once
// Runs the built mtkit tool and captures what it prints.

#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

namespace mtkit_test {

struct ToolRun {
  int status = -1;
  std::string out;  // standard output
  std::string err;  // standard error
};

inline std::string readWhole(std::filesystem::path const& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

/// `mtkit ARGS`, with ARGS already quoted for the shell.
inline ToolRun runTool(std::string const& args) {
  static int counter = 0;
  auto const dir = std::filesystem::temp_directory_path();
  std::string const tag = "mtkit_tool_test_" + std::to_string(::getpid()) + "_" + std::to_string(counter++);
  auto const errPath = dir / (tag + ".err");
  std::string const command = std::string("'") + MTKIT_TOOL_PATH + "' " + args + " 2>'" + errPath.string() + "'";
  ToolRun run;
  FILE* pipe = ::popen(command.c_str(), "r");
  if (!pipe) return run;
  std::array<char, 4096> buffer;
  std::size_t n;
  while ((n = std::fread(buffer.data(), 1, buffer.size(), pipe)) > 0) run.out.append(buffer.data(), n);
  int const raw = ::pclose(pipe);
  run.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
  run.err = readWhole(errPath);
  std::filesystem::remove(errPath);
  return run;
}

/// Writes `text` to a fresh file in the temporary directory and returns its path.
inline std::filesystem::path writeTemp(std::string const& name, std::string const& text) {
  auto const path = std::filesystem::temp_directory_path() / ("mtkit_" + std::to_string(::getpid()) + "_" + name);
  std::ofstream(path, std::ios::binary) << text;
  return path;
}

inline std::string quoted(std::filesystem::path const& path) { return "'" + path.string() + "'"; }

}  // namespace mtkit_test
