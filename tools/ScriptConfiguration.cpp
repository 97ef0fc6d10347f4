#include "ScriptConfiguration.h"

#include <cmath>
#include <cstdio>
#include <ostream>

#include "CommandSupport.h"
#include "machine/machine/MachineFileLoader.h"
#include "machine/machine/PostMachineConfig/MachineConfigurationLoader.h"
#include "util/utility/Messages.h"
#include "util/utility/ScriptException.h"

namespace mtkit_tool {

using com::vantora::post::Axis;
using com::vantora::post::MachineConfiguration;
using com::vantora::Vector;

namespace {

constexpr double kDegreesPerRadian = 180.0 / 3.14159265358979323846;

// Short numbers for a summary: up to three decimals, no trailing zeros.
std::string shortNumber(double value) {
  if (std::fabs(value) < 5e-4) value = 0.0;
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, "%.3f", value);
  std::string text = buffer;
  while (text.back() == '0') text.pop_back();
  if (text.back() == '.') text.pop_back();
  return text;
}

std::string vectorText(Vector const& v) {
  return "(" + shortNumber(v.x) + ", " + shortNumber(v.y) + ", " + shortNumber(v.z) + ")";
}

struct Slot {
  char const* name;
  Axis const* axis;
};

std::vector<Slot> slots(MachineConfiguration const& configuration) {
  return {{"X", &configuration.getAxisX()}, {"Y", &configuration.getAxisY()}, {"Z", &configuration.getAxisZ()},
          {"U", &configuration.getAxisU()}, {"V", &configuration.getAxisV()}, {"W", &configuration.getAxisW()}};
}

}  // namespace

bool isConfigurationXmlPath(std::string const& path) {
  return path.size() >= 4 && path.compare(path.size() - 4, 4, ".xml") == 0;
}

ScriptConfiguration loadScriptConfiguration(std::string const& command, std::string const& path,
                                            std::ostream& err) {
  ScriptConfiguration result;
  if (auto const file = machine::MachineFileLoader::checkReadable(path); !file.ok()) {
    err << "mtkit " << command << ": " << file.error << "\n";
    return result;
  }
  try {
    if (isConfigurationXmlPath(path)) {
      // The tool has no safe mode: the default loader reads any file, and
      // inherited files relative to the one that names them.
      MachineConfiguration::setMachineLoader(std::make_shared<com::vantora::post::MachineConfigurationLoader>());
      result.configuration.reset(MachineConfiguration::createFromPath(Orvo::Messages::utf8ToWide(path)));
      result.source = "configuration XML";
    } else {
      machine::MachineFileLoader::LoadedFile const loaded = machine::MachineFileLoader::load(path);
      if (!loaded.ok()) {
        err << "mtkit " << command << ": " << loaded.error << "\n";
        return result;
      }
      if (loaded.machine) {
        result.configuration = MachineConfiguration::createFromMachineDefinition(*loaded.machine, true);
        result.source = "machine file";
      } else {
        result.configuration = MachineConfiguration::createFromMachineDefinition(*loaded.kinematics);
        result.source = "MTK file";
      }
    }
  } catch (Orvo::ScriptException const& e) {
    err << "mtkit " << command << ": '" << path << "': " << e.what() << "\n";
    result.configuration.reset();
    return result;
  } catch (std::exception const& e) {
    err << "mtkit " << command << ": '" << path << "': " << e.what() << "\n";
    result.configuration.reset();
    return result;
  }
  if (!result.configuration) {
    err << "mtkit " << command << ": '" << path
        << "': the machine has no tool or table part its controller names, so there is no configuration\n";
  }
  return result;
}

char rotaryLetter(Axis const& axis) {
  int const coordinate = axis.getCoordinate();
  return coordinate >= 0 && coordinate <= 2 ? "ABC"[coordinate] : '?';
}

std::string abcText(MachineConfiguration const& configuration, Vector const& abc) {
  std::string text;
  for (Axis const* axis : {&configuration.getAxisU(), &configuration.getAxisV(), &configuration.getAxisW()}) {
    if (!axis->isEnabled()) continue;
    if (!text.empty()) text += " ";
    text += rotaryLetter(*axis);
    text += "=" + formatNumber(abc.getCoordinate(static_cast<unsigned>(axis->getCoordinate())) * kDegreesPerRadian);
  }
  return text.empty() ? std::string("(no rotary axes)") : text + " deg";
}

std::string outOfRangeAxes(MachineConfiguration const& configuration, Vector const& abc) {
  std::string text;
  for (Axis const* axis : {&configuration.getAxisU(), &configuration.getAxisV(), &configuration.getAxisW()}) {
    if (!axis->isEnabled() || axis->getRange().isNonRange()) continue;
    double const value = abc.getCoordinate(static_cast<unsigned>(axis->getCoordinate()));
    com::vantora::post::Range const& range = axis->getRange();
    // The same tolerance as the configuration's own range checks would be
    // stricter than a summary needs; a millionth of a degree is in range.
    double const slack = 1e-8;
    if (value < range.getInternalMinimum() - slack || value > range.getInternalMaximum() + slack) {
      if (!text.empty()) text += ", ";
      text += rotaryLetter(*axis);
    }
  }
  return text;
}

std::string kindText(MachineConfiguration const& configuration) {
  unsigned heads = 0;
  unsigned tables = 0;
  for (Axis const* axis : {&configuration.getAxisU(), &configuration.getAxisV(), &configuration.getAxisW()}) {
    if (!axis->isEnabled()) continue;
    (axis->isTable() ? tables : heads) += 1;
  }
  std::string text = std::to_string(configuration.getNumberOfAxes()) + " axes";
  if (heads + tables == 0) return text;
  std::string chain;
  for (unsigned i = 0; i < heads; ++i) chain += chain.empty() ? "head" : "-head";
  for (unsigned i = 0; i < tables; ++i) chain += chain.empty() ? "table" : "-table";
  return text + ", " + chain;
}

std::string axesText(MachineConfiguration const& configuration) {
  std::string text;
  for (Slot const& slot : slots(configuration)) {
    Axis const& axis = *slot.axis;
    if (!axis.isEnabled()) continue;
    std::string line = "  ";
    // Rotary axes go by the letter of their coordinate, with their slot.
    if (axis.isRotational())
      line += std::string(1, rotaryLetter(axis)) + " (" + slot.name + ")  rotary  ";
    else
      line += std::string(slot.name) + "      linear  ";
    line += axis.isTable() ? "table" : "head ";
    line += "  axis " + vectorText(axis.getAxis());
    com::vantora::post::Range const& range = axis.getRange();
    double const factor = axis.isRotational() ? kDegreesPerRadian : 1.0;
    char const* const unit = axis.isRotational() ? " deg" : " mm";
    if (range.isNonRange())
      line += "  range unbound";
    else
      line += "  range " + shortNumber(range.getInternalMinimum() * factor) + " to " +
              shortNumber(range.getInternalMaximum() * factor) + unit;
    if (axis.isRotational()) {
      if (axis.isCyclic()) line += ", cyclic";
      int const preference = axis.getPreference();
      if (preference != 0) line += preference > 0 ? ", prefers positive" : ", prefers negative";
      line += axis.isTCPEnabled() ? ", TCP" : ", no TCP";
    }
    if (!axis.getMachinePartId().id().empty()) line += "  part " + axis.getMachinePartId().id();
    text += line + "\n";
  }
  return text;
}

}  // namespace mtkit_tool
