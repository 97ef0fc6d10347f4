#pragma once
#include "CommandLine.h"

namespace mtkit_tool {
/// `mtkit demo [AXIS=VALUE...]`: builds a small 5-axis head-table tree in
/// memory and prints each axis's transformation at the values given (default:
/// value as modelled).
Command addDemoCommand(CLI::App& app);
}  // namespace mtkit_tool
