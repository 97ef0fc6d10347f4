#include "ShowCommand.h"

#include <ostream>
#include <sstream>

#include "MachineFileLoader.h"
#include "machine/machine/ControllerConfiguration.h"
#include "machine/machine/KinematicsDefinition.h"
#include "machine/machine/MachineUtils.h"
#include "machine/machine/RotaryAxisDefinition.h"
#include "util/utility/Variant.h"

namespace mtkit_tool {

namespace {

using machine::PartDefinition;
using machine::PartType;

std::string num(double value) { return Orvo::Variant::formatDouble(value); }

std::string vec(double x, double y, double z) { return "(" + num(x) + ", " + num(y) + ", " + num(z) + ")"; }

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

char const* controlWord(machine::ControlType control) {
  char const* const words[] = {"driven", "secondary", "ancillary", "link", "subordinate", "manual"};
  auto const i = static_cast<unsigned>(control);
  return i < 6 ? words[i] : "?";
}

std::string axisText(machine::AxisDefinition const& axis) {
  std::ostringstream text;
  text << " axis " << (axis.name() ? axis.name()->name() : std::string("(unnamed)")) << " " << controlWord(axis.defaultControl());
  auto const min = axis.physicalMin();
  auto const max = axis.physicalMax();
  if (min || max)
    text << ", " << (min ? num(min->value()) : std::string("-inf")) << ".." << (max ? num(max->value()) : std::string("inf"));
  else
    text << ", unlimited";
  if (axis.defaultHome().value() != 0) text << ", home " << num(axis.defaultHome().value());
  if (axis.stepSize()) text << ", step " << num(axis.stepSize()->value());
  if (axis.defaultToolChangePosition()) text << ", tool change " << num(axis.defaultToolChangePosition()->value());
  Orvo::Vector3D const d = axis.direction();
  if (auto const* rotary = dynamic_cast<machine::RotaryAxisDefinition const*>(&axis)) {
    Orvo::Point3D const p = rotary->point();
    text << ", about " << vec(d.x, d.y, d.z) << " through " << vec(p.x, p.y, p.z);
  } else {
    text << ", along " << vec(d.x, d.y, d.z);
  }
  return text.str();
}

void showPart(PartDefinition const& part, int depth, std::ostream& out) {
  out << std::string(static_cast<std::size_t>(2 * depth + 2), ' ') << part.identifier().id() << " [" << typeWord(part.type()) << "]";
  if (part.displayName()) out << " \"" << part.displayName()->name() << "\"";
  if (auto const* axis = part.axisDefinition()) out << axisText(*axis);
  if (auto const& spindle = part.spindleDefinition()) {
    out << ", spindle";
    if (spindle->minSpeed() || spindle->maxSpeed())
      out << " " << (spindle->minSpeed() ? num(*spindle->minSpeed()) : std::string("?")) << ".."
          << (spindle->maxSpeed() ? num(*spindle->maxSpeed()) : std::string("?"));
  }
  if (auto const& station = part.toolStationDefinition()) {
    out << ", tool station";
    if (station->toolInterface()) out << " " << station->toolInterface()->name();
    auto const coolants = station->coolants().toKeys();
    for (std::size_t i = 0; i < coolants.size(); ++i) out << (i == 0 ? " coolants " : ",") << coolants[i];
  }
  if (auto const& turret = part.turretDefinition()) out << ", turret of " << turret->indexCount() << " indexes";
  out << "\n";
  for (PartDefinition const& child : part.children()) showPart(child, depth + 1, out);
}

std::string joinIds(std::vector<PartDefinition const*> const& parts) {
  std::string text;
  for (auto const* part : parts) text += (text.empty() ? "" : ", ") + part->identifier().id();
  return text.empty() ? "(none)" : text;
}

std::string idOr(std::optional<Orvo::MachinePartId> const& id, char const* otherwise) {
  return id ? id->id() : std::string(otherwise);
}

void showKinematics(machine::KinematicsDefinition const& k, std::ostream& out) {
  out << "  " << (k.mtkIOConverter().externalHandedness() == machine::Handedness::LEFT_HANDED ? "left-handed"
                                                                                              : "right-handed")
      << ", " << k.allParts().size() << " parts; heads: " << joinIds(k.getPartsByTypeSorted(PartType::HEAD))
      << "; tables: " << joinIds(k.getPartsByTypeSorted(PartType::TABLE)) << "\n";
  // What a controller that names neither would drive.
  machine::ControllerConfiguration chain;
  machine::MachineUtils::setKinematicsChainForControllerConfiguration(k, chain);
  out << "  head and table by the tree: " << idOr(chain.headInfoPartId(), "(none)") << ", "
      << idOr(chain.tablePartId(), "(none)") << "\n";
  for (PartDefinition const& part : k.baseParts()) showPart(part, 0, out);
}

void showController(machine::ControllerConfiguration const& c, std::ostream& out) {
  out << "  head: " << (c.headInfoPartId() ? c.headInfoPartId()->id() : std::string("(not named)"))
      << ", table: " << (c.tablePartId() ? c.tablePartId()->id() : std::string("(not named)")) << "\n";
  for (auto const& entry : c.axisConfigurations()) {
    out << "  " << entry.first.id();
    if (entry.second->name()) out << " " << entry.second->name()->name();
    out << "\n";
  }
}

}  // namespace

int runShow(std::vector<std::string> const& args, std::ostream& out, std::ostream& err) {
  if (args.size() != 1) {
    err << "usage: mtkit show FILE\n";
    return 2;
  }
  LoadedFile const loaded = MachineFileLoader::load(args.front());
  if (!loaded.ok()) {
    err << loaded.error << "\n";
    return 1;
  }
  if (loaded.kinematics) {
    out << args.front() << ": MTK file\nkinematics\n";
    showKinematics(*loaded.kinematics, out);
    return 0;
  }
  machine::MachineDefinition const& m = *loaded.machine;
  out << args.front() << ": machine file\n";
  out << "vendor: \"" << m.vendor() << "\", model: \"" << m.model() << "\"\n";
  if (!m.description().empty()) out << "description: " << m.description() << "\n";
  auto const capabilities = m.capabilities().toKeys();
  out << "capabilities:";
  for (auto const& word : capabilities) out << " " << word;
  out << (capabilities.empty() ? " (none)\n" : "\n");
  out << "defaults:";
  for (auto const& entry : m.defaults()) out << " " << entry.first << "=" << entry.second;
  out << (m.defaults().empty() ? " (none: the first feature of each type)\n" : "\n");
  for (machine::MachineFeatureDefinition const& feature : m.getFeatures()) {
    bool const isDefault = m.getDefaultFeature(feature.featureTypeId()) == &feature;
    out << "feature " << feature.featureTypeId() << " \"" << feature.featureId() << "\"" << (isDefault ? " (default)" : "")
        << "\n";
    if (auto const* k = dynamic_cast<machine::KinematicsDefinition const*>(&feature))
      showKinematics(*k, out);
    else if (auto const* c = dynamic_cast<machine::ControllerConfiguration const*>(&feature))
      showController(*c, out);
    else
      out << "  (kept unread)\n";
  }
  return 0;
}

}  // namespace mtkit_tool
