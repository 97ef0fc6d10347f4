#include <pybind11/pybind11.h>

#include "Bindings.h"
#include "util/utility/ParseException.h"
#include "util/utility/ScriptException.h"

namespace py = pybind11;

namespace mtkit_python {

void bindErrors(py::module_& module) {
  // A script-facing failure keeps its sentence; a text that cannot be read
  // as its format is a ValueError, as Python's own parsers raise.
  static py::exception<Orvo::ScriptException> scriptError(module, "ScriptError", PyExc_RuntimeError);
  py::register_exception_translator([](std::exception_ptr p) {
    try {
      if (p) std::rethrow_exception(p);
    } catch (Orvo::ScriptException const& e) {
      scriptError(e.what());
    } catch (Orvo::ParseException const& e) {
      PyErr_SetString(PyExc_ValueError, e.what());
    }
  });
}

}  // namespace mtkit_python
