#pragma once
#include <iosfwd>
#include <string>
#include <vector>

namespace mtkit_tool {
/// Builds a small 5-axis head-table tree in memory and prints each axis's
/// transformation at the values given as AXIS=VALUE (default: value as modelled).
int runDemo(std::vector<std::string> const& args, std::ostream& out, std::ostream& err);
}  // namespace mtkit_tool
