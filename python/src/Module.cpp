// The Python extension `mtkit._mtkit`. Each part of the library binds itself
// in a function of its own, in a source file of its own, so that the parts
// can grow apart.

#include <pybind11/pybind11.h>

#include "Bindings.h"

PYBIND11_MODULE(_mtkit, module) {
  module.doc() = "mtkit: machine tool kinematics for computer-aided manufacturing";
  module.attr("__version__") = MTKIT_VERSION;
  mtkit_python::bindErrors(module);
  mtkit_python::bindMachine(module);
  mtkit_python::bindScript(module);
  mtkit_python::bindStreams(module);
}
