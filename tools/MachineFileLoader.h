#pragma once
// Loads a machine file or an MTK file for the tool's commands, and says in
// words why a file cannot be used.

#include <memory>
#include <string>

#include "machine/machine/KinematicsDefinition.h"
#include "machine/machine/MachineDefinition.h"

namespace mtkit_tool {

struct LoadedFile {
  enum class Kind { MACHINE, MTK };
  Kind kind = Kind::MACHINE;
  /// Set for a machine file read without error.
  std::unique_ptr<machine::MachineDefinition> machine;
  /// Set for an MTK file read without error.
  std::unique_ptr<machine::KinematicsDefinition> kinematics;
  /// When neither is set: what went wrong, in UTF-8, naming the file, for a
  /// command to put after "mtkit COMMAND: ". The readers' own texts follow on
  /// lines of their own.
  std::string error;

  bool ok() const { return machine || kinematics; }
};

class MachineFileLoader {
public:
  /// A file named *.mtk, or a JSON object with "units" and without "general",
  /// is an MTK file; anything else goes to the machine file reader, so that
  /// a file that isn't JSON at all gets that reader's error.
  ///
  /// The tool is stricter and more explicit than the library's readers, which
  /// keep their designed behaviour:
  /// - a file that cannot be read gives the operating system's reason;
  /// - an empty file says so;
  /// - a document nested deeper than the parser's limit says so in words;
  /// - a machine file whose root is not a JSON object is refused (the reader
  ///   takes it for an empty machine);
  /// - a kinematics feature that fails inside a machine file shows the MTK
  ///   reader's own message, where the machine file reader can only pass on
  ///   "Unknown exception".
  static LoadedFile load(std::string const& path);
};

}  // namespace mtkit_tool
