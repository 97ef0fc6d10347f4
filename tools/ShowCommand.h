#pragma once
#include "CommandLine.h"

namespace mtkit_tool {
/// `mtkit show FILE`: the part tree with types and axes, the head and table,
/// the features with their ids and defaults, and the axes that fk and ik
/// move, by name and part id. Errors as for check. `mtkit show --dot FILE`
/// writes the part tree and its collision pairs as a Graphviz digraph instead.
Command addShowCommand(CLI::App& app);
}  // namespace mtkit_tool
