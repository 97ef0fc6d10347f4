// The script-facing model: Vector, Matrix and MachineConfiguration.
//
// The library works in radians; Python sees degrees for every angle and ABC
// triple, converted here at the boundary, so that the values read like those
// of a machine's display and of `mtkit orient`. Directions and positions are
// unitless or mm as the library has them. Wherever a vector goes in, a
// mtkit.Vector, a tuple or list of three numbers, or a NumPy array of three
// will do.

#include <pybind11/numpy.h>
#include <pybind11/operators.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <cmath>
#include <initializer_list>
#include <memory>
#include <string>

#include "Bindings.h"
#include "FastMethods.h"
#include "Numbers.h"
#include "machine/machine/KinematicsDefinition.h"
#include "machine/machine/MachineDefinition.h"
#include "machine/machine/MachineFileLoader.h"
#include "machine/machine/PostMachineConfig/MachineConfiguration.h"
#include "machine/machine/PostMachineConfig/MachineConfigurationLoader.h"
#include "machine/machine/PostMachineConfig/Matrix.h"
#include "machine/machine/PostMachineConfig/Vector.h"
#include "util/utility/Messages.h"

namespace py = pybind11;

namespace mtkit_python {

namespace {

using com::vantora::Matrix;
using com::vantora::Vector;
using com::vantora::post::Axis;
using com::vantora::post::MachineConfiguration;

constexpr double kPi = 3.14159265358979323846;
constexpr double kDegrees = 180.0 / kPi;

std::string utf8(std::wstring const& text) { return Orvo::Messages::wideToUtf8(text); }

/// A Vector, or any sequence of three numbers (tuple, list, NumPy array).
Vector toVector(py::handle value) {
  double v[3];
  if (plainNumbers(value, v, 3)) return Vector(v[0], v[1], v[2]);
  if (py::isinstance<Vector>(value)) return value.cast<Vector>();
  if (!py::isinstance<py::str>(value) && py::hasattr(value, "__len__") && py::len(value) == 3) {
    py::list const seq(py::reinterpret_borrow<py::object>(value));
    return Vector(seq[0].cast<double>(), seq[1].cast<double>(), seq[2].cast<double>());
  }
  throw py::type_error("expected a mtkit.Vector or a sequence of three numbers");
}

Vector toRadians(py::handle value) { return Vector::product(toVector(value), 1.0 / kDegrees); }
Vector toDegrees(Vector const& v) { return Vector::product(v, kDegrees); }

py::array_t<double> vectorArray(Vector const& v) {
  py::array_t<double> array(3);
  auto data = array.mutable_unchecked<1>();
  data(0) = v.x;
  data(1) = v.y;
  data(2) = v.z;
  return array;
}

/// numpy's __array__(dtype=None, copy=None): a new float64 array each time.
py::object asArray(py::array_t<double> array, py::object const& dtype) {
  if (dtype.is_none()) return std::move(array);
  return array.attr("astype")(dtype);
}

py::array_t<double> matrixArray(Matrix const& m) {
  py::array_t<double> array({3, 3});
  auto data = array.mutable_unchecked<2>();
  for (unsigned r = 0; r < 3; ++r)
    for (unsigned c = 0; c < 3; ++c) data(r, c) = m[r][c];
  return array;
}

Matrix toMatrix(py::handle value) {
  if (py::isinstance<Matrix>(value)) return value.cast<Matrix>();
  auto array = py::array_t<double, py::array::c_style | py::array::forcecast>::ensure(value);
  if (!array || array.ndim() != 2 || array.shape(0) != 3 || array.shape(1) != 3)
    throw py::type_error("expected a mtkit.Matrix or a 3x3 array");
  double values[9];
  auto data = array.unchecked<2>();
  for (py::ssize_t r = 0; r < 3; ++r)
    for (py::ssize_t c = 0; c < 3; ++c) values[3 * r + c] = data(r, c);
  return Matrix(values);
}

// Axes of a configuration.

char const* const kSlotNames[] = {"X", "Y", "Z", "U", "V", "W"};

/// A copy of one slot of a configuration, with the slot's name.
struct SlotAxis {
  std::string slot;
  Axis axis;
};

std::optional<std::string> coordinateLetter(Axis const& axis) {
  int const coordinate = axis.getCoordinate();
  if (coordinate < 0 || coordinate > 2) return std::nullopt;
  return std::string(1, (axis.isRotational() ? "ABC" : "XYZ")[coordinate]);
}

py::object axisRange(Axis const& axis) {
  auto const& range = axis.getRange();
  if (range.isNonRange()) return py::none();
  double const factor = axis.isRotational() ? kDegrees : 1.0;
  return py::make_tuple(range.getInternalMinimum() * factor, range.getInternalMaximum() * factor);
}

std::string axisRepr(SlotAxis const& s) {
  Axis const& axis = s.axis;
  if (!axis.isEnabled()) return "ConfigurationAxis(" + s.slot + ", disabled)";
  std::string text = "ConfigurationAxis(" + s.slot + ", " + coordinateLetter(axis).value_or("?") + ", " +
                     (axis.isRotational() ? "rotary" : "linear") + ", " + (axis.isTable() ? "table" : "head") +
                     ", direction=" + utf8(axis.getAxis().toString());
  py::object const range = axisRange(axis);
  text += ", range=" + (range.is_none() ? std::string("None") : py::repr(range).cast<std::string>()) + ")";
  return text;
}

/// "3 axes", "4 axes, table", "5 axes, head-table", ...: heads before tables.
std::string kindText(MachineConfiguration const& configuration) {
  unsigned heads = 0, tables = 0;
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

SlotAxis slotAxis(MachineConfiguration const& configuration, int id) {
  return SlotAxis{kSlotNames[id], configuration.getAxisById(static_cast<MachineConfiguration::AxisId>(id))};
}

std::string pathText(py::object const& path) {
  return py::module_::import("os").attr("fspath")(path).cast<std::string>();
}

// The chooser's arguments by name, as a script reads best; the numbers of
// the script interface are taken too.
int choiceOf(py::object const& value, std::initializer_list<char const*> names, char const* what) {
  if (py::isinstance<py::int_>(value)) return value.cast<int>();
  std::string const text = py::str(value);
  int index = 0;
  std::string known;
  for (char const* name : names) {
    if (text == name) return index;
    known += (index ? ", " : "") + std::string(name);
    ++index;
  }
  throw py::value_error(std::string("unknown ") + what + " '" + text + "' (known: " + known + ")");
}

Vector abcByPreference(MachineConfiguration const& c, Matrix const& orientation, py::object const& current,
                       py::object const& controllingAxis, py::object const& type, bool resetAxes, bool adjustLastAxis) {
  int const axis = choiceOf(controllingAxis, {"A", "B", "C", "ABC"}, "controlling axis");
  int const preference =
      choiceOf(type, {"preference", "closest", "positive", "negative", "increasing", "decreasing"}, "preference type");
  int const options = (resetAxes ? MachineConfiguration::PREFERENCE_RESET_AXES : 0) |
                      (adjustLastAxis ? MachineConfiguration::PREFERENCE_ADJUST_LAST_AXIS : 0);
  return toDegrees(c.getABCByPreference(orientation, toRadians(current), axis, preference, options));
}

// abc_by_direction, the orientation call a script makes for every tool
// direction, is a fast method (FastMethods.h).
PyObject* abcByDirectionMethod(PyObject* self, PyObject* const* args, Py_ssize_t count, PyObject* keywords) noexcept {
  return guarded([&] {
    static char const* const kNames[] = {"direction"};
    PyObject* bound[1];
    bindArguments("abc_by_direction()", args, count, keywords, kNames, 1, bound);
    MachineConfiguration const& c = py::cast<MachineConfiguration const&>(py::handle(self));
    return py::cast(toDegrees(c.getABCByDirection(toVector(bound[0])))).release().ptr();
  });
}

PyMethodDef kConfigurationFastMethods[] = {
    {"abc_by_direction", fastCall<&abcByDirectionMethod>(), METH_FASTCALL | METH_KEYWORDS,
     "abc_by_direction(direction)\n--\n\nThe first solution of abc_by_direction_both (degrees)"},
};

std::unique_ptr<MachineConfiguration> fromMachineFile(py::object const& pathObject) {
  std::string const path = pathText(pathObject);
  machine::MachineFileLoader::LoadedFile const file = machine::MachineFileLoader::load(path);
  if (file.errorNumber != 0) {
    // The loader's sentence, which names the file, as replay() gives it.
    PyErr_SetString(PyExc_OSError, file.error.c_str());
    throw py::error_already_set();
  }
  if (!file.ok()) throw py::value_error(file.error);
  std::unique_ptr<MachineConfiguration> configuration;
  if (file.machine)
    configuration = MachineConfiguration::createFromMachineDefinition(*file.machine, true);
  else
    configuration = MachineConfiguration::createFromMachineDefinition(*file.kinematics);
  if (!configuration)
    throw py::value_error("'" + path +
                          "': the machine has no tool or table part its controller names, so there is no configuration");
  return configuration;
}

std::unique_ptr<MachineConfiguration> fromFile(py::object const& path) {
  // No safe mode here: the default loader reads any file, and inherited
  // files relative to the one that names them. Installed on each call, as a
  // host would have done once at start-up.
  MachineConfiguration::setMachineLoader(std::make_shared<com::vantora::post::MachineConfigurationLoader>());
  return std::unique_ptr<MachineConfiguration>(
      MachineConfiguration::createFromPath(Orvo::Messages::utf8ToWide(pathText(path))));
}

void bindVector(py::module_& module) {
  py::class_<Vector>(module, "Vector",
                     "Three numbers as post-processor scripts see them: a position (mm), a direction, or an angle "
                     "triple. Converts to a NumPy array of three.")
      .def(py::init<>(), "The zero vector")
      .def(py::init<double, double, double>(), py::arg("x"), py::arg("y"), py::arg("z"))
      .def(py::init([](py::object const& values) { return toVector(values); }), py::arg("values"),
           "From a sequence of three numbers (tuple, list, NumPy array)")
      .def_readwrite("x", &Vector::x)
      .def_readwrite("y", &Vector::y)
      .def_readwrite("z", &Vector::z)
      .def_property_readonly("length", &Vector::getLength, "The Euclidean length")
      .def("normalized", &Vector::getNormalized, "The unit vector; the zero vector stays zero")
      .def("dot", [](Vector const& a, py::object const& b) { return Vector::dot(a, toVector(b)); }, py::arg("other"),
           "The dot product")
      .def("cross", [](Vector const& a, py::object const& b) { return Vector::cross(a, toVector(b)); },
           py::arg("other"), "The cross product")
      .def("__add__", [](Vector const& a, py::object const& b) { return Vector::sum(a, toVector(b)); })
      .def("__radd__", [](Vector const& a, py::object const& b) { return Vector::sum(toVector(b), a); })
      .def("__sub__", [](Vector const& a, py::object const& b) { return Vector::diff(a, toVector(b)); })
      .def("__rsub__", [](Vector const& a, py::object const& b) { return Vector::diff(toVector(b), a); })
      .def("__mul__", [](Vector const& a, double f) { return Vector::product(a, f); })
      .def("__rmul__", [](Vector const& a, double f) { return Vector::product(a, f); })
      .def("__truediv__", [](Vector const& a, double f) {
        // Python's own rule rather than the library's unchecked division.
        if (f == 0.0) throw py::value_error("division of a Vector by zero");
        Vector r = a;
        r.divide(f);
        return r;
      })
      .def("__neg__", &Vector::getNegated)
      .def("__eq__", [](Vector const& a, py::object const& b) {
        if (!py::isinstance<Vector>(b)) return false;
        Vector const v = b.cast<Vector>();
        return a.x == v.x && a.y == v.y && a.z == v.z;
      })
      .def("__len__", [](Vector const&) { return 3; })
      .def("__getitem__", [](Vector const& v, int i) {
        if (i < 0) i += 3;
        if (i < 0 || i > 2) throw py::index_error("Vector index out of range");
        return v.getCoordinate(static_cast<unsigned>(i));
      })
      .def("__iter__", [](Vector const& v) { return py::iter(py::make_tuple(v.x, v.y, v.z)); })
      .def("__array__", [](Vector const& v, py::object const& dtype, py::object const&) {
        return asArray(vectorArray(v), dtype);
      }, py::arg("dtype") = py::none(), py::arg("copy") = py::none(), "The vector as a float64 NumPy array of three")
      .def("__repr__", [](Vector const& v) { return "Vector" + utf8(v.toString()); });
}

void bindMatrix(py::module_& module) {
  py::class_<Matrix> matrix(module, "Matrix",
                            "A 3x3 rotation matrix as post-processor scripts see it, row-major; column 0 is right, 1 "
                            "up, 2 forward (the tool direction). Angles in degrees. Converts to a 3x3 NumPy array.");
  matrix.def(py::init<>(), "The identity")
      .def(py::init([](py::object const& values) { return toMatrix(values); }), py::arg("values"),
           "From a 3x3 array (nested sequences or NumPy), row by row")
      .def("__array__", [](Matrix const& m, py::object const& dtype, py::object const&) {
        return asArray(matrixArray(m), dtype);
      }, py::arg("dtype") = py::none(), py::arg("copy") = py::none(), "The matrix as a 3x3 float64 NumPy array")
      .def("__getitem__", [](Matrix const& m, std::pair<int, int> index) {
        if (index.first < 0 || index.first > 2 || index.second < 0 || index.second > 2)
          throw py::index_error("Matrix index out of range");
        return m.getElement(static_cast<unsigned>(index.first), static_cast<unsigned>(index.second));
      }, "m[row, column]")
      .def("__matmul__", [](Matrix const& m, py::object const& other) -> py::object {
        if (py::isinstance<Matrix>(other)) return py::cast(m.multiplyMatrix(other.cast<Matrix>()));
        return py::cast(m.multiplyVector(toVector(other)));
      }, "m @ n: the product with a Matrix, or with a vector (as a column)")
      .def("__eq__", [](Matrix const& a, py::object const& b) {
        if (!py::isinstance<Matrix>(b)) return false;
        Matrix const m = b.cast<Matrix>();
        for (unsigned r = 0; r < 3; ++r)
          for (unsigned c = 0; c < 3; ++c)
            if (a[r][c] != m[r][c]) return false;
        return true;
      })
      .def("transposed", &Matrix::getTransposed, "The transpose (the inverse of a rotation)")
      .def_property_readonly("right", &Matrix::getRight, "Column 0")
      .def_property_readonly("up", &Matrix::getUp, "Column 1")
      .def_property_readonly("forward", &Matrix::getForward, "Column 2, the tool direction")
      .def("euler", [](Matrix const& m, unsigned convention) { return toDegrees(m.getEuler2(convention)); },
           py::arg("convention"),
           "The angles of an Euler convention (Matrix.EULER_...), in degrees; ScriptError \"Invalid Euler "
           "convention.\" beyond 23")
      .def_static("from_euler", [](unsigned convention, py::object const& angles) {
        return Matrix::getEulerRotation(convention, toRadians(angles));
      }, py::arg("convention"), py::arg("angles"), "The rotation of three Euler angles in degrees")
      .def_static("axis_rotation", [](py::object const& axis, double angle) {
        return Matrix::getAxisRotation(toVector(axis), angle / kDegrees);
      }, py::arg("axis"), py::arg("angle"), "The active rotation by `angle` degrees about the unit vector `axis`")
      .def_static("x_rotation", [](double angle) { return Matrix::getXRotation(angle / kDegrees); }, py::arg("angle"),
                  "The frame rotation about X by degrees: rows (1, 0, 0), (0, c, s), (0, -s, c)")
      .def_static("y_rotation", [](double angle) { return Matrix::getYRotation(angle / kDegrees); }, py::arg("angle"),
                  "The frame rotation about Y by degrees: rows (c, 0, -s), (0, 1, 0), (s, 0, c)")
      .def_static("z_rotation", [](double angle) { return Matrix::getZRotation(angle / kDegrees); }, py::arg("angle"),
                  "The frame rotation about Z by degrees: rows (c, s, 0), (-s, c, 0), (0, 0, 1)")
      .def_static("from_direction", [](py::object const& forward) {
        return Matrix::getOrientationFromDirection(toVector(forward));
      }, py::arg("forward"), "A frame whose forward column is the unit vector `forward`")
      .def("tilt_and_tilt", [](Matrix const& m, unsigned primary, unsigned secondary) {
        return toDegrees(m.getTiltAndTilt(primary, secondary));
      }, py::arg("primary"), py::arg("secondary"),
         "The two tilts in degrees about coordinates `primary` then `secondary` (0 X, 1 Y) that bring Z onto forward")
      .def("turn_and_tilt", [](Matrix const& m, unsigned primary, unsigned secondary) {
        return toDegrees(m.getTurnAndTilt(primary, secondary));
      }, py::arg("primary"), py::arg("secondary"),
         "A turn about Z and a tilt about X (0, 2) or Y (1, 2), in degrees, that bring Z onto forward")
      .def("__repr__", [](Matrix const& m) { return "Matrix(" + utf8(m.toString()) + ")"; });
  char const* const names[] = {"XZX_S", "YXY_S", "ZYZ_S", "XZX_R", "YXY_R", "ZYZ_R", "XZY_S", "YXZ_S",
                               "ZYX_S", "YZX_R", "ZXY_R", "XYZ_R", "XYX_S", "YZY_S", "ZXZ_S", "XYX_R",
                               "YZY_R", "ZXZ_R", "XYZ_S", "YZX_S", "ZXY_S", "ZYX_R", "XZY_R", "YXZ_R"};
  for (unsigned i = 0; i < 24; ++i) matrix.attr((std::string("EULER_") + names[i]).c_str()) = i;
}

void bindConfiguration(py::module_& module) {
  py::class_<SlotAxis>(module, "ConfigurationAxis",
                       "One axis slot of a MachineConfiguration (a copy): X, Y, Z linear, U, V, W rotary.")
      .def_readonly("slot", &SlotAxis::slot, "\"X\", \"Y\", \"Z\", \"U\", \"V\" or \"W\"")
      .def_property_readonly("enabled", [](SlotAxis const& s) { return s.axis.isEnabled(); },
                             "False for a slot that holds no axis")
      .def_property_readonly("kind", [](SlotAxis const& s) { return s.axis.isRotational() ? "rotary" : "linear"; },
                             "\"linear\" or \"rotary\"")
      .def_property_readonly("is_table", [](SlotAxis const& s) { return s.axis.isTable(); },
                             "True for an axis that moves the part")
      .def_property_readonly("is_head", [](SlotAxis const& s) { return s.axis.isHead(); },
                             "True for an axis that moves the tool")
      .def_property_readonly("direction", [](SlotAxis const& s) { return s.axis.getAxis(); },
                             "The axis direction as given (a Vector)")
      .def_property_readonly("offset", [](SlotAxis const& s) { return s.axis.getOffset(); },
                             "The pivot of a rotary axis, mm (a Vector)")
      .def_property_readonly("range", [](SlotAxis const& s) { return axisRange(s.axis); },
                             "(min, max) in mm or degrees; None for an axis without a range")
      .def_property_readonly("coordinate", [](SlotAxis const& s) { return coordinateLetter(s.axis); },
                             "The letter of the coordinate: X, Y, Z for a linear axis, A, B, C for a rotary one; "
                             "None when disabled")
      .def_property_readonly("cyclic", [](SlotAxis const& s) { return s.axis.isRotational() && s.axis.isCyclic(); },
                             "True for a rotary axis that turns without end")
      .def_property_readonly("preference", [](SlotAxis const& s) { return s.axis.getPreference(); },
                             "-1, 0 or +1: the sign of angle the axis prefers")
      .def_property_readonly("tcp", [](SlotAxis const& s) { return s.axis.isTCPEnabled(); },
                             "True when the control follows the tool tip for this rotary axis")
      .def_property_readonly("resolution", [](SlotAxis const& s) {
        return s.axis.getResolution() * (s.axis.isRotational() ? kDegrees : 1.0);
      }, "The step of the axis, mm or degrees; 0 for none")
      .def_property_readonly("name", [](SlotAxis const& s) { return utf8(s.axis.getName()); }, "The axis name")
      .def_property_readonly("part", [](SlotAxis const& s) { return s.axis.getMachinePartId().id(); },
                             "The machine part id the axis came from; empty when none")
      .def("__repr__", &axisRepr);

  py::class_<MachineConfiguration> configuration(
      module, "MachineConfiguration",
      "The machine as a post-processor script sees it: linear slots X, Y, Z, rotary slots U, V, W, and the rotary "
      "mathematics. Angles and ABC triples are in degrees (the library works in radians); positions in mm. Failures "
      "raise mtkit.ScriptError with the library's sentence.");
  configuration.def(py::init<>(), "Three linear head axes X, Y, Z and nothing else")
      .def_static("from_xml", [](std::string const& text) {
        return std::unique_ptr<MachineConfiguration>(MachineConfiguration::createFromXML(Orvo::Messages::utf8ToWide(text)));
      }, py::arg("text"), "Read a configuration XML document given as text")
      .def_static("from_file", &fromFile, py::arg("path"),
                  "Read a configuration XML file, with the files it inherits from")
      .def_static("from_machine_file", &fromMachineFile, py::arg("path"),
                  "Make the configuration of a machine file (with a live tool) or an MTK file")
      .def("xml", [](MachineConfiguration const& c) { return utf8(c.getXML()); }, "The configuration as XML text")
      .def_property_readonly("kind", &kindText, "\"3 axes\", \"4 axes, table\", \"5 axes, head-table\", ...")
      .def_property_readonly("number_of_axes", &MachineConfiguration::getNumberOfAxes)
      .def_property_readonly("axes", [](MachineConfiguration const& c) {
        py::list axes;
        for (int id = 0; id < 6; ++id)
          if (c.getAxisById(static_cast<MachineConfiguration::AxisId>(id)).isEnabled()) axes.append(slotAxis(c, id));
        return axes;
      }, "The enabled axes in slot order X, Y, Z, U, V, W")
      .def("axis", [](MachineConfiguration const& c, std::string const& slot) {
        for (int id = 0; id < 6; ++id)
          if (slot == kSlotNames[id]) return slotAxis(c, id);
        return SlotAxis{slot, c.getAxisByName(Orvo::Messages::utf8ToWide(slot))};  // raises "Invalid axis."
      }, py::arg("slot"), "The axis of a slot, \"X\" to \"W\", enabled or not")
      .def_property_readonly("spindle_axis", [](MachineConfiguration const& c) { return c.getSpindleAxis(); })
      .def_property("tool_length", &MachineConfiguration::getToolLength, &MachineConfiguration::setToolLength,
                    "The tool length in mm")
      .def_property_readonly("description", [](MachineConfiguration const& c) { return utf8(c.getDescription()); })
      .def_property_readonly("vendor", [](MachineConfiguration const& c) { return utf8(c.getVendor()); })
      .def_property_readonly("model", [](MachineConfiguration const& c) { return utf8(c.getModel()); })
      .def_property_readonly("is_supported", &MachineConfiguration::isSupported,
                             "True when the axes make a configuration the solver supports")
      .def_property_readonly("validity_status", &MachineConfiguration::getValidityStatus,
                             "0 when supported, else the first check that fails")
      .def("abc_by_direction_both", [](MachineConfiguration const& c, py::object const& direction) {
        auto const both = c.getABCByDirectionBoth(toVector(direction));
        return py::make_tuple(toDegrees(both.first), toDegrees(both.second));
      }, py::arg("direction"),
         "The two ABC solutions in degrees that point the tool along `direction`, the one nearer zero on the first "
         "rotary axis first")
      .def("preferred_abc", [](MachineConfiguration const& c, py::object const& abc) {
        return toDegrees(c.getPreferredABC(toRadians(abc)));
      }, py::arg("abc"), "The solution for the direction of `abc` that honours the axes' preferences (degrees)")
      .def("remap_abc", [](MachineConfiguration const& c, py::object const& abc) {
        return toDegrees(c.remapABC(toRadians(abc)));
      }, py::arg("abc"), "Each rotary value moved by whole turns into its axis's range (degrees)")
      .def("closest_abc", [](MachineConfiguration const& c, py::object const& previous, py::object const& abc) {
        return toDegrees(c.getClosestABC(toRadians(previous), toRadians(abc)));
      }, py::arg("previous"), py::arg("abc"),
         "Of the two solutions for the direction of `abc`, the one with the least rotary travel from `previous` "
         "(degrees)")
      .def("other_abc_by_direction", [](MachineConfiguration const& c, py::object const& abc) {
        return toDegrees(c.getOtherABCByDirection(toRadians(abc)));
      }, py::arg("abc"), "The other solution for the tool direction of `abc` (degrees)")
      .def("remap_to_abc", [](MachineConfiguration const& c, py::object const& abc, py::object const& reference) {
        return toDegrees(c.remapToABC(toRadians(abc), toRadians(reference)));
      }, py::arg("abc"), py::arg("reference"),
         "Each rotary value of `abc` moved by whole turns to the one nearest `reference`'s (degrees); 0 where no "
         "axis is")
      .def("abc_by_preference", &abcByPreference, py::arg("orientation"), py::arg("current"),
           py::arg("controlling_axis") = "ABC", py::arg("type") = "preference", py::arg("reset_axes") = false,
           py::arg("adjust_last_axis") = false,
           "The solution for the forward direction of `orientation` (a Matrix) that suits `type` on "
           "`controlling_axis`, from `current` (degrees). controlling_axis: \"A\", \"B\", \"C\" or \"ABC\"; type: "
           "\"preference\", \"closest\", \"positive\", \"negative\", \"increasing\" or \"decreasing\". "
           "reset_axes counts axes that reset from 0; adjust_last_axis lets the last rotary axis take up the turn "
           "left of the orientation when the tool lies along it.")
      .def("preserve_rotary_at_zero", [](MachineConfiguration const& c, py::object const& direction,
                                         py::object const& previous, py::object const& abc) {
        return toDegrees(c.preserveRotaryAtZero(toVector(direction).getNormalized(), toRadians(previous), toRadians(abc)));
      }, py::arg("direction"), py::arg("previous"), py::arg("abc"),
         "With the tool along the last rotary axis, `abc` with that axis kept at its value in `previous` (degrees), "
         "so that it does not jump at the pole; `abc` itself otherwise")
      .def("direction", [](MachineConfiguration const& c, py::object const& abc) {
        return c.getDirection(toRadians(abc));
      }, py::arg("abc"), "The tool direction of the rotary values `abc` (degrees)")
      .def("orientation", [](MachineConfiguration const& c, py::object const& abc) {
        return c.getOrientation(toRadians(abc));
      }, py::arg("abc"), "The rotation of the rotary chain at `abc` (degrees)")
      .def("orientation_abc", [](MachineConfiguration const& c, py::object const& abc) {
        return c.getOrientationABC(toRadians(abc));
      }, py::arg("abc"), "The orientation that takes Z to the tool direction of `abc` (degrees)")
      .def("optimized_position", [](MachineConfiguration const& c, py::object const& position, py::object const& abc,
                                    int tcpType, int optimizeType, bool force) {
        return c.getOptimizedPosition(toVector(position), toRadians(abc), tcpType, optimizeType, force);
      }, py::arg("position"), py::arg("abc"), py::arg("tcp_type") = int(MachineConfiguration::TCP_REVERSE),
         py::arg("optimize_type") = int(MachineConfiguration::OPTIMIZE_BOTH), py::arg("force") = false,
         "The position (mm) compensated for the rotary axes at `abc` (degrees) that the control does not follow; "
         "all of them with force=True")
      .def("is_abc_supported", [](MachineConfiguration const& c, py::object const& abc) {
        return c.isABCSupported(toRadians(abc));
      }, py::arg("abc"), "Every limited rotary axis has its value of `abc` (degrees) in range")
      .def("is_direction_supported", [](MachineConfiguration const& c, py::object const& direction) {
        return c.isDirectionSupported(toVector(direction));
      }, py::arg("direction"), "The tool can point along `direction` with the rotary axes in range")
      .def("__repr__", [](MachineConfiguration const& c) {
        std::string text = "MachineConfiguration(" + kindText(c);
        for (int id = 3; id < 6; ++id) {
          Axis const& axis = c.getAxisById(static_cast<MachineConfiguration::AxisId>(id));
          if (axis.isEnabled()) text += ", " + coordinateLetter(axis).value_or("?") + (axis.isTable() ? " table" : " head");
        }
        return text + ")";
      });
  addFastMethods(configuration, kConfigurationFastMethods);
  configuration.attr("TCP_FORWARD") = int(MachineConfiguration::TCP_FORWARD);
  configuration.attr("TCP_REVERSE") = int(MachineConfiguration::TCP_REVERSE);
  configuration.attr("TCP_FORWARD_IF_NOT_OPTIMIZED") = int(MachineConfiguration::TCP_FORWARD_IF_NOT_OPTIMIZED);
  configuration.attr("TCP_REVERSE_IF_OPTIMIZED") = int(MachineConfiguration::TCP_REVERSE_IF_OPTIMIZED);
  configuration.attr("OPTIMIZE_BOTH") = int(MachineConfiguration::OPTIMIZE_BOTH);
  configuration.attr("OPTIMIZE_TABLES") = int(MachineConfiguration::OPTIMIZE_TABLES);
  configuration.attr("OPTIMIZE_HEADS") = int(MachineConfiguration::OPTIMIZE_HEADS);
}

}  // namespace

void bindScript(py::module_& module) {
  bindVector(module);
  bindMatrix(module);
  bindConfiguration(module);
}

}  // namespace mtkit_python
