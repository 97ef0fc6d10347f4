#pragma once
#include "CommandLine.h"

namespace mtkit_tool {
/// `mtkit orient CONFIG --direction I,J,K [--previous A,B,C] [--tip X,Y,Z]`:
/// the two rotary solutions that point the tool along the direction, the
/// one the axes' preferences choose, the one closest to the previous rotary
/// position, and the machine position that puts the tool tip at the given
/// point with the chosen rotary values. Status 1 for a configuration that
/// cannot be made or a direction the machine cannot reach.
Command addOrientCommand(CLI::App& app);
}  // namespace mtkit_tool
