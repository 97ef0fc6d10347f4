#include "ShowCommand.h"

#include <algorithm>
#include <memory>
#include <ostream>
#include <sstream>

#include "CommandSupport.h"
#include "MachineDot.h"
#include "machine/machine/AdditiveExtruderDefinition.h"
#include "machine/machine/AdditiveLimitsDefinition.h"
#include "machine/machine/AdditivePlatformDefinition.h"
#include "machine/machine/ControllerConfiguration.h"
#include "machine/machine/InteractSettingsDefinition.h"
#include "machine/machine/KinematicsDefinition.h"
#include "machine/machine/MachineFileLoader.h"
#include "machine/machine/MachineUtils.h"
#include "machine/machine/MachiningTimeInformation.h"
#include "machine/machine/MultiAxisPreferences.h"
#include "machine/machine/PostProcessingProperties.h"
#include "machine/machine/PostSettings.h"
#include "machine/machine/RotaryAxisDefinition.h"
#include "machine/machine/ToolingCapabilities.h"
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
  std::string const unit = axis.axisType() == machine::AxisType::LINEAR ? " mm" : " deg";
  auto const min = axis.physicalMin();
  auto const max = axis.physicalMax();
  if (min || max)
    text << ", " << (min ? num(min->value()) : std::string("-inf")) << ".." << (max ? num(max->value()) : std::string("inf"))
         << unit;
  else
    text << ", unlimited";
  if (axis.defaultHome().value() != 0) text << ", home " << num(axis.defaultHome().value()) << unit;
  if (axis.stepSize()) text << ", step " << num(axis.stepSize()->value()) << unit;
  if (axis.defaultToolChangePosition())
    text << ", tool change " << num(axis.defaultToolChangePosition()->value()) << unit;
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

char const* yesNo(bool value) { return value ? "yes" : "no"; }

std::string quote(std::string const& text) { return "\"" + text + "\""; }

/// A value as a user wrote it: text in quotes, so that "8" and 8 differ.
std::string variantText(Orvo::Variant const& value) {
  if (value.isEmpty()) return "(empty)";
  if (value.type() == Orvo::Variant::Type::STRING) return quote(value.getAsUtf8());
  return value.getAsUtf8();
}

/// A summary: `mtkit collisions` lists the pairs themselves.
void showInteractions(machine::InteractSettingsDefinition const& i, std::ostream& out) {
  std::size_t checked = 0, cutting = 0;
  for (std::size_t n = 0; n < i.numberOfPairs(); ++n) {
    machine::InteractSetting const setting = i.pair(n).interactSetting();
    checked += setting.checkCollisions() ? 1 : 0;
    cutting += setting.cutStock() ? 1 : 0;
  }
  out << "  " << i.numberOfPairs() << " pairs, " << checked << " checked for collisions, " << cutting
      << " cutting stock\n";
}

void showTooling(machine::ToolingCapabilities const& t, std::ostream& out) {
  out << "  tool changer: " << yesNo(t.hasToolChanger()) << ", preload: " << yesNo(t.supportsToolPreload()) << ", "
      << t.numberOfTools() << " tools\n";
}

void showMachining(machine::MachiningTimeInformation const& m, std::ostream& out) {
  out << "  feedrate ratio " << num(m.feedrateRatio()) << ", tool change time " << num(m.toolChangeTime()) << "\n";
}

void showPostSettings(machine::PostSettings const& p, std::ostream& out) {
  out << "  post: " << (p.postPath().empty() ? std::string("(none)") : quote(p.postPath())) << ", "
      << p.settings().size() << " settings\n";
  for (auto const& [name, setting] : p.settings())
    out << "  " << name << " = " << variantText(setting.value) << (setting.enabled ? "" : " (disabled)") << "\n";
}

void showPost(machine::PostProcessingProperties const& p, std::ostream& out) {
  out << "  post: " << (p.postPath().empty() ? std::string("(none)") : quote(p.postPath()))
      << ", output folder: " << (p.outputFolder().empty() ? std::string("(none)") : quote(p.outputFolder())) << ", "
      << p.properties().size() << " properties\n";
  for (auto const& [name, value] : p.properties()) out << "  " << name << " = " << variantText(value) << "\n";
}

std::string vec(Orvo::Vector3D const& v) { return vec(v.x, v.y, v.z); }
std::string vec(Orvo::Point3D const& p) { return vec(p.x, p.y, p.z); }

void showExtruder(machine::AdditiveExtruderDefinition const& e, std::ostream& out) {
  out << "  " << (e.name().empty() ? std::string("(unnamed)") : quote(e.name())) << ", nozzle " << num(e.diameter())
      << ", filament " << num(e.filamentDiameter()) << ", fan " << (e.fanEnabled() ? "on" : "off")
      << ", max volume per second " << num(e.maxVolPerSec()) << ", max temperature " << num(e.maxTemp())
      << ", offset " << vec(e.offset()) << "\n";
}

