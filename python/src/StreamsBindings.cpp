// mtkit.replay: a recorded stream through the machine's chain. The loop runs
// in C++ without the GIL; Python gets the poses as NumPy arrays, made once
// over the vectors the replay filled, without a copy.

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <cstdint>
#include <sstream>

#include "Bindings.h"
#include "ReplayRun.h"

namespace py = pybind11;

namespace mtkit_python {

namespace {

/// A NumPy array that owns `values` (moved), shaped `shape`.
template <typename T>
py::array_t<T> ownedArray(std::vector<T>&& values, std::vector<py::ssize_t> shape) {
  auto* owned = new std::vector<T>(std::move(values));
  py::capsule keeper(owned, [](void* p) { delete static_cast<std::vector<T>*>(p); });
  return py::array_t<T>(shape, owned->data(), keeper);
}

std::string quoted(std::string const& text) { return py::repr(py::str(text)).cast<std::string>(); }

struct PyIssue {
  int code = 0;
  std::string severity;
  std::string text;
  long line = 0;
};

struct PyReplay {
  std::string machine;
  std::string stream;
  bool solverOnly = false;
  py::list axisNames;
  py::list axisUnits;
  py::array_t<double> poses;
  py::array_t<std::int64_t> lines;
  py::dict limits;
  py::list issues;
  py::list solveFailures;
  py::array_t<double> toolDirections;
};

std::string pathText(py::object const& path) {
  return py::module_::import("os").attr("fspath")(path).cast<std::string>();
}

PyReplay replay(py::object const& machinePath, py::object const& streamPath, py::object const& toolsPath,
                bool solverOnly) {
  ReplayOptions options;
  options.machinePath = pathText(machinePath);
  options.streamPath = pathText(streamPath);
  if (!toolsPath.is_none()) options.toolsPath = pathText(toolsPath);
  options.solverOnly = solverOnly;
  ReplayResult result;
  try {
    py::gil_scoped_release release;
    result = runReplay(options);
  } catch (ReplayFileError const& e) {
    PyErr_SetString(PyExc_OSError, e.what());
    throw py::error_already_set();
  } catch (ReplayInputError const& e) {
    throw py::value_error(e.what());
  }

  PyReplay out;
  out.machine = options.machinePath;
  out.stream = options.streamPath;
  out.solverOnly = solverOnly;
  py::ssize_t const n = static_cast<py::ssize_t>(result.numPoses());
  py::ssize_t const width = static_cast<py::ssize_t>(result.axisNames.size());
  for (std::size_t i = 0; i < result.axisNames.size(); ++i) {
    out.axisNames.append(result.axisNames[i]);
    out.axisUnits.append(result.axisUnits[i]);
    auto const& limit = result.limits[i];
    out.limits[py::str(result.axisNames[i])] =
        limit ? py::object(py::make_tuple(limit->first, limit->second)) : py::object(py::none());
  }
  out.poses = ownedArray(std::move(result.poses), {n, width});
  out.lines = ownedArray(std::move(result.lines), {n});
  out.toolDirections = ownedArray(std::move(result.toolDirections), {n, py::ssize_t(3)});
  for (ReplayIssue& issue : result.issues)
    out.issues.append(PyIssue{issue.code, std::move(issue.severity), std::move(issue.text), issue.line});
  for (long line : result.solveFailures) out.solveFailures.append(line);
  return out;
}

}  // namespace

void bindStreams(py::module_& module) {
  py::class_<PyIssue>(module, "Issue", "A problem a replay met: the stream's own, the chain's or the travel check's.")
      .def_readonly("code", &PyIssue::code,
                    "The issue code: 8 a failed solve, 19 a post warning, 100 an axis out of travel, ...")
      .def_readonly("severity", &PyIssue::severity,
                    "\"warning\", \"error\", \"information\", \"fatal\" or \"none\", by the code")
      .def_readonly("text", &PyIssue::text, "The message, as the chain or the stream file gave it")
      .def_readonly("line", &PyIssue::line, "The stream line of the event that raised it; 0 when unknown")
      .def("__repr__", [](PyIssue const& issue) {
        return "Issue(code=" + std::to_string(issue.code) + ", severity=" + quoted(issue.severity) +
               ", line=" + std::to_string(issue.line) + ", text=" + quoted(issue.text) + ")";
      });

  py::class_<PyReplay>(module, "Replay",
                       "The outcome of mtkit.replay: the poses of a recorded stream and what went wrong on the way.")
      .def_readonly("machine_path", &PyReplay::machine, "The machine file or MTK file replayed on")
      .def_readonly("stream_path", &PyReplay::stream, "The stream text file replayed")
      .def_readonly("solver_only", &PyReplay::solverOnly, "True when the solver ran alone, without the standard chain")
      .def_readonly("axis_names", &PyReplay::axisNames,
                    "The machine's axes, chain axes first, as `mtkit simulate` orders and names them")
      .def_readonly("axis_units", &PyReplay::axisUnits, "\"mm\" or \"deg\" for each axis")
      .def_readonly("poses", &PyReplay::poses,
                    "float64 array (n, len(axis_names)): one row per pose, mm and degrees; NaN where the solver "
                    "failed or the stream's ordering has no such axis")
      .def_readonly("lines", &PyReplay::lines, "int64 array (n,): the stream line of each pose's motion (0 when unknown)")
      .def_readonly("limits", &PyReplay::limits,
                    "dict axis name -> (min, max) as the travel check applies it, or None for an axis without limit")
      .def_readonly("issues", &PyReplay::issues, "list of mtkit.Issue, in the order they came")
      .def_readonly("solve_failures", &PyReplay::solveFailures,
                    "The stream lines at which the solver failed (issues the stream recorded itself are left out)")
      .def_readonly("tool_directions", &PyReplay::toolDirections,
                    "float64 array (n, 3): the tool axis at each pose in table coordinates, by the machine's forward "
                    "kinematics (a unit vector from the tip into the spindle); NaN rows for poses whose rotary "
                    "values are not all known")
      .def("__len__", [](PyReplay const& r) { return r.lines.size(); }, "The number of poses")
      .def("__repr__", [](PyReplay const& r) {
        std::ostringstream text;
        text << "Replay(machine=" << quoted(r.machine) << ", stream=" << quoted(r.stream) << ", axes=[";
        for (std::size_t i = 0; i < r.axisNames.size(); ++i)
          text << (i ? ", " : "") << quoted(r.axisNames[i].cast<std::string>());
        text << "], poses=" << r.lines.size() << ", issues=" << r.issues.size()
             << ", solve_failures=" << r.solveFailures.size() << (r.solverOnly ? ", solver_only=True" : "") << ")";
        return text.str();
      });

  module.def("replay", &replay, py::arg("machine_path"), py::arg("stream_path"), py::kw_only(),
             py::arg("tools") = py::none(), py::arg("solver_only") = false,
             R"doc(Replay a recorded stream text file on a machine, as `mtkit simulate` does.

The stream goes through the standard chain (catch errors, radius compensation,
solver), or with solver_only=True through the solver alone, then the travel
check, which raises issue 100 for each axis out of its travel. The poses come
back in the machine's axis order (chain axes first), lengths in mm and rotary
axes in degrees.

machine_path: a machine file or an MTK file (*.mtk).
stream_path: a simulation stream text file.
tools: a JSON file mapping operation ids to tools, for cutter compensation
    ({"3": {"tool": 3, "radius": 5, "unit": "mm"}}), as `mtkit simulate --tools`.

Raises OSError for a file that cannot be read and ValueError for a file that
is not what it should be or a stream the chain refuses, with the reason.)doc");
}

}  // namespace mtkit_python
