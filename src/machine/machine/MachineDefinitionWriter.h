#pragma once
// Writes a MachineDefinition as a machine file.

#include <iosfwd>

#include "machine/machine/MachineDefinition.h"
#include "machine/machine/WriterStatus.h"

namespace machine {

class MachineDefinitionWriter {
public:
  /// The styled document and an end of line. The stream's exception mask is
  /// the caller's: only a stream that throws can report a write failure.
  static WriterStatus write(std::ostream& out, MachineDefinition const& definition);
};

}  // namespace machine
