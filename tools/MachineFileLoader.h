#pragma once
// Loads a machine file or an MTK file for the tool's commands.

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
  /// The reader's error, in UTF-8, when neither is set.
  std::string error;

  bool ok() const { return machine || kinematics; }
};

class MachineFileLoader {
public:
  /// A file named *.mtk, or a JSON object with "units" and without "general",
  /// is an MTK file; anything else goes to the machine file reader, so that
  /// a file that isn't JSON at all gets that reader's error.
  static LoadedFile load(std::string const& path);
};

}  // namespace mtkit_tool
