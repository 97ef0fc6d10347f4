#include "MachineBindingSupport.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <sstream>
#include <vector>

#include "Numbers.h"
#include "machine/machine/MTKReader.h"
#include "machine/machine/MachineDefinitionReader.h"
#include "util/utility/Messages.h"

namespace py = pybind11;

namespace mtkit_python {

namespace {

[[noreturn]] void raiseOsError(int error, std::string const& path) {
  errno = error;
  PyErr_SetFromErrnoWithFilename(PyExc_OSError, path.c_str());
  throw py::error_already_set();
}

std::shared_ptr<machine::MachineDefinition> machineFromText(std::string const& text) {
  std::istringstream in(text);
  machine::MachineDefinitionReaderResult result = machine::MachineDefinitionReader().read(in);
  if (result.isError()) throw py::value_error(result.getReadErrorMessage());
  return std::shared_ptr<machine::MachineDefinition>(result.getMachineDefinition());
}

std::shared_ptr<machine::KinematicsDefinition> kinematicsFromText(std::string const& text) {
  std::istringstream in(text);
  machine::MTKReadResult result = machine::MTKReader::read(in);
  if (result.getReadErrorType() != machine::MTKReadErrorType::NONE)
    throw py::value_error(Orvo::Messages::wideToUtf8(result.getReadErrorMessage()));
  return std::shared_ptr<machine::KinematicsDefinition>(result.getKinematicsDefinition());
}

}  // namespace

std::shared_ptr<machine::MachineDefinition> readMachineText(std::string const& text) { return machineFromText(text); }

std::shared_ptr<machine::KinematicsDefinition> readMtkText(std::string const& text) { return kinematicsFromText(text); }

py::array_t<double> vectorArray(double x, double y, double z) {
  // Made through NumPy's own constructor: pybind11's array_t(3) builds a
  // shape and a strides vector on the heap first, which costs as much as the
  // call itself for three numbers.
  auto const& api = py::detail::npy_api::get();
  Py_intptr_t dimensions[1] = {3};
  PyObject* const made = api.PyArray_NewFromDescr_(api.PyArray_Type_, api.PyArray_DescrFromType_(py::detail::npy_api::NPY_DOUBLE_),
                                                   1, dimensions, nullptr, nullptr, 0, nullptr);
  if (!made) throw py::error_already_set();
  auto array = py::reinterpret_steal<py::array_t<double>>(made);
  double* const data = array.mutable_data();
  data[0] = x;
  data[1] = y;
  data[2] = z;
  return array;
}

py::array_t<double> frameMatrix(Orvo::Frame const& frame) {
  py::array_t<double> array({4, 4});
  auto m = array.mutable_unchecked<2>();
  Orvo::Vector3D const axes[3] = {frame.xAxis(), frame.yAxis(), frame.zAxis()};
  for (int column = 0; column < 3; ++column) {
    m(0, column) = axes[column].x;
    m(1, column) = axes[column].y;
    m(2, column) = axes[column].z;
    m(3, column) = 0.0;
  }
  Orvo::Point3D const o = frame.origin();
  m(0, 3) = o.x;
  m(1, 3) = o.y;
  m(2, 3) = o.z;
  m(3, 3) = 1.0;
  return array;
}

Orvo::Point3D pointFrom(py::handle sequence, char const* what) {
  double v[3];
  if (plainNumbers(sequence, v, 3)) return Orvo::Point3D(v[0], v[1], v[2]);
  auto const values = py::cast<std::vector<double>>(sequence);
  if (values.size() != 3)
    throw py::value_error(std::string(what) + " needs 3 numbers (x, y, z), got " + std::to_string(values.size()));
  return Orvo::Point3D(values[0], values[1], values[2]);
}

py::object jsonToPython(Json::Value const& value) {
  switch (value.type()) {
    case Json::nullValue: return py::none();
    case Json::intValue: return py::int_(value.asLargestInt());
    case Json::uintValue: return py::int_(value.asLargestUInt());
    case Json::realValue: return py::float_(value.asDouble());
    case Json::stringValue: return py::str(value.asString());
    case Json::booleanValue: return py::bool_(value.asBool());
    case Json::arrayValue: {
      py::list list;
      for (Json::Value const& item : value) list.append(jsonToPython(item));
      return std::move(list);
    }
    case Json::objectValue: {
      py::dict dict;
      for (auto it = value.begin(); it != value.end(); ++it) dict[py::str(it.name())] = jsonToPython(*it);
      return std::move(dict);
    }
  }
  return py::none();
}

std::string readFileOrRaise(std::string const& path) {
  machine::MachineFileLoader::FileText file = machine::MachineFileLoader::readFile(path);
  if (!file.ok()) raiseOsError(file.errorNumber, path);
  return std::move(file.text);
}

void writeFileOrRaise(std::string const& path, std::string const& text) {
  int const descriptor = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  if (descriptor < 0) raiseOsError(errno, path);
  std::size_t done = 0;
  while (done < text.size()) {
    ssize_t const put = ::write(descriptor, text.data() + done, text.size() - done);
    if (put < 0) {
      if (errno == EINTR) continue;
      int const error = errno;
      ::close(descriptor);
      raiseOsError(error, path);
    }
    done += static_cast<std::size_t>(put);
  }
  if (::close(descriptor) != 0) raiseOsError(errno, path);
}

std::shared_ptr<machine::MachineDefinition> readMachineFile(std::string const& path) {
  return readMachineText(readFileOrRaise(path));
}

std::shared_ptr<machine::KinematicsDefinition> readMtkFile(std::string const& path) {
  return readMtkText(readFileOrRaise(path));
}

machine::MachineFileLoader::LoadedFile loadFileOrRaise(std::string const& path) {
  machine::MachineFileLoader::LoadedFile loaded = machine::MachineFileLoader::load(path);
  if (loaded.errorNumber != 0) raiseOsError(loaded.errorNumber, path);
  if (!loaded.ok()) throw py::value_error(loaded.error);
  return loaded;
}

std::shared_ptr<machine::Machine> machineOrRaise(machine::MachineFileLoader::BuiltMachine built,
                                                 std::string const& path) {
  if (built.errorNumber != 0) raiseOsError(built.errorNumber, path);
  if (!built.ok()) throw py::value_error(built.error);
  return std::shared_ptr<machine::Machine>(std::move(built.machine));
}

char const* unitWord(bool linear) { return linear ? "mm" : "deg"; }

}  // namespace mtkit_python
