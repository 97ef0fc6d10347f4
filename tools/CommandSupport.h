#pragma once
// What the commands share: loading a machine file or an MTK file into a
// moving machine with the command's name before any message, naming axes,
// checking travel and printing values with their units.

#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "machine/machine/Machine.h"
#include "machine/machine/TravelLimitSimulationStream.h"
#include "util/utility/math/Frame.h"
#include "util/utility/math/Point3D.h"

namespace mtkit_tool {

/// The machine of `path` as machine::MachineFileLoader::loadMachine builds
/// it, or null after its message as "mtkit COMMAND: ..." on `err`.
std::unique_ptr<machine::Machine> loadMachine(std::string const& command, std::string const& path,
                                              std::ostream& err);

/// The ordered part that `name` stands for: the axis name the machine goes by
/// (the controller's, else the kinematics'), a part id, or the name the
/// kinematics gives the axis where the controller renames it (the mill-turn's
/// C1, which its controller calls C). Null when none matches.
machine::Part const* findAxis(machine::Machine const& machine, std::string const& name);

/// Moves the axes of AXIS=VALUE words (already checked for form), and adds
/// the part id of each to `moved` when given. False after a message on `err`
/// for an axis the machine does not have.
bool applyAxisWords(std::string const& command, std::vector<std::string> const& words, machine::Machine& machine,
                    std::ostream& err, std::vector<Orvo::MachinePartId>* moved = nullptr);

/// A finite number, the whole of `text`.
std::optional<double> parseNumber(std::string const& text);

/// X,Y,Z: three finite numbers.
std::optional<Orvo::Point3D> parsePoint(std::string const& text);

/// The axis names of the ordering, space separated.
std::string axisNames(machine::Machine const& machine);

/// Fixed six decimals, "-0.000000" shown as "0.000000".
std::string formatNumber(double value);

/// "mm" for a linear axis, "deg" for a rotary one.
char const* axisUnit(machine::Axis const& axis);

/// Up to three decimals, trailing zeros dropped: "-74.203", "3000".
std::string compactNumber(double value);

/// A travel as every command prints it: "-120..30 deg".
std::string rangeText(Orvo::AxisValueRange const& range, char const* unit);

/// The axes of the machine's present pose that stand out of travel, as
/// simulate's machine::TravelLimitSimulationStream judges a pose (its
/// tolerance at the limits included), each with its value.
struct OutOfTravel {
  machine::TravelLimitSimulationStream::AxisTravel axis;
  double value = 0.0;
};
std::vector<OutOfTravel> axesOutOfTravel(machine::Machine const& machine);

/// The ordered axes, one "  NAME=VALUE UNIT" line each, with
/// " (out of travel: MIN..MAX UNIT)" after a value in `outOfTravel`.
std::string axisLines(machine::Machine const& machine, std::vector<OutOfTravel> const& outOfTravel);

/// A line "mtkit COMMAND: [the answer: ]TEXT" for each axis out of travel,
/// TEXT being the travel link's own issue text; "the answer: " for an axis
/// whose part id is not in `given` (one the command solved rather than one
/// the user set).
std::string travelMessages(std::string const& command, std::vector<OutOfTravel> const& outOfTravel,
                           std::vector<Orvo::MachinePartId> const* given);

/// "X Y Z mm", a point with its unit.
std::string pointText(Orvo::Point3D const& point, char const* unit);

}  // namespace mtkit_tool
