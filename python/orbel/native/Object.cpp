#include "python/orbel/native/Object.hpp"

#include <Python.h>
#include <functional>
#include <new>
#include <optional>
#include <string>
#include <structmember.h>

#include <pybind11/pybind11.h>

#include <orbel/ClassInfo.hpp>
#include <orbel/Diagnostics.hpp>

#include "python/orbel/native/Documentation.hpp"
#include "python/orbel/native/Errors.hpp"
#include "python/orbel/native/FromPython.hpp"
#include "python/orbel/native/HostClass.hpp"
#include "python/orbel/native/Text.hpp"
#include "python/orbel/native/ToPython.hpp"

namespace orbel::python {
namespace {

PyTypeObject* theObjectType = nullptr;

Object& self(PyObject* object) { return *reinterpret_cast<Object*>(object); }

PyObject* allocate(PyTypeObject* type, const Handle& handle, PyObject* owner) {
  PyObject* object = type->tp_alloc(type, 0);
  if (object == nullptr) return nullptr;
  new (&self(object).value) Value(handle);
  Py_XINCREF(owner);
  self(object).owner = owner;
  return object;
}

PyObject* construct(PyTypeObject* type, PyObject* arguments, PyObject* keywords) {
  return guarded<PyObject*>(nullptr, [&] {
    const ClassInfo* info = classInfoOf(type);
    if (info == nullptr) {
      raisePython(PyExc_TypeError, std::string(type->tp_name) + " is no class of a host package");
    }
    if (keywords != nullptr && PyDict_GET_SIZE(keywords) != 0) {
      raisePython(PyExc_TypeError, info->qualifiedName() + " takes no keyword arguments");
    }
    const Value made = constructObject(*info, arguments);
    return allocate(type, *made.get<Handle>(), nullptr);
  });
}

int traverse(PyObject* object, visitproc visit, void* arg) {
  Py_VISIT(Py_TYPE(object));
  Py_VISIT(self(object).owner);
  return 0;
}

int clear(PyObject* object) {
  Py_CLEAR(self(object).owner);
  return 0;
}

// The value is destroyed before the owner, which may own what it refers to.
void deallocate(PyObject* object) {
  PyTypeObject* type = Py_TYPE(object);
  PyObject_GC_UnTrack(object);
  if (self(object).weakReferences != nullptr) PyObject_ClearWeakRefs(object);
  self(object).value.~Value();
  Py_CLEAR(self(object).owner);
  type->tp_free(object);
  Py_DECREF(type);
}

// Objects of a class are distinguished by their first text property, or by address when there is
// none.
std::optional<std::string> distinctiveText(const Object& object) {
  const Property* property = firstTextProperty(*object.handle().identity().classInfo());
  if (property == nullptr) return std::nullopt;
  const auto value = checked(toPython(property->get(object.value), nullptr));
  return property->name() + "=" + std::string(pybind11::repr(value));
}

PyObject* represent(PyObject* object) {
  return guarded<PyObject*>(nullptr, [&] {
    const std::string name = "<" + displayName(Py_TYPE(object));
    if (!self(object).handle().isValid()) return newText(name + ", no longer exists>");
    if (const auto text = distinctiveText(self(object))) return newText(name + " " + *text + ">");
    return PyUnicode_FromFormat("%s at %p>", name.c_str(), self(object).handle().object());
  });
}

Py_hash_t hash(PyObject* object) {
  const auto value = std::hash<const void*>()(&self(object).handle().identity());
  return static_cast<Py_hash_t>(value >> 4U);  // never -1, which signals an error
}

PyObject* compare(PyObject* left, PyObject* right, int operation) {
  const Object* other = asObject(right);
  if (other == nullptr || (operation != Py_EQ && operation != Py_NE)) Py_RETURN_NOTIMPLEMENTED;
  const bool equal = self(left).handle() == other->handle();
  return PyBool_FromLong((operation == Py_EQ) == equal ? 1 : 0);
}

PyObject* refuseReduction(PyObject* object, PyObject* /*protocol*/) {
  return guarded<PyObject*>(nullptr, [&]() -> PyObject* {
    raisePython(PyExc_TypeError, "cannot copy or pickle a " + displayName(Py_TYPE(object)) +
                                     " object: it belongs to this process");
  });
}

}  // namespace

PyTypeObject* objectType() { return theObjectType; }

PyObject* newObject(const Handle& handle, PyObject* owner) {
  return allocate(typeOf(handle), handle, owner);
}

PyObject* ownerOfResults(Object& object) {
  return object.handle().identity().ownsObject() ? reinterpret_cast<PyObject*>(&object)
                                                 : object.owner;
}

void addObjectType(pybind11::module_& module) {
  static PyMemberDef members[] = {
      {"__weaklistoffset__", T_PYSSIZET, offsetof(Object, weakReferences), READONLY, nullptr},
      {nullptr, 0, 0, 0, nullptr}};
  static PyMethodDef methods[] = {
      {"__reduce_ex__", refuseReduction, METH_O, "Raises TypeError: host objects are not copied."},
      {nullptr, nullptr, 0, nullptr}};
  static char doc[] = "Base of the classes made for host classes.";
  static PyType_Slot slots[] = {{Py_tp_doc, doc},
                                {Py_tp_new, reinterpret_cast<void*>(&construct)},
                                {Py_tp_traverse, reinterpret_cast<void*>(&traverse)},
                                {Py_tp_clear, reinterpret_cast<void*>(&clear)},
                                {Py_tp_dealloc, reinterpret_cast<void*>(&deallocate)},
                                {Py_tp_repr, reinterpret_cast<void*>(&represent)},
                                {Py_tp_hash, reinterpret_cast<void*>(&hash)},
                                {Py_tp_richcompare, reinterpret_cast<void*>(&compare)},
                                {Py_tp_members, members},
                                {Py_tp_methods, methods},
                                {0, nullptr}};
  static PyType_Spec spec = {
      "orbel.Object", sizeof(Object), 0,
      Py_TPFLAGS_DEFAULT | Py_TPFLAGS_BASETYPE | Py_TPFLAGS_HAVE_GC | Py_TPFLAGS_IMMUTABLETYPE,
      slots};
  theObjectType = reinterpret_cast<PyTypeObject*>(checked(PyType_FromSpec(&spec)).release().ptr());
  module.attr("Object") = pybind11::handle(reinterpret_cast<PyObject*>(theObjectType));
}

}  // namespace orbel::python
