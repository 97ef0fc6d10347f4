#include <pybind11/pybind11.h>

#include "Bindings.h"
#include "MachineBindingSupport.h"

namespace py = pybind11;

namespace mtkit_python {

void bindMachine(py::module_& module) {
  bindDefinitions(module);
  bindRuntimeMachine(module);
}

}  // namespace mtkit_python
