#pragma once
// Methods with the interpreter's fast calling convention, for the calls a
// script makes in its inner loops. pybind11's dispatcher builds argument
// vectors on the heap and a bound method object for every call, about
// 100 ns here, more than a forward kinematics or an orientation solve; a
// plain method descriptor of the type is called without either.

#include <pybind11/pybind11.h>

#include <cstddef>
#include <string>

namespace mtkit_python {

/// Binds the arguments of a fast method by position or by keyword as Python
/// does: `names` in order, the first `required` of them required; TypeError
/// with Python's words otherwise.
template <std::size_t N>
inline void bindArguments(char const* call, PyObject* const* args, Py_ssize_t count, PyObject* keywords,
                   char const* const (&names)[N], std::size_t required, PyObject* (&bound)[N]) {
  for (PyObject*& argument : bound) argument = nullptr;
  std::size_t const positional = static_cast<std::size_t>(PyVectorcall_NARGS(count));
  if (positional > N)
    throw pybind11::type_error(std::string(call) + " takes at most " + std::to_string(N) + " argument" + (N == 1 ? "" : "s") +
                         " (" + std::to_string(positional) + " given)");
  for (std::size_t i = 0; i < positional; ++i) bound[i] = args[i];
  Py_ssize_t const named = keywords ? PyTuple_GET_SIZE(keywords) : 0;
  for (Py_ssize_t i = 0; i < named; ++i) {
    std::string const name = pybind11::str(PyTuple_GET_ITEM(keywords, i));
    std::size_t slot = 0;
    while (slot < N && name != names[slot]) ++slot;
    if (slot == N) throw pybind11::type_error(std::string(call) + " got an unexpected keyword argument '" + name + "'");
    if (bound[slot]) throw pybind11::type_error(std::string(call) + " got multiple values for argument '" + name + "'");
    bound[slot] = args[positional + static_cast<std::size_t>(i)];
  }
  for (std::size_t i = 0; i < required; ++i)
    if (!bound[i]) throw pybind11::type_error(std::string(call) + " missing required argument '" + names[i] + "'");
}

/// Runs the body of a fast method, turning C++ exceptions into the Python
/// errors they stand for through the translators pybind11's own functions
/// use: the module's (mtkit.ScriptError, ValueError for texts that do not
/// parse), then pybind11's (a set Python error, TypeError, ValueError...).
template <typename Body>
PyObject* guarded(Body const& body) noexcept {
  try {
    return body();
  } catch (...) {
    namespace detail = pybind11::detail;
    if (!detail::apply_exception_translators(detail::get_local_internals().registered_exception_translators) &&
        !detail::apply_exception_translators(detail::get_internals().registered_exception_translators))
      PyErr_SetString(PyExc_SystemError, "an exception escaped the translation of C++ exceptions");
  }
  return nullptr;
}

template <PyObject* (*Method)(PyObject*, PyObject* const*, Py_ssize_t, PyObject*) noexcept>
constexpr PyCFunction fastCall() {
  return reinterpret_cast<PyCFunction>(reinterpret_cast<void (*)()>(Method));
}

/// Adds each method to the class `type` (a pybind11 class object).
template <std::size_t N>
void addFastMethods(pybind11::handle type, PyMethodDef (&methods)[N]) {
  for (PyMethodDef& definition : methods) {
    pybind11::object const method = pybind11::reinterpret_steal<pybind11::object>(
        PyDescr_NewMethod(reinterpret_cast<PyTypeObject*>(type.ptr()), &definition));
    if (!method) throw pybind11::error_already_set();
    type.attr(definition.ml_name) = method;
  }
}

}  // namespace mtkit_python
