#pragma once
#include "CommandLine.h"

namespace mtkit_tool {
/// mtkit simulate MACHINE STREAM [-o OUT] [--csv] [--follow [--idle SECONDS]]
/// [--poses N] [--tools FILE] [--solver-only] [--motions FILE
/// [--motions-format json|binary]] [--strict]: replays a recorded stream
/// text file through the standard post chain (catch errors, radius
/// compensation, and the solver of the machine of MACHINE, a machine file or
/// an MTK file), or with --solver-only through the solver alone, checks every
/// pose that comes out against the travel of the machine's axes
/// (TravelLimitSimulationStream), writes what comes out as a stream text file
/// (or, with --csv, the poses as CSV) to OUT, and prints a summary: poses
/// with their units, over-travel by axis, every issue with its code,
/// severity, text and line (grouped when a text repeats), and the first N
/// poses (5 by default). --tools FILE gives each section the tool of its
/// operation (see ToolTable), which a stream file does not record. --strict
/// names each malformed line of the stream (StrictStreamCheck) and fails the
/// run on any error issue, solve failure, over-travel or malformed line.
/// 0 on success, 1 after a message on `err`; over-travel without --strict is
/// a warning.
Command addSimulateCommand(CLI::App& app);
}  // namespace mtkit_tool
