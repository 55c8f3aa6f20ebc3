#ifndef ORBEL_PYTHON_ARRAYS_HPP
#define ORBEL_PYTHON_ARRAYS_HPP

#include <pybind11/pybind11.h>

#include <orbel/ObjectArray.hpp>
#include <orbel/StringArray.hpp>

// The two array types of the Python side, which are Python classes (orbel/_arrays.py).
namespace orbel::python {

// Whether `object` is an orbel.StringArray, which is a tuple.
bool isStringArray(PyObject* object);

pybind11::object newStringArray(const StringArray& strings);

// `elements` are the objects of `objects`, converted.
pybind11::object newObjectArray(const ObjectArray& objects, const pybind11::tuple& elements);

// For Module.cpp: imports both, so that no conversion has to.
void findArrayTypes();

}  // namespace orbel::python

#endif