void showLimits(machine::AdditiveLimitsDefinition const& l, std::ostream& out) {
  out << "  bed temperature max " << num(l.bedTempMax()) << ", speed max XY " << num(l.speedXYMax()) << " Z "
      << num(l.speedZMax()) << ", acceleration max XY " << num(l.accelerationXYMax()) << " Z "
      << num(l.accelerationZMax()) << "\n  home " << vec(l.homePosition()) << ", park " << vec(l.parkPosition())
      << "\n";
}

void showPlatform(machine::AdditivePlatformDefinition const& p, std::ostream& out) {
  if (auto const d = p.dimensions())
    out << "  dimensions: size " << vec(d->size) << ", origin " << vec(d->origin) << ", clearance " << num(d->clearance)
        << ", frame width " << num(d->frameWidth) << ", ceiling clearance " << num(d->ceilingClearance)
        << ", corner radius " << num(d->cornerRadius) << "\n";
  else
    out << "  dimensions: (none)\n";
  if (auto const m = p.meshOptions())
    out << "  mesh: " << quote(m->mesh) << ", model " << quote(m->model) << ", no-build zone mesh "
        << quote(m->noBuildZoneMesh) << ", model " << quote(m->noBuildZoneModel) << ", positioning "
        << (m->positioning ? "on" : "off") << ", scaling " << (m->scaling ? "on" : "off") << "\n";
  else
    out << "  mesh: (none)\n";
}

/// The multi-axis preferences: the two flags, then each option object that
/// is present with its keys in the file's own words and units (radians for
/// the singularity's cone and angle).
void showMultiAxis(machine::MultiAxisPreferences const& m, std::ostream& out) {
  out << "  virtual tool tip " << (m.useVirtualToolTip() ? "on" : "off") << ", tilted work plane "
      << (m.useTiltedWorkplane() ? "on" : "off") << "\n";
  Json::Value const body = m.getPersistData();
  for (char const* option : {"singularity", "feedrate", "retract_and_reconfigure"}) {
    if (!body.isMember(option)) continue;
    out << "  " << option << ":";
    Json::Value const& values = body[option];
    for (auto const& key : values.getMemberNames()) {
      Json::Value const& v = values[key];
      std::string text;
      if (v.isString())
        text = quote(v.asString());
      else if (v.isBool())
        text = v.asBool() ? "true" : "false";
      else if (v.isArray())
        text = "(" + (v.size() == 3 ? num(v[0].asDouble()) + ", " + num(v[1].asDouble()) + ", " + num(v[2].asDouble())
                                    : std::string("...")) + ")";
      else if (v.isNumeric())
        text = num(v.asDouble());
      else
        text = "null";
      out << " " << key << " " << text << (key == values.getMemberNames().back() ? "" : ",");
    }
    out << "\n";
  }
}

/// A type this build doesn't read: its top-level keys, so that the user sees
/// what is there.
void showUnknown(machine::MachineFeatureDefinition const& feature, std::ostream& out) {
  Json::Value const body = feature.getPersistData();
  out << "  (kept unread";
  if (body.isObject() && !body.empty()) {
    out << "; keys:";
    for (auto const& key : body.getMemberNames()) out << " " << key;
  }
  out << ")\n";
}

/// The axes fk and ik move, as they name them: the axis name (the
/// controller's where it names one) and the part id side by side, the name
/// the kinematics gives an axis the controller renames, and the travel.
void showAxes(machine::Machine const& machine, std::ostream& out) {
  Orvo::AxisOrdering const& ordering = machine.axisOrdering();
  std::size_t nameWidth = 4, idWidth = 7;
  for (int i = 0; i < ordering.size(); ++i) {
    nameWidth = std::max(nameWidth, ordering.axisName(i).name().size());
    idWidth = std::max(idWidth, ordering.machinePartId(i).id().size());
  }
  auto const pad = [](std::string text, std::size_t width) {
    text.resize(std::max(width, text.size()), ' ');
    return text;
  };
  out << "axes (fk and ik take the name or the part id):\n";
  out << "  " << pad("name", nameWidth) << "  " << pad("part id", idWidth) << "  travel\n";
  for (int i = 0; i < ordering.size(); ++i) {
    machine::Part const* const part = machine.orderedPart(i);
    if (!part || !part->axis()) continue;
    char const* const unit = axisUnit(*part->axis());
    std::string const name = ordering.axisName(i).name();
    out << "  " << pad(name, nameWidth) << "  " << pad(ordering.machinePartId(i).id(), idWidth) << "  ";
    if (auto const travel = machine::MachineUtils::travelOf(*part))
      out << num(travel->min().value()) << ".." << num(travel->max().value()) << " " << unit;
    else
      out << "without limit (" << unit << ")";
    machine::AxisDefinition const* const definition = part->definition()->axisDefinition();
    if (definition && definition->name() && definition->name()->name() != name)
      out << ", named " << definition->name()->name() << " in the kinematics";
    out << "\n";
  }
}

