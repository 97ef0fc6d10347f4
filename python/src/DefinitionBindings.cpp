// Machine files, MTK files and what they hold: the machine definition, its
// features, the kinematic part tree with its axes, spindles and tool
// stations, and the controller configuration.
//
// The definitions are read-only views from Python (only the general texts may
// be changed): a feature, a part or an axis keeps the object that owns it
// alive through an aliasing shared_ptr, so that it stays valid however long
// Python holds it.

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <json/value.h>

#include <memory>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "MachineBindingSupport.h"
#include "machine/machine/AxisConfiguration.h"
#include "machine/machine/AxisDefinition.h"
#include "machine/machine/ControllerConfiguration.h"
#include "machine/machine/DefinitionCheck.h"
#include "machine/machine/KinematicsDefinition.h"
#include "machine/machine/MTKWriter.h"
#include "machine/machine/MachineDefinition.h"
#include "machine/machine/MachineDefinitionWriter.h"
#include "machine/machine/MachineFeatureDefinition.h"
#include "machine/machine/PartDefinition.h"
#include "machine/machine/RotaryAxisDefinition.h"
#include "machine/machine/SpindleDefinition.h"
#include "machine/machine/ToolStationDefinition.h"

namespace py = pybind11;

namespace mtkit_python {

namespace {

using machine::AxisDefinition;
using machine::ControllerConfiguration;
using machine::KinematicsDefinition;
using machine::MachineDefinition;
using machine::MachineFeatureDefinition;
using machine::PartDefinition;

using DefinitionPtr = std::shared_ptr<MachineDefinition>;
using FeaturePtr = std::shared_ptr<MachineFeatureDefinition>;
using KinematicsPtr = std::shared_ptr<KinematicsDefinition>;
using ControllerPtr = std::shared_ptr<ControllerConfiguration>;
using PartPtr = std::shared_ptr<PartDefinition>;
using AxisPtr = std::shared_ptr<AxisDefinition>;

/// A pointer into an object that `owner` keeps alive. The library hands
/// these out as const; Python only reads them.
template <typename T, typename Owner>
std::shared_ptr<T> aliased(std::shared_ptr<Owner> const& owner, T const* inside) {
  return std::shared_ptr<T>(owner, const_cast<T*>(inside));
}

char const* partTypeWord(machine::PartType type) {
  switch (type) {
    case machine::PartType::LINEAR: return "linear";
    case machine::PartType::ROTARY: return "rotary";
    case machine::PartType::STATIC: return "static";
    case machine::PartType::HEAD: return "head";
    case machine::PartType::TABLE: return "table";
    case machine::PartType::ROOT: break;
  }
  return "root";
}

char const* controlWord(machine::ControlType control) {
  switch (control) {
    case machine::ControlType::DRIVEN: return "driven";
    case machine::ControlType::SECONDARY: return "secondary";
    case machine::ControlType::ANCILLARY: return "ancillary";
    case machine::ControlType::LINK: return "link";
    case machine::ControlType::SUBORDINATE: return "subordinate";
    case machine::ControlType::MANUAL: return "manual";
  }
  return "?";
}

std::set<std::string> wordSet(std::vector<std::string> const& words) { return {words.begin(), words.end()}; }

std::string styled(Json::Value const& value) { return value.toStyledString(); }

std::string quoted(std::string const& text) { return py::repr(py::str(text)).cast<std::string>(); }

std::string number(double value) { return py::repr(py::float_(value)).cast<std::string>(); }

std::string machineFileText(MachineDefinition const& definition) {
  std::ostringstream out;
  machine::WriterStatus const status = machine::MachineDefinitionWriter::write(out, definition);
  if (status.isError()) throw py::value_error(status.getMessage());
  return out.str();
}

std::string mtkText(KinematicsDefinition const& kinematics) {
  std::ostringstream out;
  machine::WriterStatus const status = machine::MTKWriter::write(out, kinematics);
  if (status.isError()) throw py::value_error(status.getMessage());
  return out.str();
}

/// A feature as its most specific bound class, remembering whether it is
/// the default of its type in `definition` (features cannot be added or
/// removed from Python, so that stays true).
py::object featureObject(DefinitionPtr const& definition, MachineFeatureDefinition const* feature) {
  if (!feature) return py::none();
  py::object object;
  if (auto const* k = dynamic_cast<KinematicsDefinition const*>(feature))
    object = py::cast(aliased(definition, k));
  else if (auto const* c = dynamic_cast<ControllerConfiguration const*>(feature))
    object = py::cast(aliased(definition, c));
  else
    object = py::cast(aliased(definition, feature));
  bool const isDefault = definition->getDefaultFeature(feature->featureTypeId()) == feature;
  object.attr("__dict__")["_is_default"] = py::bool_(isDefault);
  return object;
}

bool isDefaultFeature(py::object const& self) {
  py::dict const attributes = self.attr("__dict__");
  return attributes.contains("_is_default") && attributes["_is_default"].cast<bool>();
}

std::vector<PartPtr> partList(FeaturePtr const& owner, std::vector<PartDefinition const*> const& parts) {
  std::vector<PartPtr> list;
  list.reserve(parts.size());
  for (PartDefinition const* part : parts) list.push_back(aliased(owner, part));
  return list;
}

std::vector<PartPtr> childList(PartPtr const& part) {
  std::vector<PartPtr> list;
  for (PartDefinition const& child : part->children()) list.push_back(aliased(part, &child));
  return list;
}

std::vector<PartDefinition const*> allPartsOf(KinematicsDefinition const& kinematics) {
  std::vector<PartDefinition const*> parts;
  for (PartDefinition const& part : kinematics.allParts()) parts.push_back(&part);
  return parts;
}

std::vector<std::string> idsOf(std::vector<PartDefinition const*> const& parts) {
  std::vector<std::string> ids;
  for (PartDefinition const* part : parts) ids.push_back(part->identifier().id());
  return ids;
}

std::optional<std::string> idOrNone(std::optional<Orvo::MachinePartId> const& id) {
  if (!id) return std::nullopt;
  return id->id();
}

std::optional<double> valueOrNone(std::optional<Orvo::AxisValue> const& value) {
  if (!value) return std::nullopt;
  return value->value();
}

std::optional<double> distanceOrNone(std::optional<Orvo::Quantity::Distance> const& value) {
  if (!value) return std::nullopt;
  return value->get();
}

std::string axisRepr(AxisDefinition const& axis) {
  bool const linear = axis.axisType() == machine::AxisType::LINEAR;
  std::string text = "<AxisDefinition " + (axis.name() ? axis.name()->name() : std::string("(unnamed)")) + " " +
                     (linear ? "linear" : "rotary") + " " + controlWord(axis.defaultControl());
  auto const min = axis.physicalMin();
  auto const max = axis.physicalMax();
  if (min || max)
    text += " " + (min ? number(min->value()) : std::string("-inf")) + ".." +
            (max ? number(max->value()) : std::string("inf")) + " " + unitWord(linear);
  else
    text += " unlimited";
  return text + ">";
}

void bindFeatures(py::module_& m) {
  py::class_<MachineFeatureDefinition, FeaturePtr>(m, "Feature", py::dynamic_attr(),
                                                   "One feature of a machine definition: a type such as \"kinematics\" "
                                                   "or \"interactions\", an id within that type (usually \"default\"), "
                                                   "and its JSON body. Features of a type this library does not read "
                                                   "are kept as they were and written back unchanged.")
      .def_property_readonly(
          "type", [](MachineFeatureDefinition const& f) { return f.featureTypeId(); },
          "The feature type, the key of the feature in a machine file.")
      .def_property_readonly(
          "id", [](MachineFeatureDefinition const& f) { return f.featureId(); }, "The feature id within its type.")
      .def_property_readonly("is_default", &isDefaultFeature,
                             "Whether the machine definition takes this feature as the default of its type. False "
                             "for a feature that belongs to no machine definition, such as an MTK file's kinematics.")
      .def_property_readonly(
          "data", [](MachineFeatureDefinition const& f) { return jsonToPython(f.getPersistData()); },
          "The feature's JSON body as Python values (dict, list, str, int, float, bool, None), as the machine file "
          "writer writes it.")
      .def(
          "to_json", [](MachineFeatureDefinition const& f) { return styled(f.getPersistData()); },
          "The feature's JSON body as text.")
      .def(
          "equals",
          [](MachineFeatureDefinition const& f, MachineFeatureDefinition const& other, double tolerance) {
            return f.equals(other, tolerance);
          },
          py::arg("other"), py::arg("tolerance") = 0.0,
          "Whether the two features' JSON bodies are equal, numbers within `tolerance`.")
      .def("__repr__", [](MachineFeatureDefinition const& f) {
        return "<Feature type=" + quoted(f.featureTypeId()) + " id=" + quoted(f.featureId()) + ">";
      });

  py::class_<KinematicsDefinition, MachineFeatureDefinition, KinematicsPtr>(
      m, "KinematicsDefinition",
      "The kinematic part tree of a machine: the \"kinematics\" feature of a machine file, or the whole of an MTK "
      "file. Lengths are in mm, angles in degrees.")
      .def_static(
          "from_json", [](std::string const& text) { return readMtkText(text); }, py::arg("text"),
          "Reads the text of an MTK file. ValueError with the reader's message when it cannot be read.")
      .def_property_readonly(
          "parts",
          [](KinematicsPtr const& k) {
            std::vector<PartDefinition const*> base;
            for (PartDefinition const& part : k->baseParts()) base.push_back(&part);
            return partList(k, base);
          },
          "The base parts, the roots of the tree, in file order.")
      .def_property_readonly(
          "all_parts", [](KinematicsPtr const& k) { return partList(k, allPartsOf(*k)); },
          "Every part, depth first, each before its children.")
      .def(
          "find",
          [](KinematicsPtr const& k, std::string const& id) -> std::optional<PartPtr> {
            auto const found = k->find(Orvo::MachinePartId(id));
            if (!found) return std::nullopt;
            return aliased(k, *found);
          },
          py::arg("id"), "The part with that id, or None.")
      .def_property_readonly(
          "heads", [](KinematicsDefinition const& k) { return idsOf(k.getPartsByTypeSorted(machine::PartType::HEAD)); },
          "The ids of the head parts.")
      .def_property_readonly(
          "tables",
          [](KinematicsDefinition const& k) { return idsOf(k.getPartsByTypeSorted(machine::PartType::TABLE)); },
          "The ids of the table parts.")
      .def_property_readonly(
          "handedness",
          [](KinematicsDefinition const& k) {
            return k.mtkIOConverter().externalHandedness() == machine::Handedness::LEFT_HANDED ? "left-handed"
                                                                                                : "right-handed";
          },
          "The rotation convention of the file, \"right-handed\" or \"left-handed\" (the model itself is always "
          "right-handed).")
      .def(
          "problems",
          [](KinematicsDefinition const& k) {
            std::vector<std::string> texts;
            for (auto const& problem : machine::DefinitionCheck::check(k)) texts.push_back(problem.message);
            return texts;
          },
          "What makes the kinematics unusable for a moving machine, one sentence each; empty when it can be moved.")
      .def("to_json", &mtkText, "The kinematics as the text of an MTK file.")
      .def(
          "write", [](KinematicsDefinition const& k, std::string const& path) { writeFileOrRaise(path, mtkText(k)); },
          py::arg("path"), "Writes the kinematics as an MTK file. OSError when the file cannot be written.")
      .def("__repr__", [](KinematicsDefinition const& k) {
        std::size_t parts = 0, axes = 0;
        for (PartDefinition const& part : k.allParts()) {
          ++parts;
          if (part.axisDefinition()) ++axes;
        }
        return "<KinematicsDefinition id=" + quoted(k.featureId()) + " parts=" + std::to_string(parts) +
               " axes=" + std::to_string(axes) + ">";
      });

  py::class_<ControllerConfiguration, MachineFeatureDefinition, ControllerPtr>(
      m, "ControllerConfiguration",
      "The controller settings of a machine, its \"controller\" feature: the head and table it drives and the axes "
      "it renames, limits and configures. `data` holds all of it as in the machine file.")
      .def_property_readonly("name", &ControllerConfiguration::name, "The configuration's name (may be empty).")
      .def_property_readonly(
          "head_part_id", [](ControllerConfiguration const& c) { return idOrNone(c.headInfoPartId()); },
          "The id of the head part, or of a part above it such as a turret; None when the configuration leaves it "
          "open.")
      .def_property_readonly(
          "table_part_id", [](ControllerConfiguration const& c) { return idOrNone(c.tablePartId()); },
          "The id of the table part; None when the configuration leaves it open.")
      .def_property_readonly(
          "axis_names",
          [](ControllerConfiguration const& c) {
            py::dict names;
            for (auto const& entry : c.axisConfigurations())
              names[py::str(entry.first.id())] =
                  entry.second->name() ? py::object(py::str(entry.second->name()->name())) : py::object(py::none());
            return names;
          },
          "For each part the configuration has an entry for, by part id: the axis name it gives, or None.")
      .def("__repr__", [](ControllerConfiguration const& c) {
        auto const head = c.headInfoPartId();
        auto const table = c.tablePartId();
        return "<ControllerConfiguration id=" + quoted(c.featureId()) +
               " head=" + (head ? quoted(head->id()) : std::string("None")) +
               " table=" + (table ? quoted(table->id()) : std::string("None")) +
               " entries=" + std::to_string(c.axisConfigurations().size()) + ">";
      });
}

void bindParts(py::module_& m) {
  py::class_<machine::SpindleDefinition>(m, "Spindle",
                                         "The spindle of a part: speeds in revolutions per minute, power, torque; "
                                         "None for what the file leaves out.")
      .def_property_readonly("min_speed", &machine::SpindleDefinition::minSpeed, "Lowest speed, or None.")
      .def_property_readonly("max_speed", &machine::SpindleDefinition::maxSpeed, "Highest speed, or None.")
      .def_property_readonly("power", &machine::SpindleDefinition::power, "Power, or None.")
      .def_property_readonly("peak_torque", &machine::SpindleDefinition::peakTorque, "Peak torque, or None.")
      .def_property_readonly("peak_torque_speed", &machine::SpindleDefinition::peakTorqueSpeed,
                             "The speed of the peak torque, or None.")
      .def_property_readonly("description", &machine::SpindleDefinition::description, "A description (may be empty).")
      .def("__repr__", [](machine::SpindleDefinition const& s) {
        auto const speed = [](std::optional<double> v) { return v ? number(*v) : std::string("None"); };
        return "<Spindle " + speed(s.minSpeed()) + ".." + speed(s.maxSpeed()) + ">";
      });

  py::class_<machine::ToolStationDefinition>(m, "ToolStation",
                                             "Where a part holds a tool: the largest tool in mm, the coolants and the "
                                             "tool interface; None for what the file leaves out.")
      .def_property_readonly(
          "max_tool_length", [](machine::ToolStationDefinition const& t) { return distanceOrNone(t.maxToolLength()); },
          "The longest tool in mm, or None.")
      .def_property_readonly(
          "max_tool_diameter",
          [](machine::ToolStationDefinition const& t) { return distanceOrNone(t.maxToolDiameter()); },
          "The widest tool in mm, or None.")
      .def_property_readonly(
          "coolants", [](machine::ToolStationDefinition const& t) { return wordSet(t.coolants().toKeys()); },
          "The coolants, as the file's words.")
      .def_property_readonly(
          "tool_interface",
          [](machine::ToolStationDefinition const& t) -> std::optional<std::string> {
            if (!t.toolInterface()) return std::nullopt;
            return t.toolInterface()->name();
          },
          "The tool interface's name, or None.")
      .def("__repr__", [](machine::ToolStationDefinition const& t) {
        return std::string("<ToolStation") + (t.toolInterface() ? " " + t.toolInterface()->name() : "") + ">";
      });

  py::class_<AxisDefinition, AxisPtr>(m, "AxisDefinition",
                                      "The axis of a part as the kinematics defines it: positions in mm for a linear "
                                      "axis and degrees for a rotary one. A controller may rename it and narrow its "
                                      "travel: see Machine.travel for the travel a machine checks.")
      .def_property_readonly(
          "type",
          [](AxisDefinition const& a) { return a.axisType() == machine::AxisType::LINEAR ? "linear" : "rotary"; },
          "\"linear\" or \"rotary\".")
      .def_property_readonly(
          "unit", [](AxisDefinition const& a) { return unitWord(a.axisType() == machine::AxisType::LINEAR); },
          "\"mm\" or \"deg\".")
      .def_property_readonly(
          "name",
          [](AxisDefinition const& a) -> std::optional<std::string> {
            if (!a.name()) return std::nullopt;
            return a.name()->name();
          },
          "The axis name the kinematics gives, or None.")
      .def_property_readonly(
          "control", [](AxisDefinition const& a) { return controlWord(a.defaultControl()); },
          "How the axis is driven: \"driven\", \"secondary\", \"ancillary\", \"link\", \"subordinate\" or "
          "\"manual\".")
      .def_property_readonly(
          "direction", [](AxisDefinition const& a) { return vectorArray(a.direction()); },
          "The unit direction of motion (linear) or of the rotation axis (rotary), in the parent's coordinates; "
          "NaN for a zero direction in the file.")
      .def_property_readonly(
          "point",
          [](AxisDefinition const& a) -> py::object {
            if (auto const* r = dynamic_cast<machine::RotaryAxisDefinition const*>(&a)) return vectorArray(r->point());
            return py::none();
          },
          "A point on the rotation axis in mm (rotary axes); None for a linear axis.")
      .def_property_readonly(
          "offset",
          [](AxisDefinition const& a) -> py::object {
            auto const* r = dynamic_cast<machine::RotaryAxisDefinition const*>(&a);
            if (r && r->offset()) return vectorArray(*r->offset());
            return py::none();
          },
          "The rotary axis's offset in mm when the file gives one, else None.")
      .def_property_readonly(
          "limits",
          [](AxisDefinition const& a) -> py::object {
            auto const min = a.physicalMin();
            auto const max = a.physicalMax();
            if (!min && !max) return py::none();
            return py::make_tuple(valueOrNone(min), valueOrNone(max));
          },
          "The physical travel (min, max) in mm or degrees, an open end as None; None for an unlimited axis.")
      .def_property_readonly(
          "home", [](AxisDefinition const& a) { return a.defaultHome().value(); }, "The home position.")
      .def_property_readonly(
          "tool_change_position", [](AxisDefinition const& a) { return valueOrNone(a.defaultToolChangePosition()); },
          "The tool change position, or None.")
      .def_property_readonly(
          "step_size", [](AxisDefinition const& a) { return valueOrNone(a.stepSize()); },
          "The step of an indexing axis, or None.")
      .def_property_readonly(
          "value_as_modelled", [](AxisDefinition const& a) { return a.valueAsModelled().value(); },
          "The position at which the parts were modelled.")
      .def("__repr__", &axisRepr);

  py::class_<PartDefinition, PartPtr>(m, "Part",
                                      "A part of the kinematic tree: its id, its type (\"linear\", \"rotary\", "
                                      "\"static\", \"head\" or \"table\"), its axis, the frame at which its children "
                                      "are attached, and its spindle, tool station and turret when it has them.")
      .def_property_readonly(
          "id", [](PartDefinition const& p) { return p.identifier().id(); }, "The part id.")
      .def_property_readonly(
          "type", [](PartDefinition const& p) { return partTypeWord(p.type()); }, "The part type word.")
      .def_property_readonly(
          "display_name",
          [](PartDefinition const& p) -> std::optional<std::string> {
            if (!p.displayName()) return std::nullopt;
            return p.displayName()->name();
          },
          "The name to show, or None.")
      .def_property_readonly(
          "axis",
          [](PartPtr const& p) -> std::optional<AxisPtr> {
            if (!p->axisDefinition()) return std::nullopt;
            return aliased(p, p->axisDefinition());
          },
          "The part's AxisDefinition, or None for a part that does not move.")
      .def_property_readonly(
          "attach_frame", [](PartDefinition const& p) { return frameMatrix(p.attachFrame()); },
          "Where the children are attached, in this part's coordinates, as a 4x4 matrix (axes and origin in mm as "
          "columns).")
      .def_property_readonly("children", &childList, "The child parts, in file order.")
      .def_property_readonly(
          "parent",
          [](PartPtr const& p) -> std::optional<PartPtr> {
            PartDefinition const* const parent = p->parent();
            if (!parent || parent->type() == machine::PartType::ROOT) return std::nullopt;
            return aliased(p, parent);
          },
          "The parent part, or None for a base part.")
      .def_property_readonly(
          "spindle", [](PartDefinition const& p) { return p.spindleDefinition(); }, "The Spindle, or None.")
      .def_property_readonly(
          "tool_station", [](PartDefinition const& p) { return p.toolStationDefinition(); },
          "The ToolStation, or None.")
      .def_property_readonly(
          "turret_indexes",
          [](PartDefinition const& p) -> std::optional<unsigned> {
            if (!p.turretDefinition()) return std::nullopt;
            return p.turretDefinition()->indexCount();
          },
          "The number of indexes of a turret part, or None for a part that is no turret.")
      .def("__repr__", [](PartDefinition const& p) {
        std::string text = "<Part " + quoted(p.identifier().id()) + " " + partTypeWord(p.type());
        if (auto const* axis = p.axisDefinition())
          text += " axis " + (axis->name() ? axis->name()->name() : std::string("(unnamed)"));
        return text + ">";
      });
}

void bindMachineDefinition(py::module_& m) {
  py::class_<MachineDefinition, DefinitionPtr>(
      m, "MachineDefinition",
      "The whole description of a machine as a machine file holds it: who made it, what it can do, and its "
      "features (kinematics, controller, interactions...), one of each type being the default.")
      .def_static(
          "from_json", [](std::string const& text) { return readMachineText(text); }, py::arg("text"),
          "Reads the text of a machine file. ValueError with the reader's message when it cannot be read.")
      .def_property(
          "vendor", [](MachineDefinition const& d) { return d.vendor(); },
          [](MachineDefinition& d, std::string const& v) { d.setVendor(v); }, "The vendor (may be empty).")
      .def_property(
          "model", [](MachineDefinition const& d) { return d.model(); },
          [](MachineDefinition& d, std::string const& v) { d.setModel(v); }, "The model (may be empty).")
      .def_property(
          "description", [](MachineDefinition const& d) { return d.description(); },
          [](MachineDefinition& d, std::string const& v) { d.setDescription(v); }, "The description (may be empty).")
      .def_property_readonly(
          "capabilities", [](MachineDefinition const& d) { return wordSet(d.capabilities().toKeys()); },
          "What the machine can do, as words: \"milling\", \"turning\", \"cutting\", \"inspection\", \"additive\".")
      .def_property_readonly(
          "defaults", [](MachineDefinition const& d) { return d.defaults(); },
          "The defaults the file names, from feature type to feature id.")
      .def_property_readonly(
          "features",
          [](DefinitionPtr const& d) {
            py::list list;
            for (MachineFeatureDefinition const& f : d->getFeatures()) list.append(featureObject(d, &f));
            return list;
          },
          "Every feature, in the order of the file's keys.")
      .def(
          "feature",
          [](DefinitionPtr const& d, std::string const& type, std::optional<std::string> const& id) {
            return featureObject(d, id ? d->getFeature(type, *id) : d->getDefaultFeature(type));
          },
          py::arg("type"), py::arg("id") = py::none(),
          "The feature of that type and id, or the default feature of the type when no id is given; None when "
          "there is none.")
      .def_property_readonly(
          "kinematics", [](DefinitionPtr const& d) { return featureObject(d, d->getDefaultFeature("kinematics")); },
          "The default KinematicsDefinition, or None.")
      .def_property_readonly(
          "controller", [](DefinitionPtr const& d) { return featureObject(d, d->getDefaultFeature("controller")); },
          "The default ControllerConfiguration, or None.")
      .def(
          "to_dict", [](MachineDefinition const& d) { return jsonToPython(d.getPersistData()); },
          "The whole document as Python values, as the writer writes it.")
      .def("to_json", &machineFileText, "The machine file's text, as the writer writes it.")
      .def(
          "write",
          [](MachineDefinition const& d, std::string const& path) { writeFileOrRaise(path, machineFileText(d)); },
          py::arg("path"), "Writes the machine file. OSError when the file cannot be written.")
      .def("__repr__", [](MachineDefinition const& d) {
        return "<MachineDefinition vendor=" + quoted(d.vendor()) + " model=" + quoted(d.model()) +
               " features=" + std::to_string(d.getFeatures().size()) + ">";
      });
}

}  // namespace

void bindDefinitions(py::module_& m) {
  bindFeatures(m);
  bindParts(m);
  bindMachineDefinition(m);

  m.def("read_machine_file", &readMachineFile, py::arg("path"),
        "Reads a machine file into a MachineDefinition. OSError when the file cannot be read, ValueError with the "
        "reader's own message when it is no machine file.");
  m.def("read_mtk_file", &readMtkFile, py::arg("path"),
        "Reads an MTK file into a KinematicsDefinition. OSError when the file cannot be read, ValueError with the "
        "reader's own message when it is no MTK file.");
  m.def(
      "check",
      [](std::string const& path) {
        // What `mtkit check` reports for a file that reads: the problems of
        // every kinematics in it, one sentence each.
        machine::MachineFileLoader::LoadedFile const loaded = loadFileOrRaise(path);
        std::vector<std::string> problems;
        auto const add = [&](KinematicsDefinition const& k) {
          for (auto const& problem : machine::DefinitionCheck::check(k)) problems.push_back(problem.message);
        };
        if (loaded.kinematics) add(*loaded.kinematics);
        if (loaded.machine)
          for (MachineFeatureDefinition const& f : loaded.machine->getFeatures())
            if (auto const* k = dynamic_cast<KinematicsDefinition const*>(&f)) add(*k);
        return problems;
      },
      py::arg("path"),
      "Reads a machine file or an MTK file (*.mtk, or JSON with \"units\" and no \"general\") and lists what makes "
      "its kinematics unusable for a moving machine, as `mtkit check` reports it: one sentence each, empty when "
      "the file is fine. OSError or ValueError when the file cannot be read, as for read_machine_file.");
}

}  // namespace mtkit_python
