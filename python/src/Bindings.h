#pragma once
// The binding functions of the extension, one per part of the library.

#include <pybind11/pybind11.h>

namespace mtkit_python {

/// Library exceptions as Python exceptions, with the library's texts.
void bindErrors(pybind11::module_& module);
/// Machine files, MTK files, definitions and features, the runtime machine
/// and its solver.
void bindMachine(pybind11::module_& module);
/// The script-facing model: Vector, Matrix, MachineConfiguration.
void bindScript(pybind11::module_& module);
/// Replaying recorded streams through the standard chain.
void bindStreams(pybind11::module_& module);

}  // namespace mtkit_python
