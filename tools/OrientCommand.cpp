#include "OrientCommand.h"

#include <cmath>
#include <memory>
#include <ostream>
#include <string>

#include "CommandSupport.h"
#include "ScriptConfiguration.h"
#include "util/utility/ScriptException.h"

namespace mtkit_tool {
namespace {

using com::vantora::post::MachineConfiguration;
using com::vantora::Vector;

constexpr double kRadiansPerDegree = 3.14159265358979323846 / 180.0;

struct OrientOptions {
  std::string file;
  std::string direction;
  std::string previous;
  std::string tip = "0,0,0";
};

std::string positionText(Vector const& v) {
  return "X=" + formatNumber(v.x) + " Y=" + formatNumber(v.y) + " Z=" + formatNumber(v.z) + " mm";
}

std::string rangeNote(MachineConfiguration const& configuration, Vector const& abc) {
  std::string const out = outOfRangeAxes(configuration, abc);
  return out.empty() ? std::string() : "  (out of range: " + out + ")";
}

int runOrient(OrientOptions const& options, std::ostream& out, std::ostream& err) {
  Orvo::Point3D const d = *parsePoint(options.direction);
  double const length = std::sqrt(d.x * d.x + d.y * d.y + d.z * d.z);
  if (!(length > 1e-12)) {
    err << "mtkit orient: --direction " << options.direction << " has no length; give the tool direction I,J,K\n";
    return kExitUsage;
  }
  Vector const direction(d.x / length, d.y / length, d.z / length);
  Orvo::Point3D const t = *parsePoint(options.tip);
  Vector const tip(t.x, t.y, t.z);

  ScriptConfiguration const loaded = loadScriptConfiguration("orient", options.file, err);
  if (!loaded.configuration) return kExitFailure;
  MachineConfiguration const& configuration = *loaded.configuration;
  if (!configuration.hasRotational()) {
    err << "mtkit orient: '" << options.file << "' has no rotary axes (" << kindText(configuration)
        << "): the tool always points along the spindle\n";
    return kExitFailure;
  }

  out << "configuration:  " << options.file << " (" << kindText(configuration) << ")\n";
  out << "direction:      " << formatNumber(direction.x) << " " << formatNumber(direction.y) << " "
      << formatNumber(direction.z) << (std::fabs(length - 1.0) > 1e-12 ? " (normalised)" : "") << "\n";
  try {
    com::vantora::VectorPair const both = configuration.getABCByDirectionBoth(direction);
    out << "solution 1:     " << abcText(configuration, both.first) << rangeNote(configuration, both.first) << "\n";
    out << "solution 2:     " << abcText(configuration, both.second) << rangeNote(configuration, both.second)
        << "\n";

    // The axes' preferences pick between the two; whole turns then bring
    // the values into the ranges where that is possible.
    Vector chosen = configuration.getPreferredABC(both.first);
    try {
      chosen = configuration.remapABC(chosen);
    } catch (Orvo::ScriptException const&) {
      // Left as solved: the note below says which axis is out.
    }
    out << "by preference:  " << abcText(configuration, chosen) << rangeNote(configuration, chosen) << "\n";
    if (!options.previous.empty()) {
      Orvo::Point3D const p = *parsePoint(options.previous);
      Vector const previous(p.x * kRadiansPerDegree, p.y * kRadiansPerDegree, p.z * kRadiansPerDegree);
      chosen = configuration.getClosestABC(previous, both.first);
      out << "closest to previous " << abcText(configuration, previous) << ":\n"
          << "                " << abcText(configuration, chosen) << rangeNote(configuration, chosen) << "\n";
    }
    // The machine position for the tip: compensated for the rotary axes
    // whose TCP is off, as the control would need it, and for every rotary
    // axis, as a control without any TCP would.
    Vector const optimised = configuration.getOptimizedPosition(tip, chosen, MachineConfiguration::TCP_FORWARD,
                                                                MachineConfiguration::OPTIMIZE_BOTH, false);
    Vector const withoutTcp = configuration.getOptimizedPosition(tip, chosen, MachineConfiguration::TCP_FORWARD,
                                                                 MachineConfiguration::OPTIMIZE_BOTH, true);
    out << "tip:            " << positionText(tip) << "\n";
    out << "position:       " << positionText(optimised)
        << (configuration.isTCPEnabledForAnyAxis() ? "  (axes with TCP left to the control)" : "") << "\n";
    out << "without TCP:    " << positionText(withoutTcp) << "\n";
  } catch (Orvo::ScriptException const& e) {
    err << "mtkit orient: " << e.what() << "\n";
    return kExitFailure;
  }
  return kExitOk;
}

}  // namespace

Command addOrientCommand(CLI::App& app) {
  auto options = std::make_shared<OrientOptions>();
  CLI::App* const sub = app.add_subcommand(
      "orient", "rotary solutions for a tool direction, the one chosen, and the machine position for a tip");
  sub->add_option("CONFIG", options->file, "a machine file, an MTK file, or a configuration XML file (*.xml)")
      ->type_name("")
      ->required();
  sub->add_option("--direction", options->direction, "the tool direction I,J,K (normalised if need be)")
      ->type_name("I,J,K")
      ->required()
      ->check(pointValidator());
  sub->add_option("--previous", options->previous,
                  "the previous rotary position A,B,C in degrees: also print the solution closest to it")
      ->type_name("A,B,C")
      ->check(pointValidator());
  sub->add_option("--tip", options->tip, "the tool tip X,Y,Z in mm in part coordinates (default 0,0,0)")
      ->type_name("X,Y,Z")
      ->check(pointValidator());
  sub->footer(
      "Rotary values are in degrees, named by their coordinate (A, B, C). The chosen solution is the one\n"
      "closest to --previous when given, else the one the axes' preferences choose; the position is the\n"
      "tip compensated for the chosen rotary values. Exit status 1 when the configuration cannot be made\n"
      "or the machine cannot point the tool along the direction.");
  return {sub, [options](std::ostream& out, std::ostream& err) { return runOrient(*options, out, err); }};
}

}  // namespace mtkit_tool
