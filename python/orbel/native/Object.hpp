#ifndef ORBEL_PYTHON_OBJECT_HPP
#define ORBEL_PYTHON_OBJECT_HPP

#include <pybind11/pybind11.h>

#include <orbel/Value.hpp>

namespace orbel::python {

// How an object of a host class looks in Python: a host handle, and what has to stay alive for the
// object to stay alive. Objects are equal, and hash equal, when they refer to the same host object,
// living or not.
struct Object {
  PyObject_HEAD Value value;  // always a Handle
  PyObject* owner;            // null when nothing is kept alive
  PyObject* weakReferences;

  const Handle& handle() const { return *value.get<Handle>(); }
};

// The base of all classes that stand for host classes, without members of its own.
PyTypeObject* objectType();

// `object` as what it is, when it is an Object, else null.
inline Object* asObject(PyObject* object) {
  return PyObject_TypeCheck(object, objectType()) ? reinterpret_cast<Object*>(object) : nullptr;
}

// A new Python object of the actual class of what `handle` refers to. It keeps `owner` (may be
// null) alive. Null with a Python exception set when memory runs out.
PyObject* newObject(const Handle& handle, PyObject* owner);

// What objects that are obtained from `object` have to keep alive (borrowed, may be null): the
// object itself when a script made it, else what it keeps alive itself.
PyObject* ownerOfResults(Object& object);

// For Module.cpp: makes the type and adds it to `module`.
void addObjectType(pybind11::module_& module);

}  // namespace orbel::python

#endif