struct ShowOptions {
  std::string file;
  bool dot = false;
};

/// The default kinematics (the file's own for an MTK file), with the
/// collision pairs generated from it as `mtkit collisions` makes them.
int runDot(std::string const& path, machine::MachineFileLoader::LoadedFile const& loaded, std::ostream& out,
           std::ostream& err) {
  machine::KinematicsDefinition const* kinematics = loaded.kinematics.get();
  machine::ControllerConfiguration const* controller = nullptr;
  machine::InteractSettingsDefinition interactions;
  if (loaded.machine) {
    kinematics = dynamic_cast<machine::KinematicsDefinition const*>(loaded.machine->getDefaultFeature("kinematics"));
    controller = dynamic_cast<machine::ControllerConfiguration const*>(loaded.machine->getDefaultFeature("controller"));
    if (auto const* saved = dynamic_cast<machine::InteractSettingsDefinition const*>(
            loaded.machine->getDefaultFeature("interactions")))
      interactions = *saved;
  }
  if (!kinematics) {
    err << "mtkit show: '" << path << "' has no kinematics to draw\n";
    return kExitFailure;
  }
  interactions.generatePairs(*kinematics);
  std::string name = path;
  if (auto const slash = name.find_last_of('/'); slash != std::string::npos) name.erase(0, slash + 1);
  writeMachineDot(name, *kinematics, controller, interactions, out);
  return kExitOk;
}

int runShow(ShowOptions const& options, std::ostream& out, std::ostream& err) {
  std::string const& path = options.file;
  machine::MachineFileLoader::LoadedFile const loaded = machine::MachineFileLoader::load(path);
  if (!loaded.ok()) {
    err << "mtkit show: " << loaded.error << "\n";
    return kExitFailure;
  }
  if (options.dot) return runDot(path, loaded, out, err);
  // The machine fk and ik would move, when there is one; a file that cannot
  // be moved is still shown, without the axes.
  auto const movable = machine::MachineFileLoader::build(loaded).machine;
  if (loaded.kinematics) {
    out << path << ": MTK file\nkinematics\n";
    showKinematics(*loaded.kinematics, out);
    if (movable) showAxes(*movable, out);
    return kExitOk;
  }
  machine::MachineDefinition const& m = *loaded.machine;
  out << path << ": machine file\n";
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
    else if (auto const* in = dynamic_cast<machine::InteractSettingsDefinition const*>(&feature))
      showInteractions(*in, out);
    else if (auto const* ma = dynamic_cast<machine::MultiAxisPreferences const*>(&feature))
      showMultiAxis(*ma, out);
    else if (auto const* t = dynamic_cast<machine::ToolingCapabilities const*>(&feature))
      showTooling(*t, out);
    else if (auto const* mt = dynamic_cast<machine::MachiningTimeInformation const*>(&feature))
      showMachining(*mt, out);
    else if (auto const* ps = dynamic_cast<machine::PostSettings const*>(&feature))
      showPostSettings(*ps, out);
    else if (auto const* pp = dynamic_cast<machine::PostProcessingProperties const*>(&feature))
      showPost(*pp, out);
    else if (auto const* e = dynamic_cast<machine::AdditiveExtruderDefinition const*>(&feature))
      showExtruder(*e, out);
    else if (auto const* l = dynamic_cast<machine::AdditiveLimitsDefinition const*>(&feature))
      showLimits(*l, out);
    else if (auto const* p = dynamic_cast<machine::AdditivePlatformDefinition const*>(&feature))
      showPlatform(*p, out);
    else
      showUnknown(feature, out);
  }
  if (movable) showAxes(*movable, out);
  return kExitOk;
}

}  // namespace

Command addShowCommand(CLI::App& app) {
  auto options = std::make_shared<ShowOptions>();
  CLI::App* const sub = app.add_subcommand(
      "show", "the part tree with types and axes, head and table, every feature, and the axes fk and ik move");
  sub->add_option("FILE", options->file, "a machine file or an MTK file")->type_name("")->required();
  sub->add_flag("--dot", options->dot,
                "write the part tree in Graphviz DOT instead: parts with their types and axes, head and table filled "
                "(the driven ones bold), collision pairs as dashed lines (red when checked)");
  sub->footer("Lengths are in mm, angles in degrees. Errors as for check.\n"
              "Render the diagram with Graphviz, e.g. mtkit show --dot MACHINE | dot -Tsvg -o machine.svg");
  return {sub, [options](std::ostream& out, std::ostream& err) { return runShow(*options, out, err); }};
}

}  // namespace mtkit_tool
