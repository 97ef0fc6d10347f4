#pragma once
// What the bindings of machine files, definitions and the runtime machine
// share: NumPy forms of points and frames, JSON as Python values, and reading
// and loading files the way the command-line tool does, with Python's own
// exceptions (OSError for a file that cannot be read, ValueError for one that
// cannot be used).

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <json/value.h>

#include <memory>
#include <string>

#include "machine/machine/KinematicsDefinition.h"
#include "machine/machine/Machine.h"
#include "machine/machine/MachineDefinition.h"
#include "machine/machine/MachineFileLoader.h"
#include "util/utility/math/Frame.h"
#include "util/utility/math/Point3D.h"
#include "util/utility/math/Vector3D.h"

namespace mtkit_python {

/// Definitions of files, features, parts and axes.
void bindDefinitions(pybind11::module_& module);
/// The runtime machine and its solver.
void bindRuntimeMachine(pybind11::module_& module);

/// A float64 array of shape (3,).
pybind11::array_t<double> vectorArray(double x, double y, double z);
inline pybind11::array_t<double> vectorArray(Orvo::Vector3D const& v) { return vectorArray(v.x, v.y, v.z); }
inline pybind11::array_t<double> vectorArray(Orvo::Point3D const& p) { return vectorArray(p.x, p.y, p.z); }
/// A frame as a 4x4 float64 homogeneous matrix: its x, y and z axes and its
/// origin as the columns, (0, 0, 0, 1) as the last row.
pybind11::array_t<double> frameMatrix(Orvo::Frame const& frame);
/// Three finite or infinite numbers from any sequence of three numbers.
Orvo::Point3D pointFrom(pybind11::handle sequence, char const* what);

/// JSON as Python sees it: dict, list, str, int, float, bool, None. Object
/// members come in jsoncpp's (sorted) key order.
pybind11::object jsonToPython(Json::Value const& value);

/// The whole of the file, or an OSError (FileNotFoundError, IsADirectoryError,
/// PermissionError...) carrying the operating system's reason and the path.
std::string readFileOrRaise(std::string const& path);
/// Writes `text` to the file, or an OSError as above.
void writeFileOrRaise(std::string const& path, std::string const& text);

/// The text of a machine file read by the library's reader; ValueError with
/// the reader's own message when it cannot be read.
std::shared_ptr<machine::MachineDefinition> readMachineText(std::string const& text);
/// The text of an MTK file read by the library's reader; ValueError with its
/// message.
std::shared_ptr<machine::KinematicsDefinition> readMtkText(std::string const& text);
/// A machine file read by the library's reader; ValueError with the reader's
/// own message when it cannot be read.
std::shared_ptr<machine::MachineDefinition> readMachineFile(std::string const& path);
/// An MTK file read by the library's reader; ValueError with its message.
std::shared_ptr<machine::KinematicsDefinition> readMtkFile(std::string const& path);

/// Either a machine file or an MTK file, loaded as the tool loads it
/// (machine::MachineFileLoader::load): OSError for a file that cannot be
/// read, ValueError with the loader's sentence naming the file otherwise.
machine::MachineFileLoader::LoadedFile loadFileOrRaise(std::string const& path);

/// The machine built by machine::MachineFileLoader, or an OSError for a file
/// that could not be read and a ValueError with the loader's text otherwise.
std::shared_ptr<machine::Machine> machineOrRaise(machine::MachineFileLoader::BuiltMachine built,
                                                 std::string const& path = std::string());

/// "mm" for a linear axis, "deg" for a rotary one.
char const* unitWord(bool linear);

}  // namespace mtkit_python
