#ifndef ORBEL_PYTHON_TOPYTHON_HPP
#define ORBEL_PYTHON_TOPYTHON_HPP

#include <pybind11/pybind11.h>

#include <orbel/Value.hpp>

#include "python/orbel/native/Object.hpp"

namespace orbel::python {

// The Python object for a host value, a new reference; null with a Python exception set when memory
// runs out.
//
//   missing value, 0-by-0 object array   None     cell array      list
//   logical                              bool     string array    orbel.StringArray
//   unsigned 32-bit                      int      object          an orbel.Object of its class
//   double                               float    object array    orbel.ObjectArray
//   character array                      str
//
// `source` is the object that the value was obtained from, or null: it stays alive, as far as
// scripts decide that, as long as the objects in the result do.
PyObject* toPython(const Value& value, Object* source);

}  // namespace orbel::python

#endif
