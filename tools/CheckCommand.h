#pragma once
#include "CommandLine.h"

namespace mtkit_tool {
/// `mtkit check FILE [--strict]`: reads a machine file or an MTK file and
/// prints a one-line summary (status 0), or what is wrong on the error
/// stream, naming the command and the file (status 1). A machine file
/// without kinematics is a warning, and with --strict a failure.
Command addCheckCommand(CLI::App& app);
}  // namespace mtkit_tool
