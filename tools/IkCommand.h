#pragma once
#include <iosfwd>
#include <string>
#include <vector>

namespace mtkit_tool {
/// mtkit ik FILE --tip X,Y,Z [AXIS=VALUE...]: sets the named axes, solves the
/// linear ones for the tool tip (table coordinates) and prints every axis
/// value and the distance left. 0 on success, 1 after a message on `err`.
int runIk(std::vector<std::string> const& args, std::ostream& out, std::ostream& err);
}  // namespace mtkit_tool
