#include "CollisionsCommand.h"

#include <memory>
#include <ostream>
#include <string>

#include "machine/machine/InteractSettingsDefinition.h"
#include "machine/machine/KinematicsDefinition.h"
#include "machine/machine/MachineFileLoader.h"

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

struct CollisionsOptions {
  std::string file;
};

int runCollisions(CollisionsOptions const& options, std::ostream& out, std::ostream& err) {
  std::string const& path = options.file;
  machine::MachineFileLoader::LoadedFile const loaded = machine::MachineFileLoader::load(path);
  if (!loaded.ok()) {
    err << "mtkit collisions: " << loaded.error << "\n";
    return kExitFailure;
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
    err << "mtkit collisions: '" << path << "' has no kinematics to generate pairs from\n";
    return kExitFailure;
  }
  interactions.generatePairs(*kinematics);
  std::size_t const count = interactions.numberOfPairs();
  out << path << ": " << count << (count == 1 ? " pair" : " pairs") << " from kinematics \""
      << kinematics->featureId() << "\""
      << (fromFile ? ", settings kept from interactions \"" + interactions.featureId() + "\"" : std::string()) << "\n";
  for (std::size_t i = 0; i < count; ++i) {
    machine::InteractPair const pair = interactions.pair(i);
    out << "  " << solidText(pair.interactand()) << " - " << solidText(pair.interactor()) << ": "
        << settingText(pair.interactSetting()) << "\n";
  }
  return kExitOk;
}

}  // namespace

Command addCollisionsCommand(CLI::App& app) {
  auto options = std::make_shared<CollisionsOptions>();
  CLI::App* const sub = app.add_subcommand(
      "collisions", "the interaction pairs generated from the machine's kinematics, with their settings");
  sub->add_option("MACHINE", options->file, "a machine file or an MTK file")->type_name("")->required();
  sub->footer("Each pair: both solids (part and type) and whether it is checked for collisions or cuts stock.\n"
              "Settings of the file's default \"interactions\" feature are kept for the pairs generated again.");
  return {sub, [options](std::ostream& out, std::ostream& err) { return runCollisions(*options, out, err); }};
}

}  // namespace mtkit_tool
