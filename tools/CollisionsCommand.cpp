#include "CollisionsCommand.h"

#include <ostream>

#include "MachineFileLoader.h"
#include "machine/machine/InteractSettingsDefinition.h"
#include "machine/machine/KinematicsDefinition.h"

namespace mtkit_tool {

namespace {

std::string solidText(machine::InteractSolid const& solid) {
  return solid.partDefinitionID().id() + " " + machine::interactSolidTypeWord(solid.type());
}

std::string settingText(machine::InteractSetting const& setting) {
  if (setting.ignore()) return "ignore";
  std::string text;
  if (setting.checkCollisions()) text = "check_collisions";
  if (setting.cutStock()) text += text.empty() ? "cut_stock" : " cut_stock";
  return text;
}

}  // namespace

int runCollisions(std::vector<std::string> const& args, std::ostream& out, std::ostream& err) {
  if (args.size() != 1) {
    err << "usage: mtkit collisions MACHINE\n";
    return 2;
  }
  LoadedFile const loaded = MachineFileLoader::load(args.front());
  if (!loaded.ok()) {
    err << loaded.error << "\n";
    return 1;
  }
  machine::KinematicsDefinition const* kinematics = loaded.kinematics.get();
  machine::InteractSettingsDefinition interactions;
  bool fromFile = false;
  if (loaded.machine) {
    kinematics = dynamic_cast<machine::KinematicsDefinition const*>(loaded.machine->getDefaultFeature("kinematics"));
    if (auto const* saved = dynamic_cast<machine::InteractSettingsDefinition const*>(
            loaded.machine->getDefaultFeature("interactions"))) {
      interactions = *saved;
      fromFile = true;
    }
  }
  if (!kinematics) {
    err << args.front() << ": no kinematics to generate pairs from\n";
    return 1;
  }
  interactions.generatePairs(*kinematics);
  std::size_t const count = interactions.numberOfPairs();
  out << args.front() << ": " << count << (count == 1 ? " pair" : " pairs") << " from kinematics \""
      << kinematics->featureId() << "\""
      << (fromFile ? ", settings kept from interactions \"" + interactions.featureId() + "\"" : std::string()) << "\n";
  for (std::size_t i = 0; i < count; ++i) {
    machine::InteractPair const pair = interactions.pair(i);
    out << "  " << solidText(pair.interactand()) << " - " << solidText(pair.interactor()) << ": "
        << settingText(pair.interactSetting()) << "\n";
  }
  return 0;
}

}  // namespace mtkit_tool
