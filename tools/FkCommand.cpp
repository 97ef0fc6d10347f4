#include "FkCommand.h"

#include <ostream>

#include "CommandSupport.h"

namespace mtkit_tool {
namespace {

void printVector(std::ostream& out, char const* label, double x, double y, double z) {
  out << label << formatNumber(x) << ' ' << formatNumber(y) << ' ' << formatNumber(z) << "\n";
}

}  // namespace

int runFk(std::vector<std::string> const& args, std::ostream& out, std::ostream& err) {
  if (args.empty()) {
    err << "mtkit fk: expected a machine file: mtkit fk FILE [AXIS=VALUE...]\n";
    return 1;
  }
  auto machine = loadMachine("fk", args.front(), err);
  if (!machine) return 1;
  if (!applyAxisWords("fk", std::vector<std::string>(args.begin() + 1, args.end()), *machine, err)) return 1;

  Orvo::AxisOrdering const& ordering = machine->axisOrdering();
  Orvo::AxisValues const values = machine->axisValues();
  out << "axes:";
  for (int i = 0; i < ordering.size(); ++i)
    out << ' ' << ordering.axisName(i).name() << '=' << formatNumber(values.value(i).value());
  out << "\n";
  // With no tool reference frame the tool tip is the origin of the head's
  // attach frame and the tool axis its Z axis.
  Orvo::Frame const head = headFrameInTable(*machine);
  out << "head attach frame in table coordinates:\n";
  printVector(out, "  origin: ", head.origin().x, head.origin().y, head.origin().z);
  printVector(out, "  x axis: ", head.xAxis().x, head.xAxis().y, head.xAxis().z);
  printVector(out, "  y axis: ", head.yAxis().x, head.yAxis().y, head.yAxis().z);
  printVector(out, "  z axis: ", head.zAxis().x, head.zAxis().y, head.zAxis().z);
  printVector(out, "tool tip: ", head.origin().x, head.origin().y, head.origin().z);
  printVector(out, "tool axis: ", head.zAxis().x, head.zAxis().y, head.zAxis().z);
  return 0;
}

}  // namespace mtkit_tool
