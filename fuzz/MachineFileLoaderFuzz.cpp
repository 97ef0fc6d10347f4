// Feeds arbitrary bytes to the machine file loader, once as a machine file
// ("m.json") and once as an MTK file ("m.mtk"), and builds the moving machine
// of what loads. A load gives exactly one of a machine definition, a
// kinematics or an error sentence naming the file; so does a build; and a
// machine that builds moves to finite frames.

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "FuzzSupport.h"
#include "machine/machine/MachineFileLoader.h"

namespace {

void loadAndBuild(std::string const& text, std::string const& path) {
  machine::MachineFileLoader::LoadedFile const loaded = machine::MachineFileLoader::loadText(text, path);
  int const set = (loaded.machine ? 1 : 0) + (loaded.kinematics ? 1 : 0);
  if (set > 1 || loaded.ok() != (set == 1)) std::abort();
  if (!loaded.ok()) {
    // Every refusal names the file and says something.
    if (loaded.error.find("'" + path + "'") == std::string::npos) std::abort();
    if (loaded.errorNumber != 0) std::abort();
    return;
  }
  if (!loaded.error.empty()) std::abort();
  machine::MachineFileLoader::BuiltMachine const built = machine::MachineFileLoader::build(loaded);
  if (built.ok() == !built.error.empty()) std::abort();
  if (!built.ok()) return;
  machine::Machine& m = *built.machine;
  for (double const position : {0.0, 1000.0, -1000.0}) {
    for (int i = 0; i < m.numOrderedParts(); ++i) m.moveAxis(m.orderedPart(i), position);
    if (!fuzz_support::isFinite(m.headAttachFrame()) || !fuzz_support::isFinite(m.tableAttachFrame())) std::abort();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  std::string const text(reinterpret_cast<char const*>(data), size);
  loadAndBuild(text, "m.json");
  loadAndBuild(text, "m.mtk");
  return 0;
}
