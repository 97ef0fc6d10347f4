#include "IkCommand.h"

#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "CommandSupport.h"
#include "machine/machine/MachineSolver.h"
#include "machine/machine/MachineUtils.h"

namespace mtkit_tool {
namespace {

struct IkOptions {
  std::string file;
  std::string tip;
  std::vector<std::string> words;
  std::string toolLength = "0";
};

int runIk(IkOptions const& options, std::ostream& out, std::ostream& err) {
  Orvo::Point3D const tip = *parsePoint(options.tip);
  double const toolLength = *parseNumber(options.toolLength);
  auto machine = loadMachine("ik", options.file, err);
  if (!machine) return kExitFailure;
  std::vector<Orvo::MachinePartId> given;
  if (!applyAxisWords("ik", options.words, *machine, err, &given)) return kExitUsage;
  auto const solver = machine->makeMachineSolver();
  if (!solver) {
    err << "mtkit ik: '" << options.file
        << "': fewer than two primary linear axes on the head and table chains; nothing to solve\n";
    return kExitFailure;
  }
  solver->setToolReferenceFrame(machine::MachineUtils::toolReferenceFrame(toolLength));
  auto const distance = solver->moveToolTipTo(tip);
  if (!distance) {
    err << "mtkit ik: no solution: the linear axes are not independent at this pose\n";
    return kExitFailure;
  }
  std::vector<OutOfTravel> const outOfTravel = axesOutOfTravel(*solver);
  out << "axes:\n" << axisLines(*solver, outOfTravel);
  out << "tool length: " << formatNumber(toolLength) << " mm\n";
  Orvo::Vector3D const axis = solver->toolAxisInTableCs();
  out << "tool tip: " << pointText(solver->toolTipPoint(), "mm") << "\n";
  out << "tool axis: " << formatNumber(axis.x) << " " << formatNumber(axis.y) << " " << formatNumber(axis.z) << "\n";
  out << "distance left: " << formatNumber(distance->get()) << " mm\n";
  if (outOfTravel.empty()) return kExitOk;
  err << travelMessages("ik", outOfTravel, &given);
  return kExitFailure;
}

}  // namespace

Command addIkCommand(CLI::App& app) {
  auto options = std::make_shared<IkOptions>();
  CLI::App* const sub =
      app.add_subcommand("ik", "inverse kinematics: solve the linear axes for a tool tip and print every axis");
  sub->add_option("FILE", options->file, "a machine file or an MTK file")->type_name("")->required();
  sub->add_option("--tip", options->tip, "the wanted tool tip in table coordinates (mm)")
      ->type_name("X,Y,Z")
      ->required()
      ->check(pointValidator());
  sub->add_option("AXIS=VALUE", options->words,
                  "set an axis before solving, named as 'mtkit show' lists it or by its part id (mm, degrees)")
      ->type_name("")
      ->check(axisWordValidator());
  sub->add_option("--tool-length", options->toolLength,
                  "the tool's length from the head's attach frame to the tip, against the head's Z axis, which "
                  "points from the tip into the spindle (mm, default 0)")
      ->type_name("L")
      ->check(nonNegativeNumberValidator());
  sub->footer(
      "Prints the axes as fk does, the tool tip reached and the distance left to the wanted one.\n"
      "Exit status 1, with the answer still printed, when an axis would stand outside its travel.");
  return {sub, [options](std::ostream& out, std::ostream& err) { return runIk(*options, out, err); }};
}

}  // namespace mtkit_tool
