#ifndef ORBEL_PYTHON_MEMBERS_HPP
#define ORBEL_PYTHON_MEMBERS_HPP

#include <pybind11/pybind11.h>

#include <orbel/Method.hpp>
#include <orbel/Property.hpp>

// The descriptors of a Python class for the members of a host class. They are looked up once, when
// the class is made; a call goes from the interpreter straight to the host's method or property.
namespace orbel::python {

// Callable with the object first; an attribute of an object, it is bound to it.
pybind11::object newMethod(const Method& method);

// A data descriptor of `type`.
pybind11::object newProperty(PyTypeObject* type, const Property& property);

// For Module.cpp: makes the type of methods and adds it to `module`.
void addMethodType(pybind11::module_& module);

}  // namespace orbel::python

#endif
