#pragma once
// mtkit motions FILE: the machine motions of a file that `simulate --motions`
// wrote, in either form: each operation's context and the pose it starts from.

#include <iosfwd>
#include <string>
#include <vector>

namespace mtkit_tool {

int runMotions(std::vector<std::string> const& args, std::ostream& out, std::ostream& err);

}  // namespace mtkit_tool
