#pragma once
#include "CommandLine.h"

namespace mtkit_tool {
/// `mtkit config FILE [-o OUT.xml]`: the script-facing configuration of a
/// machine file or an MTK file, made through the bridge, or of a
/// configuration XML file, read and validated. Prints where it came from,
/// its kind, its axes with their ranges, and the configuration's status;
/// with -o writes its XML. Status 1 for a file that cannot be read or a
/// configuration the reader or the bridge refuses.
Command addConfigCommand(CLI::App& app);
}  // namespace mtkit_tool
