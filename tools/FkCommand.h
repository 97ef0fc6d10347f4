#pragma once
#include <iosfwd>
#include <string>
#include <vector>

namespace mtkit_tool {
/// mtkit fk FILE [AXIS=VALUE...]: moves the machine of FILE and prints the
/// head's attach frame in table coordinates, the tool tip and the tool axis.
/// 0 on success, 1 after a message on `err`.
int runFk(std::vector<std::string> const& args, std::ostream& out, std::ostream& err);
}  // namespace mtkit_tool
