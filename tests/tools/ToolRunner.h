#pragma once
// Runs the mtkit tool and captures its output and exit status, and writes
// machine files built in code for it to read.

#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <iterator>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "machine/machine/KinematicsDefinition.h"
#include "machine/machine/MachineDefinition.h"
#include "machine/machine/MachineDefinitionWriter.h"

namespace mtkit_test {

struct ToolResult {
  int status = -1;
  std::string out;
  std::string err;
};

inline std::string readWhole(std::filesystem::path const& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

/// `arguments` is appended to the tool's path as it stands (shell words).
inline ToolResult runTool(std::string const& arguments) {
  std::filesystem::path const dir = std::filesystem::temp_directory_path();
  std::string const tag = std::to_string(::getpid());
  std::filesystem::path const outPath = dir / ("mtkit_tool_out_" + tag);
  std::filesystem::path const errPath = dir / ("mtkit_tool_err_" + tag);
  std::string const command = std::string("'") + MTKIT_TOOL_PATH + "' " + arguments + " >'" + outPath.string() +
                              "' 2>'" + errPath.string() + "'";
  int const raw = std::system(command.c_str());
  ToolResult result;
  result.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
  result.out = readWhole(outPath);
  result.err = readWhole(errPath);
  std::filesystem::remove(outPath);
  std::filesystem::remove(errPath);
  return result;
}

/// Writes a machine file with the kinematics alone and returns its path.
inline std::string writeMachineFile(std::string const& name, machine::KinematicsDefinition const& kinematics) {
  machine::MachineDefinition::FeatureVector features;
  features.push_back(kinematics.clone());
  machine::MachineDefinition const definition(machine::MachineGeneralDefinition(), std::move(features), {});
  std::filesystem::path const path =
      std::filesystem::temp_directory_path() / (name + "_" + std::to_string(::getpid()) + ".json");
  std::ofstream out(path, std::ios::binary);
  machine::MachineDefinitionWriter::write(out, definition);
  return path.string();
}

}  // namespace mtkit_test
