#ifndef ORBEL_PYTHON_OBJECT_HPP
#define ORBEL_PYTHON_OBJECT_HPP

#include <pybind11/pybind11.h>

#include <orbel/Value.hpp>

namespace orbel::python {

// The Python object for an object of a host class: a host handle, and a reference to the object
// that owns the host object. Objects are equal, and hash equal, when they refer to the same host
// object, living or not.
struct Object {
  PyObject_HEAD Value value;  // always a Handle
  PyObject* owner;            // null when nothing is kept alive
  PyObject* weakReferences;

  const Handle& handle() const { return *value.get<Handle>(); }
};

// The base of all classes made for host classes, without members of its own.
PyTypeObject* objectType();

// `object` as an Object, or null.
inline Object* asObject(PyObject* object) {
  return PyObject_TypeCheck(object, objectType()) ? reinterpret_cast<Object*>(object) : nullptr;
}

// A new Python object of the actual class of what `handle` refers to. It keeps `owner` (may be
// null) alive. Null with a Python exception set when memory runs out.
PyObject* newObject(const Handle& handle, PyObject* owner);

// The owner of objects that are obtained from `object` (borrowed, may be null): the object itself
// when a script made it, else its own owner.
PyObject* ownerOfResults(Object& object);

// For Module.cpp: makes the type and adds it to `module`.
void addObjectType(pybind11::module_& module);

}  // namespace orbel::python

#endif
