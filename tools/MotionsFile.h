#pragma once
// Machine motions in a file, in either persist form: what `simulate
// --motions` writes and `motions` reads.

#include <optional>
#include <string>

#include "machine/machine/MachineMotions.h"

namespace mtkit_tool {

enum class MotionsFormat { JSON, BINARY };

/// "json" or "binary".
std::optional<MotionsFormat> parseMotionsFormat(std::string const& word);
char const* motionsFormatName(MotionsFormat format);

/// Writes `motions` to `path`; false with `error` set when it cannot.
bool writeMotionsFile(std::string const& path, machine::MachineMotions& motions, MotionsFormat format,
                      std::string& error);

/// The motions of `path`, whose form is told by its first bytes (the binary
/// form begins with "MTKP"); empty with `error` set when it cannot be read.
std::optional<machine::MachineMotions> readMotionsFile(std::string const& path, MotionsFormat& format,
                                                       std::string& error);

}  // namespace mtkit_tool
