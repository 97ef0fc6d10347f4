#include "IkCommand.h"

#include <ostream>

#include "CommandSupport.h"
#include "machine/machine/MachineSolver.h"

namespace mtkit_tool {
namespace {

std::optional<Orvo::Point3D> parsePoint(std::string const& text) {
  std::vector<double> numbers;
  std::size_t start = 0;
  while (true) {
    std::size_t const comma = text.find(',', start);
    auto const number = parseNumber(text.substr(start, comma == std::string::npos ? std::string::npos : comma - start));
    if (!number) return std::nullopt;
    numbers.push_back(*number);
    if (comma == std::string::npos) break;
    start = comma + 1;
  }
  if (numbers.size() != 3) return std::nullopt;
  return Orvo::Point3D(numbers[0], numbers[1], numbers[2]);
}

}  // namespace

int runIk(std::vector<std::string> const& args, std::ostream& out, std::ostream& err) {
  if (args.empty()) {
    err << "mtkit ik: expected a machine file: mtkit ik FILE --tip X,Y,Z [AXIS=VALUE...]\n";
    return 1;
  }
  std::optional<Orvo::Point3D> tip;
  std::vector<std::string> words;
  for (std::size_t i = 1; i < args.size(); ++i) {
    if (args[i] == "--tip") {
      if (i + 1 == args.size()) {
        err << "mtkit ik: --tip needs a point X,Y,Z\n";
        return 1;
      }
      tip = parsePoint(args[++i]);
      if (!tip) {
        err << "mtkit ik: '" << args[i] << "' is not a point X,Y,Z\n";
        return 1;
      }
    } else {
      words.push_back(args[i]);
    }
  }
  if (!tip) {
    err << "mtkit ik: missing --tip X,Y,Z\n";
    return 1;
  }
  auto machine = loadMachine("ik", args.front(), err);
  if (!machine) return 1;
  if (!applyAxisWords("ik", words, *machine, err)) return 1;
  auto const solver = machine->makeMachineSolver();
  if (!solver) {
    err << "mtkit ik: '" << args.front()
        << "': fewer than two primary linear axes on the head and table chains; nothing to solve\n";
    return 1;
  }
  auto const distance = solver->moveToolTipTo(*tip);
  if (!distance) {
    err << "mtkit ik: no solution: the linear axes are not independent at this pose\n";
    return 1;
  }
  Orvo::AxisOrdering const& ordering = solver->axisOrdering();
  Orvo::AxisValues const values = solver->axisValues();
  for (int i = 0; i < ordering.size(); ++i)
    out << ordering.axisName(i).name() << " = " << formatNumber(values.value(i).value()) << "\n";
  out << "distance left: " << formatNumber(distance->get()) << "\n";
  return 0;
}

}  // namespace mtkit_tool
