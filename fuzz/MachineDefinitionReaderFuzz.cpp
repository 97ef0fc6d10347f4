// Feeds arbitrary bytes to the machine file reader, through both of its
// entry points. Every kinematics it accepts and the definition check passes
// must move to finite frames; whatever can be written must write out and
// read back.
//
// Some accepted features cannot be written back, by their file format: a
// tool count that wrapped from a negative number no longer reads as an int,
// a post setting whose name the JSON path syntax reads as an index ("[",
// "]", "%") no longer forms a tree, and a coolant setting without a number
// in its name makes the writer's number conversion throw. Those are left
// out of the write-back check.

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <sstream>
#include <string>

#include "FuzzSupport.h"
#include "machine/machine/InteractSettingsDefinition.h"
#include "machine/machine/KinematicsDefinition.h"
#include "machine/machine/MachineDefinitionReader.h"
#include "machine/machine/MachineDefinitionWriter.h"
#include "machine/machine/PostSettings.h"
#include "machine/machine/ToolingCapabilities.h"
#include "util/utility/InputStream.h"

namespace {

class BytesInput : public Orvo::InputStream {
public:
  BytesInput(char const* data, std::size_t size) : m_data(data), m_size(size) {}
  std::size_t read(char* buffer, std::size_t size) override {
    std::size_t const n = size < m_size - m_pos ? size : m_size - m_pos;
    std::memcpy(buffer, m_data + m_pos, n);
    m_pos += n;
    return n;
  }

private:
  char const* m_data;
  std::size_t m_size;
  std::size_t m_pos = 0;
};

/// False for a feature that its format cannot carry back (see above).
bool canWriteBack(machine::MachineFeatureDefinition const& feature) {
  if (auto const* tooling = dynamic_cast<machine::ToolingCapabilities const*>(&feature))
    return tooling->numberOfTools() <= 2147483647u;
  if (auto const* settings = dynamic_cast<machine::PostSettings const*>(&feature)) {
    auto const& map = settings->settings();
    for (auto const& entry : map) {
      std::string const& name = entry.first;
      if (name.empty() || name.find_first_of("[]%") != std::string::npos || name.find("..") != std::string::npos ||
          name.front() == '.' || name.back() == '.')
        return false;
      // A setting that is also a branch of another ("a" beside "a.b") can't
      // be both in the tree.
      auto const next = map.lower_bound(name + ".");
      if (next != map.end() && next->first.compare(0, name.size() + 1, name + ".") == 0) return false;
      // Every coolant number below the highest gets a stub: keep that small.
      if (name.compare(0, 16, "coolant.coolants") == 0) {
        std::string const rest = name.size() > 16 ? name.substr(17) : std::string();
        try {
          if (std::stoi(rest.substr(0, rest.find('.'))) > 1000) return false;
        } catch (std::exception const&) {
          return false;
        }
      }
    }
    // The writer walks the coolants from 1 while the number is below the
    // size of its map, which coolant 0 and the stubs keep ahead: without a
    // coolant 0 the highest ones are left out, by design.
    bool anyCoolant = false;
    bool coolantZero = false;
    for (auto const& entry : map) {
      if (entry.first.compare(0, 16, "coolant.coolants") != 0 || entry.second.value.getAsMessage().empty()) continue;
      anyCoolant = true;
      if (entry.first.compare(0, 19, "coolant.coolants.0.") == 0) coolantZero = true;
    }
    if (anyCoolant && !coolantZero) return false;
    try {
      (void)settings->getPersistData();
    } catch (std::exception const&) {
      return false;
    }
  }
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  char const* const text = reinterpret_cast<char const*>(data);
  machine::MachineDefinitionReader const reader;
  std::istringstream in(std::string(text, size));
  machine::MachineDefinitionReaderResult result = reader.read(in);
  BytesInput bytes(text, size);
  machine::MachineDefinitionReaderResult const viaInputStream = reader.read(bytes);
  if (result.isError() != viaInputStream.isError()) std::abort();
  if (result.isError()) {
    (void)result.getReadErrorMessage();
    return 0;
  }
  std::unique_ptr<machine::MachineDefinition> const definition = result.getMachineDefinition();
  // Pairs generated from any tree the reader accepts read back as they were
  // written.
  if (auto const* kinematics =
          dynamic_cast<machine::KinematicsDefinition const*>(definition->getDefaultFeature("kinematics"))) {
    machine::InteractSettingsDefinition generated;
    if (auto const* saved = dynamic_cast<machine::InteractSettingsDefinition const*>(
            definition->getDefaultFeature("interactions")))
      generated = *saved;
    generated.generatePairs(*kinematics);
    if (!machine::InteractSettingsDefinition("default", generated.getPersistData()).equals(generated, 0.0))
      std::abort();
  }
  bool writesBack = fuzz_support::isValidUtf8(data, size);
  for (auto const& feature : definition->getFeatures()) {
    writesBack = writesBack && canWriteBack(feature);
    if (auto const* kinematics = dynamic_cast<machine::KinematicsDefinition const*>(&feature)) {
      fuzz_support::checkForwardKinematicsIsFinite(*kinematics);
      writesBack = writesBack && fuzz_support::writesBack(*kinematics);
    }
  }
  if (!writesBack) return 0;
  std::ostringstream out;
  if (machine::MachineDefinitionWriter::write(out, *definition).isError()) std::abort();
  std::istringstream back(out.str());
  machine::MachineDefinitionReaderResult again = reader.read(back);
  if (again.isError()) std::abort();
  std::unique_ptr<machine::MachineDefinition> const reread = again.getMachineDefinition();
  for (auto const& feature : definition->getFeatures()) {
    auto const* other = reread->getFeature(feature.featureTypeId(), feature.featureId());
    if (!other || !feature.equals(*other, 1e-9)) std::abort();
  }
  return 0;
}
