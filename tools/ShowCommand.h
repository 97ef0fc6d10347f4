#pragma once
#include <iosfwd>
#include <string>
#include <vector>

namespace mtkit_tool {
/// `mtkit show FILE`: the part tree with types and axes, the head and table,
/// and the features with their ids and defaults. Errors as for check.
int runShow(std::vector<std::string> const& args, std::ostream& out, std::ostream& err);
}  // namespace mtkit_tool
