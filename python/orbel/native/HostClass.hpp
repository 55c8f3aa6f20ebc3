#ifndef ORBEL_PYTHON_HOSTCLASS_HPP
#define ORBEL_PYTHON_HOSTCLASS_HPP

#include <string>

#include <pybind11/pybind11.h>

#include <orbel/ClassInfo.hpp>
#include <orbel/Handle.hpp>

// Python classes, each built from the definition of a host class when it is first needed and kept
// from then on. Scripts neither derive from them nor change them.
namespace orbel::python {

// The Python class of a defined host class; borrowed.
PyTypeObject* typeOf(const ClassInfo& info);

// The Python class of what `handle` refers to; of an object that was destroyed before its class was
// looked up, the base of all. Raises "UnknownClass" for an object of a class that no package has.
PyTypeObject* typeOf(const Handle& handle);

// The host class of a Python class; null for any other type.
const ClassInfo* classInfoOf(PyTypeObject* type);

// "Package.Class".
std::string displayName(PyTypeObject* type);

// For Module.cpp: makes the class of the classes and adds it to `module`.
void addClassType(pybind11::module_& module);

}  // namespace orbel::python

#endif
