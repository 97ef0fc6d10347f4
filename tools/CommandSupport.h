#pragma once
// What the fk and ik commands share: loading a machine file into a moving
// machine with every axis in its full order, and reading AXIS=VALUE words.

#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "machine/machine/Machine.h"
#include "util/utility/math/Frame.h"

namespace mtkit_tool {

/// The full ordering with the axes of the head and table chains first, in
/// their order: on a machine with several chains (a mill-turn) the full
/// ordering's first linear axes may move another chain, and the solver takes
/// the first ones as its own.
Orvo::AxisOrdering chainFirstOrdering(machine::Machine const& machine);

/// The machine of `path` with its axes ordered by chainFirstOrdering, or null after a
/// message on `err` (unreadable file, no kinematics, unknown head or table
/// id, a kinematics that DefinitionCheck refuses, or a machine without head or
/// table).
std::unique_ptr<machine::Machine> loadMachine(std::string const& command, std::string const& path,
                                              std::ostream& err);

/// Moves the named axes. False after a message on `err` for a word that is
/// not AXIS=VALUE, a value that is not a number, or an unknown axis name.
bool applyAxisWords(std::string const& command, std::vector<std::string> const& words, machine::Machine& machine,
                    std::ostream& err);

/// A finite number, the whole of `text`.
std::optional<double> parseNumber(std::string const& text);

/// The axis names of the ordering, space separated.
std::string axisNames(machine::Machine const& machine);

/// The head's attach frame in the table's coordinates.
Orvo::Frame headFrameInTable(machine::Machine const& machine);

/// Fixed six decimals, "-0.000000" shown as "0.000000".
std::string formatNumber(double value);

}  // namespace mtkit_tool
