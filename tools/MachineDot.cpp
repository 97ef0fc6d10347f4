#include "MachineDot.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include "machine/machine/ControllerConfiguration.h"
#include "machine/machine/InteractSettingsDefinition.h"
#include "machine/machine/KinematicsDefinition.h"
#include "machine/machine/MachineUtils.h"
#include "machine/machine/RotaryAxisDefinition.h"
#include "util/utility/Variant.h"

namespace mtkit_tool {

namespace {

using machine::PartDefinition;
using machine::PartType;

std::string num(double value) { return Orvo::Variant::formatDouble(value); }

/// A DOT double-quoted string: quotes and backslashes escaped, so that any
/// id or name stays one token. Line breaks are added by the caller as "\n".
std::string dotQuoted(std::string const& text) {
  std::string quoted = "\"";
  for (char c : text) {
    if (c == '"' || c == '\\') quoted += '\\';
    if (c == '\n') {
      quoted += "\\n";
      continue;
    }
    quoted += c;
  }
  return quoted + "\"";
}

char const* typeWord(PartType type) {
  switch (type) {
    case PartType::LINEAR: return "linear";
    case PartType::ROTARY: return "rotary";
    case PartType::STATIC: return "static";
    case PartType::HEAD: return "head";
    case PartType::TABLE: return "table";
    default: return "root";
  }
}

std::string axisLines(machine::AxisDefinition const& axis) {
  bool const linear = axis.axisType() == machine::AxisType::LINEAR;
  Orvo::Vector3D const d = axis.direction();
  std::string text = "\n" + (axis.name() ? axis.name()->name() : std::string("(unnamed)")) +
                     (linear ? " along (" : " about (") + num(d.x) + ", " + num(d.y) + ", " + num(d.z) + ")";
  auto const min = axis.physicalMin();
  auto const max = axis.physicalMax();
  text += "\n";
  if (min || max)
    text += (min ? num(min->value()) : std::string("-inf")) + ".." + (max ? num(max->value()) : std::string("inf")) +
            (linear ? " mm" : " deg");
  else
    text += "unlimited";
  return text;
}

void collect(PartDefinition const& part, std::vector<PartDefinition const*>& parts) {
  parts.push_back(&part);
  for (PartDefinition const& child : part.children()) collect(child, parts);
}

void writeEdges(PartDefinition const& part, std::ostream& out) {
  for (PartDefinition const& child : part.children()) {
    out << "  " << dotQuoted(part.identifier().id()) << " -> " << dotQuoted(child.identifier().id()) << ";\n";
    writeEdges(child, out);
  }
}

/// The pairs between two parts, merged: a part's stock, fixture or tool
/// solids meet the same other part several times, and one line per part pair
/// keeps the drawing readable. The label names the solid types whenever they
/// are not both the parts themselves; it goes into the edge's tooltip (shown
/// by SVG viewers) rather than on the drawing, where a machine's many pairs
/// would bury the tree.
struct PartPair {
  std::string first, second;
  std::vector<std::string> kinds;
  bool checked = false;
};

std::vector<PartPair> mergedPairs(machine::InteractSettingsDefinition const& interactions) {
  std::vector<PartPair> pairs;
  std::map<std::pair<std::string, std::string>, std::size_t> index;
  for (std::size_t n = 0; n < interactions.numberOfPairs(); ++n) {
    machine::InteractPair const pair = interactions.pair(n);
    std::string a = pair.interactand().partDefinitionID().id();
    std::string b = pair.interactor().partDefinitionID().id();
    auto key = std::minmax(a, b);
    auto const found = index.find({key.first, key.second});
    std::size_t const at = found != index.end() ? found->second : pairs.size();
    if (found == index.end()) {
      index[{key.first, key.second}] = at;
      pairs.push_back({a, b, {}, false});
    }
    PartPair& merged = pairs[at];
    auto const& typeA = machine::interactSolidTypeWord(pair.interactand().type());
    auto const& typeB = machine::interactSolidTypeWord(pair.interactor().type());
    if (typeA != "machine_part" || typeB != "machine_part") {
      // In the direction of the merged edge, so that "stock - tool" reads from its first end.
      std::string const kind = a == merged.first ? typeA + " - " + typeB : typeB + " - " + typeA;
      if (std::find(merged.kinds.begin(), merged.kinds.end(), kind) == merged.kinds.end()) merged.kinds.push_back(kind);
    }
    machine::InteractSetting const setting = pair.interactSetting();
    merged.checked = merged.checked || (!setting.ignore() && setting.checkCollisions());
  }
  return pairs;
}

}  // namespace

void writeMachineDot(std::string const& graphName, machine::KinematicsDefinition const& kinematics,
                     machine::ControllerConfiguration const* controller,
                     machine::InteractSettingsDefinition const& interactions, std::ostream& out) {
  // What the controller drives, completed from the tree as the runtime machine does.
  machine::ControllerConfiguration chain;
  machine::MachineUtils::setKinematicsChainForControllerConfiguration(kinematics, chain);
  std::optional<Orvo::MachinePartId> head = chain.headInfoPartId();
  std::optional<Orvo::MachinePartId> table = chain.tablePartId();
  if (controller && controller->headInfoPartId()) head = controller->headInfoPartId();
  if (controller && controller->tablePartId()) table = controller->tablePartId();

  out << "digraph " << dotQuoted(graphName) << " {\n";
  out << "  graph [rankdir=TB];\n";
  out << "  node [shape=box, fontname=\"Helvetica\", fontsize=10];\n";
  out << "  edge [fontname=\"Helvetica\", fontsize=8];\n";
  std::vector<PartDefinition const*> parts;
  for (PartDefinition const& part : kinematics.baseParts()) collect(part, parts);
  for (PartDefinition const* part : parts) {
    std::string const& id = part->identifier().id();
    std::string label = id + "\n[" + typeWord(part->type()) + "]";
    if (part->displayName()) label += "\n\"" + part->displayName()->name() + "\"";
    if (auto const* axis = part->axisDefinition()) label += axisLines(*axis);
    std::vector<std::string> attributes{"label=" + dotQuoted(label)};
    if (part->type() == PartType::HEAD) attributes.push_back("style=filled, fillcolor=\"#cfe2ff\"");
    if (part->type() == PartType::TABLE) attributes.push_back("style=filled, fillcolor=\"#ffe0b3\"");
    bool const driven = (head && head->id() == id) || (table && table->id() == id);
    if (driven) attributes.push_back("penwidth=2.5");
    out << "  " << dotQuoted(id) << " [";
    for (std::size_t i = 0; i < attributes.size(); ++i) out << (i ? ", " : "") << attributes[i];
    out << "];\n";
  }
  for (PartDefinition const& part : kinematics.baseParts()) writeEdges(part, out);
  // Collision pairs do not shape the tree's layout (constraint=false); red
  // when any of the merged pairs is checked for collisions, light otherwise.
  for (PartPair const& pair : mergedPairs(interactions)) {
    out << "  " << dotQuoted(pair.first) << " -> " << dotQuoted(pair.second)
        << " [style=dashed, dir=none, constraint=false, "
        << (pair.checked ? "color=red" : "color=gray70, penwidth=0.6");
    if (!pair.kinds.empty()) {
      std::string label;
      for (std::size_t i = 0; i < pair.kinds.size(); ++i) label += (i ? "\n" : "") + pair.kinds[i];
      out << ", tooltip=" << dotQuoted(label);
    }
    out << "];\n";
  }
  out << "}\n";
}

}  // namespace mtkit_tool
