#pragma once
#include <iosfwd>
#include <string>
#include <vector>

namespace mtkit_tool {
/// `mtkit collisions MACHINE`: generates the interaction pairs of the
/// machine's default kinematics and prints them, one a line, with the two
/// solids (part id and type word) and the flags. Settings of the file's
/// default "interactions" feature are kept for the pairs that are generated
/// again, as a host regenerating the list would keep them. Status 1 for an
/// unreadable file or one without kinematics, 2 for wrong arguments.
int runCollisions(std::vector<std::string> const& args, std::ostream& out, std::ostream& err);
}  // namespace mtkit_tool
