#include "machine/machine/MachineDefinitionWriter.h"

#include <ios>
#include <ostream>

namespace machine {

WriterStatus MachineDefinitionWriter::write(std::ostream& out, MachineDefinition const& definition) {
  Json::Value const data = definition.getPersistData();
  try {
    out << data.toStyledString() << std::endl;
  } catch (std::ios_base::failure const&) {
    return WriterStatus(
        "Couldn't write Machine Definition file. This may be due to a permission error or if you're out of disc "
        "space.");
  }
  return WriterStatus();
}

}  // namespace machine
