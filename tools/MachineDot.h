#pragma once
#include <ostream>
#include <string>

namespace machine {
class ControllerConfiguration;
class InteractSettingsDefinition;
class KinematicsDefinition;
}  // namespace machine

namespace mtkit_tool {

/// The part tree of `kinematics` as a Graphviz digraph: a box per part (id,
/// type, axis with its direction and travel), parent-child edges, and one
/// dashed undirected edge per pair of parts that `interactions` (already
/// generated) pairs. Head and table parts are filled; the head and table the
/// controller drives (the tree's when `controller` names none or is null) are
/// drawn bold. Everything is written in the kinematics' own order, so the
/// same file always gives the same text.
void writeMachineDot(std::string const& graphName, machine::KinematicsDefinition const& kinematics,
                     machine::ControllerConfiguration const* controller,
                     machine::InteractSettingsDefinition const& interactions, std::ostream& out);

}  // namespace mtkit_tool
