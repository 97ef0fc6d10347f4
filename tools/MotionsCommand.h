#pragma once
// mtkit motions FILE: the machine motions of a file that `simulate --motions`
// wrote, in either form: each operation's context and the pose it starts from.

#include "CommandLine.h"

namespace mtkit_tool {

Command addMotionsCommand(CLI::App& app);

}  // namespace mtkit_tool
