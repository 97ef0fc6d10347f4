#include "CheckCommand.h"

#include <ostream>

#include "MachineFileLoader.h"
#include "machine/machine/ControllerConfiguration.h"
#include "machine/machine/DefinitionCheck.h"
#include "machine/machine/KinematicsDefinition.h"

namespace mtkit_tool {

namespace {

std::string kinematicsSummary(machine::KinematicsDefinition const& k) {
  std::size_t parts = 0, axes = 0;
  machine::DescendantRange const all = k.allParts();
  for (machine::PartDefinition const& part : all) {
    ++parts;
    if (part.axisDefinition()) ++axes;
  }
  return std::to_string(parts) + " parts, " + std::to_string(axes) + " axes";
}

/// The check's problems, one indented line each, after `heading`; false
/// when there are any.
bool reportProblems(machine::KinematicsDefinition const& kinematics, std::string const& heading, std::ostream& err) {
  auto const problems = machine::DefinitionCheck::check(kinematics);
  if (problems.empty()) return true;
  err << heading << "\n";
  for (auto const& problem : problems) err << "  " << problem.message << "\n";
  return false;
}

}  // namespace

int runCheck(std::vector<std::string> const& args, std::ostream& out, std::ostream& err) {
  if (args.size() != 1) {
    err << "usage: mtkit check FILE\n";
    return 2;
  }
  LoadedFile const loaded = MachineFileLoader::load(args.front());
  if (!loaded.ok()) {
    err << loaded.error << "\n";
    return 1;
  }
  if (loaded.kinematics &&
      !reportProblems(*loaded.kinematics, args.front() + ": MTK file read, but its kinematics cannot be moved:", err))
    return 1;
  if (loaded.machine) {
    bool usable = true;
    for (machine::MachineFeatureDefinition const& feature : loaded.machine->getFeatures())
      if (auto const* k = dynamic_cast<machine::KinematicsDefinition const*>(&feature))
        usable = reportProblems(*k,
                                args.front() + ": machine file read, but its kinematics \"" + feature.featureId() +
                                    "\" cannot be moved:",
                                err) &&
                 usable;
    if (!usable) return 1;
  }
  out << args.front() << ": ";
  if (loaded.kinematics) {
    out << "MTK file OK: " << kinematicsSummary(*loaded.kinematics) << ", "
        << (loaded.kinematics->mtkIOConverter().externalHandedness() == machine::Handedness::LEFT_HANDED ? "left-handed"
                                                                                                         : "right-handed")
        << "\n";
    return 0;
  }
  machine::MachineDefinition const& m = *loaded.machine;
  out << "machine file OK: ";
  if (!m.vendor().empty() || !m.model().empty()) out << "\"" << m.vendor() << (m.vendor().empty() ? "" : " ") << m.model() << "\", ";
  out << m.getFeatures().size() << (m.getFeatures().size() == 1 ? " feature" : " features");
  char const* separator = " (";
  for (machine::MachineFeatureDefinition const& feature : m.getFeatures()) {
    out << separator << feature.featureTypeId() << " \"" << feature.featureId() << "\"";
    if (auto const* k = dynamic_cast<machine::KinematicsDefinition const*>(&feature))
      out << ": " << kinematicsSummary(*k);
    else if (auto const* c = dynamic_cast<machine::ControllerConfiguration const*>(&feature))
      out << ": " << c->axisConfigurations().size() << " axes";
    separator = "; ";
  }
  out << (m.getFeatures().empty() ? "" : ")") << "\n";
  return 0;
}

}  // namespace mtkit_tool
