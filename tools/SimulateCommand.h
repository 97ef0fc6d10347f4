#pragma once
#include "CommandLine.h"

namespace mtkit_tool {
/// mtkit simulate MACHINE STREAM [-o OUT] [--csv] [--follow [--idle SECONDS]]
/// [--poses N] [--tools FILE] [--solver-only] [--motions FILE
/// [--motions-format json|binary]]: replays a recorded stream text file
/// through the standard post chain (catch errors, radius compensation, and
/// the solver of the machine of MACHINE, a machine file or an MTK file), or
/// with --solver-only through the solver alone, writes what comes out as a
/// stream text file (or, with --csv, the poses as CSV) to OUT, and prints a
/// summary with the first N poses (5 by default). --tools FILE gives each
/// section the tool of its operation (see ToolTable), which a stream file
/// does not record. 0 on success, 1 after a message on `err`.
Command addSimulateCommand(CLI::App& app);
}  // namespace mtkit_tool
