#include "CommandSupport.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <ostream>

#include "NullSimulationStream.h"
#include "machine/machine/MachineFileLoader.h"

namespace mtkit_tool {

std::optional<double> parseNumber(std::string const& text) {
  if (text.empty()) return std::nullopt;
  char* end = nullptr;
  errno = 0;
  double const value = std::strtod(text.c_str(), &end);
  if (*end != '\0' || errno == ERANGE || !std::isfinite(value)) return std::nullopt;
  return value;
}

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

std::string formatNumber(double value) {
  if (value == 0.0 || std::fabs(value) < 5e-7) value = 0.0;
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, "%.6f", value);
  return buffer;
}

std::unique_ptr<machine::Machine> loadMachine(std::string const& command, std::string const& path,
                                              std::ostream& err) {
  machine::MachineFileLoader::BuiltMachine built = machine::MachineFileLoader::loadMachine(path);
  if (!built.ok()) err << "mtkit " << command << ": " << built.error << "\n";
  return std::move(built.machine);
}

std::string axisNames(machine::Machine const& machine) {
  std::string names;
  Orvo::AxisOrdering const& ordering = machine.axisOrdering();
  for (int i = 0; i < ordering.size(); ++i) {
    if (!names.empty()) names += ' ';
    names += ordering.axisName(i).name();
  }
  return names.empty() ? "none" : names;
}

machine::Part const* findAxis(machine::Machine const& machine, std::string const& name) {
  if (machine::Part const* const byName = machine.orderedPartByName(Orvo::AxisName(name))) return byName;
  for (int i = 0; i < machine.numOrderedParts(); ++i) {
    machine::Part const* const part = machine.orderedPart(i);
    if (part && part->definition()->identifier().id() == name) return part;
  }
  for (int i = 0; i < machine.numOrderedParts(); ++i) {
    machine::Part const* const part = machine.orderedPart(i);
    machine::AxisDefinition const* const axis = part ? part->definition()->axisDefinition() : nullptr;
    if (axis && axis->name() && axis->name()->name() == name) return part;
  }
  return nullptr;
}

bool applyAxisWords(std::string const& command, std::vector<std::string> const& words, machine::Machine& machine,
                    std::ostream& err, std::vector<Orvo::MachinePartId>* moved) {
  for (std::string const& word : words) {
    auto const eq = word.find('=');
    std::string const name = word.substr(0, eq);
    auto const value = parseNumber(word.substr(eq + 1));
    if (!value) {
      err << "mtkit " << command << ": '" << word.substr(eq + 1) << "' is not a number (in '" << word << "')\n";
      return false;
    }
    machine::Part const* const part = findAxis(machine, name);
    if (!part) {
      err << "mtkit " << command << ": the machine has no axis named '" << name << "' (axes: " << axisNames(machine)
          << ", or their part ids)\n";
      return false;
    }
    machine.moveAxis(part, *value);
    if (moved) moved->push_back(part->definition()->identifier());
  }
  return true;
}

char const* axisUnit(machine::Axis const& axis) { return axis.axisType() == machine::AxisType::LINEAR ? "mm" : "deg"; }

std::string compactNumber(double value) {
  if (std::fabs(value) < 5e-4) value = 0.0;
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, "%.3f", value);
  std::string text = buffer;
  if (std::isfinite(value)) {
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') text.pop_back();
  }
  return text;
}

std::string rangeText(Orvo::AxisValueRange const& range, char const* unit) {
  return compactNumber(range.min().value()) + ".." + compactNumber(range.max().value()) + " " + unit;
}

std::vector<OutOfTravel> axesOutOfTravel(machine::Machine const& machine) {
  // The pose goes through the same link simulate puts behind the solver, so
  // that fk, ik and simulate draw the line in the same place.
  machine::TravelLimitSimulationStream link(std::make_unique<NullSimulationStream>(), machine);
  link.onAxisOrdering(machine.axisOrdering());
  Orvo::AxisValues const values = machine.axisValues();
  link.onAxisValues(values);
  std::vector<OutOfTravel> result;
  Orvo::AxisOrdering const& ordering = machine.axisOrdering();
  for (int i = 0; i < ordering.size(); ++i) {
    auto const* const travel = link.axis(ordering.machinePartId(i));
    if (travel && travel->count > 0) result.push_back({*travel, values.value(i).value()});
  }
  return result;
}

std::string axisLines(machine::Machine const& machine, std::vector<OutOfTravel> const& outOfTravel) {
  std::string text;
  Orvo::AxisOrdering const& ordering = machine.axisOrdering();
  for (int i = 0; i < ordering.size(); ++i) {
    machine::Part const* const part = machine.orderedPart(i);
    if (!part || !part->axis()) continue;
    machine::Axis const& axis = *part->axis();
    char const* const unit = axisUnit(axis);
    text += "  " + ordering.axisName(i).name() + "=" + formatNumber(axis.value().value()) + " " + unit;
    for (OutOfTravel const& out : outOfTravel)
      if (out.axis.part == ordering.machinePartId(i)) text += " (out of travel: " + rangeText(out.axis.range, unit) + ")";
    text += "\n";
  }
  return text;
}

std::string travelMessages(std::string const& command, std::vector<OutOfTravel> const& outOfTravel,
                           std::vector<Orvo::MachinePartId> const* given) {
  std::string text;
  for (OutOfTravel const& out : outOfTravel) {
    bool const answer = given && std::find(given->begin(), given->end(), out.axis.part) == given->end();
    text += "mtkit " + command + ": " + (answer ? "the answer: " : "") +
            machine::TravelLimitSimulationStream::message(out.axis, out.value, 0) + "\n";
  }
  return text;
}

std::string pointText(Orvo::Point3D const& point, char const* unit) {
  return formatNumber(point.x) + " " + formatNumber(point.y) + " " + formatNumber(point.z) + " " + unit;
}

}  // namespace mtkit_tool
