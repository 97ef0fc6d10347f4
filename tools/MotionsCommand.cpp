#include "MotionsCommand.h"

#include <ostream>

#include "CommandSupport.h"
#include "MotionsFile.h"

namespace mtkit_tool {

namespace {

char const* const kUsage = "mtkit motions FILE";

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

}  // namespace

int runMotions(std::vector<std::string> const& args, std::ostream& out, std::ostream& err) {
  if (args.size() != 1 || (!args[0].empty() && args[0][0] == '-')) {
    err << "mtkit motions: expected a motions file: " << kUsage << "\n";
    return 1;
  }
  MotionsFormat format = MotionsFormat::JSON;
  std::string error;
  auto const motions = readMotionsFile(args[0], format, error);
  if (!motions) {
    err << "mtkit motions: " << args[0] << ": " << error << "\n";
    return 1;
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
  return 0;
}

}  // namespace mtkit_tool
