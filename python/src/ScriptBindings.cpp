#include <pybind11/pybind11.h>

#include "Bindings.h"

namespace py = pybind11;

namespace mtkit_python {

void bindScript(py::module_& /*module*/) {}

}  // namespace mtkit_python
