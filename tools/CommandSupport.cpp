#include "CommandSupport.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <ostream>

#include "machine/machine/DefinitionCheck.h"
#include "machine/machine/MachineDefinitionReader.h"
#include "machine/machine/MachineSpecification.h"

namespace mtkit_tool {

std::optional<double> parseNumber(std::string const& text) {
  if (text.empty()) return std::nullopt;
  char* end = nullptr;
  errno = 0;
  double const value = std::strtod(text.c_str(), &end);
  if (*end != '\0' || errno == ERANGE || !std::isfinite(value)) return std::nullopt;
  return value;
}

std::string formatNumber(double value) {
  if (value == 0.0 || std::fabs(value) < 5e-7) value = 0.0;
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, "%.6f", value);
  return buffer;
}

Orvo::AxisOrdering chainFirstOrdering(machine::Machine const& machine) {
  std::vector<Orvo::MachinePartId> onChains;
  auto const collect = [&](machine::Part const& part) { onChains.push_back(part.definition()->identifier()); };
  machine::Part::visitChainToBase(machine.headPart(), collect);
  machine::Part::visitChainToBase(machine.tablePart(), collect);
  Orvo::AxisOrdering const full = machine.fullOrdering();
  Orvo::AxisOrdering ordering;
  for (bool const wanted : {true, false})
    for (int i = 0; i < full.size(); ++i) {
      bool const on = std::find(onChains.begin(), onChains.end(), full.machinePartId(i)) != onChains.end();
      if (on == wanted) ordering.append(full.axisInfo(i));
    }
  return ordering;
}

std::unique_ptr<machine::Machine> loadMachine(std::string const& command, std::string const& path,
                                              std::ostream& err) {
  std::ifstream in(path, std::ios::binary);
  if (!in) {
    err << "mtkit " << command << ": cannot open '" << path << "'\n";
    return nullptr;
  }
  auto result = machine::MachineDefinitionReader().read(in);
  if (result.isError()) {
    err << "mtkit " << command << ": '" << path << "' is not a machine file: " << result.getReadErrorMessage()
        << "\n";
    return nullptr;
  }
  auto const definition = result.getMachineDefinition();
  auto const specification = machine::MachineSpecification::makeDefaultForDefinition(*definition, true);
  if (!specification) {
    err << "mtkit " << command << ": '" << path << "' has no kinematics\n";
    return nullptr;
  }
  auto const problems = machine::DefinitionCheck::check(*specification->kinematicsDefinition());
  if (!problems.empty()) {
    err << "mtkit " << command << ": '" << path << "': the kinematics cannot be moved:\n";
    for (auto const& problem : problems) err << "  " << problem.message << "\n";
    return nullptr;
  }
  std::unique_ptr<machine::Machine> machine;
  try {
    machine = std::make_unique<machine::Machine>(*specification);
  } catch (std::bad_optional_access const&) {
    err << "mtkit " << command << ": '" << path
        << "': the controller names a head or table part that is not in the kinematics\n";
    return nullptr;
  } catch (std::exception const& e) {
    err << "mtkit " << command << ": '" << path << "': " << e.what() << "\n";
    return nullptr;
  }
  if (!machine->headPart()) {
    err << "mtkit " << command << ": '" << path << "': the machine has no head\n";
    return nullptr;
  }
  if (!machine->tablePart()) {
    err << "mtkit " << command << ": '" << path << "': the machine has no table\n";
    return nullptr;
  }
  machine->setAxisOrdering(chainFirstOrdering(*machine));
  return machine;
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

bool applyAxisWords(std::string const& command, std::vector<std::string> const& words, machine::Machine& machine,
                    std::ostream& err) {
  for (std::string const& word : words) {
    auto const eq = word.find('=');
    if (eq == std::string::npos || eq == 0) {
      err << "mtkit " << command << ": expected AXIS=VALUE, got '" << word << "'\n";
      return false;
    }
    std::string const name = word.substr(0, eq);
    std::string const number = word.substr(eq + 1);
    auto const value = parseNumber(number);
    if (!value) {
      err << "mtkit " << command << ": '" << number << "' is not a number (in '" << word << "')\n";
      return false;
    }
    machine::Part const* const part = machine.orderedPartByName(Orvo::AxisName(name));
    if (!part) {
      err << "mtkit " << command << ": the machine has no axis named '" << name << "' (axes: " << axisNames(machine)
          << ")\n";
      return false;
    }
    machine.moveAxis(part, *value);
  }
  return true;
}

Orvo::Frame headFrameInTable(machine::Machine const& machine) {
  return Orvo::Frame(Orvo::IdentityTag{})
      .transformedBy(Orvo::coordinateTransform3D(machine.headAttachFrame(), machine.tableAttachFrame()));
}

}  // namespace mtkit_tool
