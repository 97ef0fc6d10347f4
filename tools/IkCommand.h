#pragma once
#include "CommandLine.h"

namespace mtkit_tool {
/// `mtkit ik FILE --tip X,Y,Z [AXIS=VALUE...] [--tool-length L]`: sets the
/// named axes, solves the linear ones for the tool tip (table coordinates)
/// and prints every axis, the tip reached, the tool axis and the distance
/// left, as fk prints them. Status 1, with the answer still printed, when an
/// axis would stand outside its travel.
Command addIkCommand(CLI::App& app);
}  // namespace mtkit_tool
