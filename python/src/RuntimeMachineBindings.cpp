// The runtime machine and its solver, as the command-line tool's fk and ik
// use them: a machine built from a machine file's default kinematics and
// controller (or an MTK file's kinematics with the default controller),
// refused when it cannot be moved, with the head and table chains' axes first
// in its ordering. Positions are mm for linear axes and degrees for rotary
// ones; points are in the table's coordinates unless said otherwise.

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <cmath>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "MachineBindingSupport.h"
#include "FastMethods.h"
#include "Numbers.h"
#include "machine/machine/ControllerConfiguration.h"
#include "machine/machine/KinematicsDefinition.h"
#include "machine/machine/Machine.h"
#include "machine/machine/MachineFileLoader.h"
#include "machine/machine/MachineSolver.h"
#include "machine/machine/MachineUtils.h"
#include "machine/machine/MockSimulationStream.h"
#include "machine/machine/TravelLimitSimulationStream.h"

namespace py = pybind11;

namespace mtkit_python {

namespace {

using machine::Machine;
using machine::MachineSolver;
using MachinePtr = std::shared_ptr<Machine>;
using SolverPtr = std::shared_ptr<MachineSolver>;

/// The name of the ordered axis: the one the machine goes by (the
/// controller's, else the kinematics'), or the part id for an unnamed axis,
/// as the travel check names it.
std::string axisName(Machine const& m, int index) {
  Orvo::AxisOrdering const& ordering = m.axisOrdering();
  std::string const name = ordering.axisName(index).name();
  return name.empty() ? ordering.machinePartId(index).id() : name;
}

std::vector<std::string> axisNames(Machine const& m) {
  std::vector<std::string> names;
  for (int i = 0; i < m.axisOrdering().size(); ++i) names.push_back(axisName(m, i));
  return names;
}

std::string namesText(Machine const& m) {
  std::string text;
  for (std::string const& name : axisNames(m)) text += (text.empty() ? "" : " ") + name;
  return text.empty() ? "none" : text;
}

bool isLinear(machine::Part const& part) {
  return part.axis() && part.axis()->axisType() == machine::AxisType::LINEAR;
}

/// The ordered part that `name` stands for: the axis name the machine goes
/// by, a part id, or the name the kinematics gives an axis that the
/// controller renames (a mill-turn's C1, which its controller calls C).
machine::Part const* findAxis(Machine const& m, std::string const& name) {
  if (machine::Part const* const byName = m.orderedPartByName(Orvo::AxisName(name))) return byName;
  for (int i = 0; i < m.numOrderedParts(); ++i)
    if (m.orderedPart(i)->definition()->identifier().id() == name) return m.orderedPart(i);
  for (int i = 0; i < m.numOrderedParts(); ++i) {
    machine::AxisDefinition const* const axis = m.orderedPart(i)->definition()->axisDefinition();
    if (axis && axis->name() && axis->name()->name() == name) return m.orderedPart(i);
  }
  return nullptr;
}

machine::Part const& axisOrRaise(Machine const& m, std::string const& name) {
  machine::Part const* const part = findAxis(m, name);
  if (!part)
    throw py::value_error("the machine has no axis named '" + name + "' (axes: " + namesText(m) +
                          ", or their part ids)");
  return *part;
}

py::array_t<double> axisValueArray(Machine const& m) {
  Orvo::AxisValues const values = m.axisValues();
  py::array_t<double> array(values.size());
  auto a = array.mutable_unchecked<1>();
  for (int i = 0; i < values.size(); ++i) a(i) = values[i].value();
  return array;
}

using machine::MachineUtils;

void checkToolLength(double length) {
  if (!std::isfinite(length) || length < 0)
    throw py::value_error("the tool length must be a finite number of mm, not negative, not " +
                          py::repr(py::float_(length)).cast<std::string>());
}

std::vector<std::string> outOfTravel(Machine const& m) {
  // The pose goes through the link that simulate places behind the solver,
  // so that Python draws the line where the tool does (limits included
  // within its tolerance).
  machine::TravelLimitSimulationStream link(std::make_unique<machine::MockSimulationStream>(), m);
  link.onAxisOrdering(m.axisOrdering());
  link.onAxisValues(m.axisValues());
  std::vector<std::string> names;
  Orvo::AxisOrdering const& ordering = m.axisOrdering();
  for (int i = 0; i < ordering.size(); ++i) {
    auto const* const travel = link.axis(ordering.machinePartId(i));
    if (travel && travel->count > 0) names.push_back(axisName(m, i));
  }
  return names;
}

void moveAxes(Machine& m, py::handle mapping) {
  for (auto item : py::reinterpret_borrow<py::dict>(mapping)) {
    std::string const name = py::str(item.first);
    machine::Part const& part = axisOrRaise(m, name);
    m.moveAxis(&part, item.second.cast<double>());
  }
}

/// Moves every axis: one value for each in axis order. A list or tuple of
/// plain numbers is read in place; any other sequence (a NumPy array) goes
/// through the general conversion.
void moveToValues(Machine& m, py::handle values, char const* call = "move_to()") {
  std::size_t const count = static_cast<std::size_t>(m.numOrderedParts());
  double plain[16];
  if (count <= 16 && plainNumbers(values, plain, count)) {
    // The values of the last call are overwritten rather than allocated
    // again: this is the call a script makes for every pose. The interpreter
    // lock keeps one thread here at a time.
    static Orvo::AxisValues scratch;
    if (static_cast<std::size_t>(scratch.size()) != count) scratch = Orvo::AxisValues(static_cast<int>(count));
    for (std::size_t i = 0; i < count; ++i) scratch.setValue(static_cast<int>(i), Orvo::AxisValue(plain[i]));
    m.moveTo(scratch);
    return;
  }
  std::vector<double> numbers;
  try {
    numbers = py::cast<std::vector<double>>(values);
  } catch (py::cast_error const&) {
    throw py::type_error(std::string(call) + " takes a sequence of numbers, one for each axis (" + namesText(m) + "), not " +
                         std::string(py::str(py::type::handle_of(values).attr("__name__"))));
  }
  if (numbers.size() != count)
    throw py::value_error(std::string(call) + " needs " + std::to_string(count) + " values (" + namesText(m) + "), got " +
                          std::to_string(numbers.size()));
  m.moveTo(Orvo::AxisValues(std::vector<Orvo::AxisValue>(numbers.begin(), numbers.end())));
}

/// The tip of a tool of that length in the table's coordinates.
py::array_t<double> toolTip(Machine const& m, double toolLength) {
  checkToolLength(toolLength);
  Orvo::Frame const head = MachineUtils::headFrameInTable(m);
  return vectorArray(head.origin() - toolLength * head.zAxis());
}

std::string machineRepr(char const* kind, Machine const& m) {
  std::string text = std::string("<") + kind;
  Orvo::AxisValues const values = m.axisValues();
  for (int i = 0; i < values.size(); ++i)
    text += " " + axisName(m, i) + "=" + py::repr(py::float_(values[i].value())).cast<std::string>();
  return text + ">";
}

// The calls a script makes for every pose (move_to, tool_tip, tool_tip_at)
// are fast methods (FastMethods.h).

/// A tool length argument: 0 when absent, else any real number, checked.
double toolLengthOf(PyObject* argument) {
  if (!argument) return 0.0;
  double const length = PyFloat_AsDouble(argument);
  if (length == -1.0 && PyErr_Occurred()) throw py::error_already_set();
  checkToolLength(length);
  return length;
}

PyObject* moveToMethod(PyObject* self, PyObject* const* args, Py_ssize_t count, PyObject* keywords) noexcept {
  return guarded([&] {
    static char const* const kNames[] = {"values"};
    PyObject* bound[1];
    bindArguments("move_to()", args, count, keywords, kNames, 1, bound);
    moveToValues(py::cast<Machine&>(py::handle(self)), bound[0]);
    return py::none().release().ptr();
  });
}

PyObject* toolTipMethod(PyObject* self, PyObject* const* args, Py_ssize_t count, PyObject* keywords) noexcept {
  return guarded([&] {
    static char const* const kNames[] = {"tool_length"};
    PyObject* bound[1];
    bindArguments("tool_tip()", args, count, keywords, kNames, 0, bound);
    double const length = toolLengthOf(bound[0]);
    return toolTip(py::cast<Machine&>(py::handle(self)), length).release().ptr();
  });
}

PyObject* toolTipAtMethod(PyObject* self, PyObject* const* args, Py_ssize_t count, PyObject* keywords) noexcept {
  return guarded([&] {
    static char const* const kNames[] = {"values", "tool_length"};
    PyObject* bound[2];
    bindArguments("tool_tip_at()", args, count, keywords, kNames, 1, bound);
    double const length = toolLengthOf(bound[1]);
    Machine& machine = py::cast<Machine&>(py::handle(self));
    moveToValues(machine, bound[0], "tool_tip_at()");
    return toolTip(machine, length).release().ptr();
  });
}

PyMethodDef kFastMethods[] = {
    {"move_to", fastCall<&moveToMethod>(), METH_FASTCALL | METH_KEYWORDS,
     "move_to(values)\n--\n\nMoves every axis: one value for each axis in axis order, in mm and degrees."},
    {"tool_tip", fastCall<&toolTipMethod>(), METH_FASTCALL | METH_KEYWORDS,
     "tool_tip(tool_length=0.0)\n--\n\nThe tip of a tool of that length (mm) in the table's coordinates (mm): the "
     "tool length from the head's attach frame, against its Z axis."},
    {"tool_tip_at", fastCall<&toolTipAtMethod>(), METH_FASTCALL | METH_KEYWORDS,
     "tool_tip_at(values, tool_length=0.0)\n--\n\nForward kinematics in one call: moves every axis to `values` (as "
     "move_to) and returns the tip of a tool of that length (as tool_tip). The machine stays at that pose."},
};

}  // namespace

void bindRuntimeMachine(py::module_& m) {
  py::class_<Machine, MachinePtr>(
      m, "Machine",
      "A machine that can be moved: axes in mm (linear) and degrees (rotary), forward kinematics of the head and "
      "table, travel checks as `mtkit fk` makes them, and a solver for tool tips. Built from a machine file's "
      "default kinematics and controller, or from an MTK file's kinematics with the default controller; the axes "
      "of the head and table chains come first in its ordering, each axis starting at home.")
      .def(py::init([](machine::MachineDefinition const& d) {
             return machineOrRaise(machine::MachineFileLoader::build(d, ""));
           }),
           py::arg("definition"),
           "The machine of a MachineDefinition's default kinematics and controller. ValueError when there is no "
           "kinematics or it cannot be moved (with the sentences of mtkit.check), or without a head or a table.")
      .def(py::init([](machine::KinematicsDefinition const& k) {
             return machineOrRaise(machine::MachineFileLoader::build(k, ""));
           }),
           py::arg("kinematics"),
           "The machine of a KinematicsDefinition with the controller configuration made from it (the first head "
           "and the first table). ValueError as above.")
      .def_static(
          "from_file",
          [](std::string const& path) { return machineOrRaise(machine::MachineFileLoader::loadMachine(path), path); },
          py::arg("path"),
          "The machine of a machine file or an MTK file (*.mtk, or JSON with \"units\" and no \"general\"), as the "
          "command-line tool loads it. OSError when the file cannot be read, ValueError with a sentence that "
          "names the file when it cannot be used (the reader's own message on the lines that follow).")
      .def_property_readonly("axis_names", &axisNames,
                             "The axis names in the machine's ordering (the controller's name, else the kinematics', "
                             "else the part id).")
      .def_property_readonly(
          "axis_units",
          [](Machine const& self) {
            std::vector<std::string> units;
            for (int i = 0; i < self.numOrderedParts(); ++i) units.push_back(unitWord(isLinear(*self.orderedPart(i))));
            return units;
          },
          "\"mm\" or \"deg\" for each axis, in order.")
      .def_property_readonly(
          "part_ids",
          [](Machine const& self) {
            std::vector<std::string> ids;
            for (int i = 0; i < self.axisOrdering().size(); ++i) ids.push_back(self.axisOrdering().machinePartId(i).id());
            return ids;
          },
          "The part id of each axis, in order.")
      .def_property_readonly("axis_values", &axisValueArray,
                             "The present positions as a float64 array in axis order: mm and degrees.")
      .def(
          "move",
          [](Machine& self, py::object const& values, py::kwargs const& axes) {
            if (!values.is_none()) {
              if (!py::isinstance<py::dict>(values)) throw py::type_error("move() takes a dict of axis values");
              moveAxes(self, values);
            }
            moveAxes(self, axes);
          },
          py::arg("values") = py::none(), py::pos_only(),
          "Moves the named axes, move(X=10, B=30) or move({\"C1\": 90}), in mm and degrees; the others stay. An "
          "axis goes by its name, its part id, or the name the kinematics gives it. Positions beyond the travel "
          "are taken: see out_of_travel(). ValueError for an axis the machine does not have (before which the "
          "axes named earlier have moved).")
      .def("move_to_home", &Machine::moveToHome, "Moves every axis to its home position.")
      .def(
          "head_frame", [](Machine const& self) { return frameMatrix(self.headAttachFrame()); },
          "The head's attach frame in machine coordinates, as a 4x4 matrix (axes and origin in mm as columns). Its "
          "Z axis runs up the tool, from the tip into the spindle.")
      .def(
          "table_frame", [](Machine const& self) { return frameMatrix(self.tableAttachFrame()); },
          "The table's attach frame in machine coordinates, as a 4x4 matrix.")
      .def(
          "head_frame_in_table", [](Machine const& self) { return frameMatrix(MachineUtils::headFrameInTable(self)); },
          "The head's attach frame in the table's coordinates, as a 4x4 matrix: what `mtkit fk` prints.")
      .def(
          "tool_axis", [](Machine const& self) { return vectorArray(MachineUtils::headFrameInTable(self).zAxis()); },
          "The tool axis in the table's coordinates: a unit vector from the tip into the spindle.")
      .def(
          "travel",
          [](Machine const& self, std::string const& axis) -> std::optional<std::pair<double, double>> {
            auto const range = machine::MachineUtils::travelOf(axisOrRaise(self, axis));
            if (!range) return std::nullopt;
            return std::make_pair(range->min().value(), range->max().value());
          },
          py::arg("axis"),
          "Where the axis may go, (min, max) in mm or degrees: its physical range narrowed by the controller. "
          "None for an axis that can turn or run without end (unlimited, or wrapping around).")
      .def("out_of_travel", &outOfTravel,
           "The names of the axes that stand outside their travel at the present position, as `mtkit fk` and "
           "`mtkit simulate` judge it (a value within 1e-6 of a limit is inside, NaN is never outside).")
      .def(
          "solver",
          [](Machine const& self) {
            std::unique_ptr<MachineSolver> solver = self.makeMachineSolver();
            if (!solver)
              throw py::value_error(
                  "fewer than two primary linear axes on the head and table chains; nothing to solve");
            return SolverPtr(std::move(solver));
          },
          "A Solver: a copy of this machine, at its present position, that finds axis values for a tool tip. "
          "Moving it leaves this machine where it is. ValueError for a machine with fewer than two primary linear "
          "axes on its head and table chains.")
      .def_property_readonly(
          "kinematics",
          [](MachinePtr const& self) {
            return std::shared_ptr<machine::KinematicsDefinition>(
                self, const_cast<machine::KinematicsDefinition*>(self->kinematicsDefinition()));
          },
          "The machine's own copy of its KinematicsDefinition.")
      .def_property_readonly(
          "controller",
          [](MachinePtr const& self) {
            return std::shared_ptr<machine::ControllerConfiguration>(
                self, const_cast<machine::ControllerConfiguration*>(self->controllerConfiguration()));
          },
          "The machine's own copy of its ControllerConfiguration, head and table filled in.")
      .def_property_readonly(
          "head_part_id", [](Machine const& self) { return self.headPart()->definition()->identifier().id(); },
          "The id of the head part the machine drives.")
      .def_property_readonly(
          "table_part_id", [](Machine const& self) { return self.tablePart()->definition()->identifier().id(); },
          "The id of the table part the machine drives.")
      .def("__repr__", [](Machine const& self) { return machineRepr("Machine", self); });
  addFastMethods(m.attr("Machine"), kFastMethods);

  py::class_<MachineSolver, Machine, SolverPtr>(
      m, "Solver",
      "A machine that can also be driven from the tool's side: given a tool tip in the table's coordinates (mm), "
      "it moves its linear axes there, the rotary axes staying as they are. It is a Machine of its own, so it "
      "can be moved and queried like one.")
      .def(
          "move_tool_tip_to",
          [](MachineSolver& self, py::handle point, double toolLength) -> py::object {
            checkToolLength(toolLength);
            Orvo::Point3D const tip = pointFrom(point, "the tool tip");
            self.setToolReferenceFrame(MachineUtils::toolReferenceFrame(toolLength));
            auto const distance = self.moveToolTipTo(tip);
            if (!distance) return py::none();
            return py::make_tuple(axisValueArray(self), distance->get());
          },
          py::arg("point"), py::arg("tool_length") = 0.0,
          "Moves the linear axes so that the tip of a tool of that length (mm) reaches the point (x, y, z) in the "
          "table's coordinates (mm). Returns (axis_values, distance): every axis in axis order (mm and degrees) "
          "and the distance in mm left between the tip reached and the point; None when the axes cannot be solved "
          "(the linear axes are not independent at this pose).")
      .def("__repr__", [](MachineSolver const& self) { return machineRepr("Solver", self); });
}

}  // namespace mtkit_python
