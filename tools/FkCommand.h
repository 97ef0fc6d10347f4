#pragma once
#include "CommandLine.h"

namespace mtkit_tool {
/// `mtkit fk FILE [AXIS=VALUE...] [--tool-length L]`: moves the machine of
/// FILE (a machine file or an MTK file) and prints every axis, the head's
/// attach frame in table coordinates, the tool tip and the tool axis. AXIS is
/// an axis name or a part id. Status 1, with the pose still printed, when an
/// axis stands outside its travel.
Command addFkCommand(CLI::App& app);
}  // namespace mtkit_tool
