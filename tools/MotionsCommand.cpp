#include "MotionsCommand.h"

#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "CommandSupport.h"
#include "MotionsFile.h"
#include "machine/machine/MachineFileLoader.h"

namespace mtkit_tool {

namespace {

/// "machine 1, program 2, operation 3, work offset 54, pattern 7 instance 2".
std::string contextText(Orvo::MotionContext const& context) {
  auto id = [](std::optional<int> const& v) { return v ? std::to_string(*v) : std::string("none"); };
  std::string text = "machine " + id(context.machineId()) + ", program " + id(context.ncProgramId()) +
                     ", operation " + id(context.toolpathId()) + ", work offset " +
                     std::to_string(context.workOffset());
  for (auto const& level : context.patterns())
    text += ", pattern " + std::to_string(level.patternId) + " instance " + std::to_string(level.instance);
  return text;
}

/// "X=10.500000 C=-90.000000", the axes named by the ordering; an axis the
/// ordering does not name by its index.
std::string poseText(Orvo::AxisOrdering const& ordering, Orvo::AxisValues const& values) {
  std::string text;
  for (int i = 0; i < values.size(); ++i) {
    std::string name = i < ordering.size() ? ordering.axisName(i).name() : std::string();
    if (name.empty()) name = "#" + std::to_string(i);
    text += (i ? " " : "") + name + "=" + formatNumber(values.value(i).value());
  }
  return text;
}

int runMotions(std::string const& path, std::ostream& out, std::ostream& err) {
  std::vector<std::string> const args{path};
  if (auto const file = machine::MachineFileLoader::checkReadable(path); !file.ok()) {
    err << "mtkit motions: " << file.error << "\n";
    return kExitFailure;
  }
  MotionsFormat format = MotionsFormat::JSON;
  std::string error;
  auto const motions = readMotionsFile(args[0], format, error);
  if (!motions) {
    err << "mtkit motions: " << args[0] << ": " << error << "\n";
    return kExitFailure;
  }
  auto const& range = motions->motionRange();
  out << "motions: " << args[0] << " (" << motionsFormatName(format) << "), " << range.size()
      << (range.size() == 1 ? " motion" : " motions") << "\n";
  int number = 0;
  for (machine::MachineMotion const& motion : range) {
    out << "motion " << ++number << ": " << contextText(motion.context()) << (motion.isValid() ? "" : ", not valid")
        << "\n";
    if (motion.numEntities() == 0) {
      out << "  start: none\n";
      continue;
    }
    out << "  start: " << poseText(motion.axisOrdering(0), motion.axisValues(0)) << "\n";
  }
  return kExitOk;
}

}  // namespace

Command addMotionsCommand(CLI::App& app) {
  auto path = std::make_shared<std::string>();
  CLI::App* const sub = app.add_subcommand(
      "motions", "the machine motions simulate --motions wrote: each operation's context and start pose per axis");
  sub->add_option("FILE", *path, "a motions file, in the JSON or the binary form")->type_name("")->required();
  sub->footer("Start poses are in mm for linear axes and degrees for rotary ones.");
  return {sub, [path](std::ostream& out, std::ostream& err) { return runMotions(*path, out, err); }};
}

}  // namespace mtkit_tool
