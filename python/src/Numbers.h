#pragma once
// Numbers out of a Python list or tuple without the copies of a generic
// conversion: the per-call arguments of the hot calls (a pose, a direction)
// are read here straight from the sequence's items.

#include <pybind11/pybind11.h>

#include <cstddef>

namespace mtkit_python {

/// When `sequence` is a list or tuple of exactly `count` Python floats or
/// ints, writes them to `out` and returns true. Returns false, having
/// written nothing that counts, for anything else (another length, another
/// kind of sequence, an item that is not a plain number), so that the caller
/// takes its general conversion with that conversion's own errors.
inline bool plainNumbers(pybind11::handle sequence, double* out, std::size_t count) {
  PyObject* const object = sequence.ptr();
  if (!PyList_CheckExact(object) && !PyTuple_CheckExact(object)) return false;
  if (static_cast<std::size_t>(PySequence_Fast_GET_SIZE(object)) != count) return false;
  PyObject** const items = PySequence_Fast_ITEMS(object);
  for (std::size_t i = 0; i < count; ++i) {
    PyObject* const item = items[i];
    if (PyFloat_CheckExact(item)) {
      out[i] = PyFloat_AS_DOUBLE(item);
    } else if (PyLong_CheckExact(item)) {
      out[i] = PyLong_AsDouble(item);
      // An int too large for a double: the general conversion says so.
      if (out[i] == -1.0 && PyErr_Occurred()) {
        PyErr_Clear();
        return false;
      }
    } else {
      return false;
    }
  }
  return true;
}

}  // namespace mtkit_python
