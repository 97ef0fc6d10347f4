#include "FkCommand.h"

#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "CommandSupport.h"
#include "machine/machine/MachineUtils.h"

namespace mtkit_tool {
namespace {

struct FkOptions {
  std::string file;
  std::vector<std::string> words;
  std::string toolLength = "0";
};

std::string vectorText(Orvo::Vector3D const& v) {
  return formatNumber(v.x) + " " + formatNumber(v.y) + " " + formatNumber(v.z);
}

int runFk(FkOptions const& options, std::ostream& out, std::ostream& err) {
  auto machine = loadMachine("fk", options.file, err);
  if (!machine) return kExitFailure;
  if (!applyAxisWords("fk", options.words, *machine, err)) return kExitUsage;
  double const toolLength = *parseNumber(options.toolLength);

  std::vector<OutOfTravel> const outOfTravel = axesOutOfTravel(*machine);
  out << "axes:\n" << axisLines(*machine, outOfTravel);
  out << "tool length: " << formatNumber(toolLength) << " mm\n";
  // The head's Z axis is the tool axis as CAM gives it, from the tip into the
  // spindle: the tip lies the tool length against it from the origin of the
  // head's attach frame, as a solver's tool reference frame puts it.
  Orvo::Frame const head = machine::MachineUtils::headFrameInTable(*machine);
  out << "head attach frame in table coordinates:\n";
  out << "  origin: " << pointText(head.origin(), "mm") << "\n";
  out << "  x axis: " << vectorText(head.xAxis()) << "\n";
  out << "  y axis: " << vectorText(head.yAxis()) << "\n";
  out << "  z axis: " << vectorText(head.zAxis()) << "\n";
  out << "tool tip: " << pointText(head.origin() - toolLength * head.zAxis(), "mm") << "\n";
  out << "tool axis: " << vectorText(head.zAxis()) << "\n";
  if (outOfTravel.empty()) return kExitOk;
  err << travelMessages("fk", outOfTravel, nullptr);
  return kExitFailure;
}

}  // namespace

Command addFkCommand(CLI::App& app) {
  auto options = std::make_shared<FkOptions>();
  CLI::App* const sub = app.add_subcommand(
      "fk", "forward kinematics: move the machine and print the head attach frame, tool tip and tool axis");
  sub->add_option("FILE", options->file, "a machine file or an MTK file")->type_name("")->required();
  sub->add_option("AXIS=VALUE", options->words,
                  "move an axis, named as 'mtkit show' lists it or by its part id (mm, degrees); the others "
                  "stay at home")
      ->type_name("")
      ->check(axisWordValidator());
  sub->add_option("--tool-length", options->toolLength,
                  "the tool's length from the head's attach frame to the tip, against the head's Z axis, which "
                  "points from the tip into the spindle (mm, default 0)")
      ->type_name("L")
      ->check(nonNegativeNumberValidator());
  sub->footer(
      "Points are in the table's coordinates, in mm. Exit status 1, with the pose still printed,\n"
      "when an axis stands outside its travel (the controller's range).");
  return {sub, [options](std::ostream& out, std::ostream& err) { return runFk(*options, out, err); }};
}

}  // namespace mtkit_tool
