#pragma once
#include <iosfwd>
#include <string>
#include <vector>

namespace mtkit_tool {
/// `mtkit check FILE`: reads a machine file or an MTK file and prints a
/// one-line summary (status 0), or the reader's error on the error stream
/// (status 1). Wrong arguments give status 2.
int runCheck(std::vector<std::string> const& args, std::ostream& out, std::ostream& err);
}  // namespace mtkit_tool
