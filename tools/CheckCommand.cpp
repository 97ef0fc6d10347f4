#include "CheckCommand.h"

#include <memory>
#include <ostream>
#include <string>

#include "machine/machine/ControllerConfiguration.h"
#include "machine/machine/DefinitionCheck.h"
#include "machine/machine/KinematicsDefinition.h"
#include "machine/machine/MachineFileLoader.h"

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

struct CheckOptions {
  std::string file;
  bool strict = false;
};

int runCheck(CheckOptions const& options, std::ostream& out, std::ostream& err) {
  std::string const& path = options.file;
  machine::MachineFileLoader::LoadedFile const loaded = machine::MachineFileLoader::load(path);
  if (!loaded.ok()) {
    err << "mtkit check: " << loaded.error << "\n";
    return kExitFailure;
  }
  std::string const prefix = "mtkit check: '" + path + "': ";
  if (loaded.kinematics &&
      !reportProblems(*loaded.kinematics, prefix + "MTK file read, but its kinematics cannot be moved:", err))
    return kExitFailure;
  if (loaded.machine) {
    bool usable = true;
    for (machine::MachineFeatureDefinition const& feature : loaded.machine->getFeatures())
      if (auto const* k = dynamic_cast<machine::KinematicsDefinition const*>(&feature))
        usable = reportProblems(*k,
                                prefix + "machine file read, but its kinematics \"" + feature.featureId() +
                                    "\" cannot be moved:",
                                err) &&
                 usable;
    if (!usable) return kExitFailure;
  }
  out << path << ": ";
  if (loaded.kinematics) {
    out << "MTK file OK: " << kinematicsSummary(*loaded.kinematics) << ", "
        << (loaded.kinematics->mtkIOConverter().externalHandedness() == machine::Handedness::LEFT_HANDED ? "left-handed"
                                                                                                         : "right-handed")
        << "\n";
    return kExitOk;
  }
  machine::MachineDefinition const& m = *loaded.machine;
  // A machine without kinematics reads, but nothing can move it: fk, ik and
  // simulate refuse it. That is worth a warning, and under --strict a failure.
  bool hasKinematics = false;
  for (machine::MachineFeatureDefinition const& feature : m.getFeatures())
    hasKinematics = hasKinematics || dynamic_cast<machine::KinematicsDefinition const*>(&feature);
  out << (hasKinematics ? "machine file OK: " : "machine file read: ");
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
  if (hasKinematics) return kExitOk;
  warn(err, "check",
       "'" + path + "' " + (m.getFeatures().empty() ? "has no features at all, so no kinematics" : "has no kinematics") +
           ": fk, ik and simulate cannot move it");
  return options.strict ? kExitFailure : kExitOk;
}

}  // namespace

Command addCheckCommand(CLI::App& app) {
  auto options = std::make_shared<CheckOptions>();
  CLI::App* const sub =
      app.add_subcommand("check", "read a machine file or an MTK file: a one-line summary, or what is wrong");
  sub->add_option("FILE", options->file, "a machine file (JSON) or an MTK file (*.mtk, or JSON with \"units\")")
      ->type_name("")
      ->required();
  sub->add_flag("--strict", options->strict, "treat warnings as failures: a machine file without kinematics fails");
  sub->footer("Exit status 1 when the file cannot be read or its kinematics cannot be moved; with --strict\n"
              "also when it has no kinematics.");
  return {sub, [options](std::ostream& out, std::ostream& err) { return runCheck(*options, out, err); }};
}

}  // namespace mtkit_tool
