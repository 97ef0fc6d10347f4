// Feeds arbitrary bytes, read as UTF-8, to the machine configuration XML
// reader. Every refusal must be a script failure: any other exception
// escapes and is a finding. A configuration that is read must answer the
// questions a script asks first without failing in any other way.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "machine/machine/PostMachineConfig/MachineConfiguration.h"
#include "util/utility/Messages.h"
#include "util/utility/ScriptException.h"

using com::vantora::post::MachineConfiguration;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  std::wstring const text =
      Orvo::Messages::utf8ToWide(std::string(reinterpret_cast<char const*>(data), size));
  std::unique_ptr<MachineConfiguration> configuration;
  try {
    configuration.reset(MachineConfiguration::createFromXML(text));
  } catch (Orvo::ScriptException const&) {
    return 0;
  }
  try {
    configuration->getNumberOfAxes();
    configuration->getValidityStatus();
    configuration->isMultiAxisConfiguration();
    for (unsigned int i = 0; i < configuration->getNumberOfAxes() && i < 6; ++i) {
      if (configuration->hasAxis(static_cast<MachineConfiguration::AxisId>(i))) configuration->getAxisByOrder(i);
    }
  } catch (Orvo::ScriptException const&) {
  }
  return 0;
}
