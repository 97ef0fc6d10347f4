#pragma once
#include "CommandLine.h"

namespace mtkit_tool {
/// `mtkit collisions MACHINE`: generates the interaction pairs of the
/// machine's default kinematics and prints them, one a line, with the two
/// solids (part id and type word) and the flags. Settings of the file's
/// default "interactions" feature are kept for the pairs that are generated
/// again, as a host regenerating the list would keep them. Status 1 for an
/// unreadable file or one without kinematics.
Command addCollisionsCommand(CLI::App& app);
}  // namespace mtkit_tool
