#pragma once
// The script-facing configuration of a machine for the tool's commands: made
// through the bridge from a machine file or an MTK file, or read from a
// configuration XML file, and shown as a CAM engineer reads it.

#include <iosfwd>
#include <memory>
#include <string>

#include "machine/machine/PostMachineConfig/MachineConfiguration.h"

namespace mtkit_tool {

struct ScriptConfiguration {
  std::unique_ptr<com::vantora::post::MachineConfiguration> configuration;
  /// "machine file", "MTK file" or "configuration XML".
  std::string source;
};

/// True for a path that names a configuration XML file (*.xml), which is
/// read by the configuration reader rather than made through the bridge.
bool isConfigurationXmlPath(std::string const& path);

/// The configuration of `path`, or an empty one after a message
/// "mtkit COMMAND: ..." on `err`: the file cannot be read, is no machine,
/// or the reader or bridge refuses it (their own text).
ScriptConfiguration loadScriptConfiguration(std::string const& command, std::string const& path,
                                            std::ostream& err);

/// The letter of a rotary axis's coordinate: A, B or C.
char rotaryLetter(com::vantora::post::Axis const& axis);

/// "A=-30.000000 C=45.000000 deg" for the enabled rotary axes of the
/// configuration, in slot order, from an ABC triple in radians.
std::string abcText(com::vantora::post::MachineConfiguration const& configuration,
                    com::vantora::Vector const& abc);

/// The rotary axes whose ranges `abc` leaves, as "A" or "A, C"; empty when
/// every value is in range.
std::string outOfRangeAxes(com::vantora::post::MachineConfiguration const& configuration,
                           com::vantora::Vector const& abc);

/// The kind of the machine in words: "3 axes", "4 axes, table", "5 axes,
/// head-table", ...
std::string kindText(com::vantora::post::MachineConfiguration const& configuration);

/// One line per enabled axis: slot, kind, head or table, direction, range
/// and, for a rotary axis, cyclic, preference and TCP.
std::string axesText(com::vantora::post::MachineConfiguration const& configuration);

}  // namespace mtkit_tool
