#include "python/orbel/native/HostClass.hpp"

#include <algorithm>
#include <unordered_map>

#include <orbel/Diagnostics.hpp>
#include <orbel/PackageInterface.hpp>

#include "python/orbel/native/Documentation.hpp"
#include "python/orbel/native/Errors.hpp"
#include "python/orbel/native/Members.hpp"
#include "python/orbel/native/Object.hpp"
#include "python/orbel/native/Text.hpp"

namespace orbel::python {
namespace {

namespace py = pybind11;

// An instance of the metaclass.
struct HostClass {
  PyHeapTypeObject type;
  const ClassInfo* info;
};

PyTypeObject* theClassType = nullptr;

PyObject* refuseSubclass(PyTypeObject* /*type*/, PyObject* /*arguments*/, PyObject* /*keywords*/) {
  PyErr_SetString(PyExc_TypeError, "cannot derive a Python class from a host class");
  return nullptr;
}

PyObject* getTextSignature(PyObject* type, void* /*closure*/) {
  return guarded<PyObject*>(nullptr, [&]() -> PyObject* {
    const ClassInfo* info = classInfoOf(reinterpret_cast<PyTypeObject*>(type));
    if (info->constructor() == nullptr || info->isAbstract()) Py_RETURN_NONE;
    return newText("(" + parameterList(info->constructor()->signature(), 0) + ")");
  });
}

// Python allows one order of bases only where hosts allow any: a class is left out when another one
// brings it along.
py::tuple basesOf(const ClassInfo& info) {
  py::list bases;
  const auto& superclasses = info.superclasses();
  for (const auto& superclass : superclasses) {
    const bool isImplied =
        std::any_of(superclasses.begin(), superclasses.end(), [&](const auto& other) {
          return other.info != superclass.info && other.info->derivesFrom(*superclass.info);
        });
    if (!isImplied) bases.append(py::handle(reinterpret_cast<PyObject*>(typeOf(*superclass.info))));
  }
  if (bases.empty()) bases.append(py::handle(reinterpret_cast<PyObject*>(objectType())));
  return py::tuple(bases);
}

py::object makeClass(const ClassInfo& info) {
  py::dict body;
  body["__slots__"] = py::tuple();
  body["__module__"] = checked(newText(info.package().name()));
  body["__doc__"] = checked(newText(classDocumentation(info)));
  const py::tuple arguments =
      py::make_tuple(checked(newText(info.getName())), basesOf(info), std::move(body));
  auto made = checked(PyType_Type.tp_new(theClassType, arguments.ptr(), nullptr));
  reinterpret_cast<HostClass*>(made.ptr())->info = &info;
  return made;
}

// The names in Python of the members, in the order of declaration: methods, then properties.
py::list memberNames(const ClassInfo& info) {
  py::list names;
  for (const auto& method : info.methods()) names.append(checked(newText(method->name())));
  for (const auto& property : info.properties()) names.append(checked(newText(property->name())));
  return py::module_::import("orbel._names").attr("python_names")(names);
}

void addMembers(PyTypeObject* type, const ClassInfo& info) {
  const py::list names = memberNames(info);
  auto name = names.begin();
  const auto add = [&](const py::object& member) {
    py::setattr(reinterpret_cast<PyObject*>(type), *name, member);
    ++name;
  };
  for (const auto& method : info.methods()) add(newMethod(*method));
  for (const auto& property : info.properties()) add(newProperty(type, *property));
}

[[noreturn]] void raiseUnknownClass(const std::string& name) {
  throwDiagnostic(createDiagnostic(MessageRecord("Orbel", "UnknownClass", {name}), ""), nullptr);
}

}  // namespace

PyTypeObject* typeOf(const ClassInfo& info) {
  // Never destroyed, like the host's classes.
  static auto& types = *new std::unordered_map<const ClassInfo*, PyTypeObject*>;
  const auto known = types.find(&info);
  if (known != types.end()) return known->second;
  py::object made = makeClass(info);
  auto* type = reinterpret_cast<PyTypeObject*>(made.ptr());
  addMembers(type, info);
  type->tp_flags |= Py_TPFLAGS_IMMUTABLETYPE;
  // A finaliser that ran meanwhile may have asked for the same class.
  const auto [entry, added] = types.emplace(&info, type);
  if (added) static_cast<void>(made.release());
  return entry->second;
}

PyTypeObject* typeOf(const Handle& handle) {
  if (const ClassInfo* info = handle.identity().classInfo()) return typeOf(*info);
  if (handle.isValid()) raiseUnknownClass(handle.object()->getFullyQualifiedKoboTypeName());
  return objectType();
}

const ClassInfo* classInfoOf(PyTypeObject* type) {
  return Py_IS_TYPE(reinterpret_cast<PyObject*>(type), theClassType)
             ? reinterpret_cast<HostClass*>(type)->info
             : nullptr;
}

std::string displayName(PyTypeObject* type) {
  const ClassInfo* info = classInfoOf(type);
  return info ? info->qualifiedName() : "orbel.Object";
}

void addClassType(py::module_& module) {
  static PyGetSetDef properties[] = {
      {"__text_signature__", getTextSignature, nullptr, "How scripts make objects.", nullptr},
      {nullptr, nullptr, nullptr, nullptr, nullptr}};
  static char doc[] = "The class of the classes made for host classes.";
  static PyType_Slot slots[] = {{Py_tp_doc, doc},
                                {Py_tp_base, &PyType_Type},
                                {Py_tp_new, reinterpret_cast<void*>(&refuseSubclass)},
                                {Py_tp_getset, properties},
                                {0, nullptr}};
  static PyType_Spec spec = {"orbel.Class", sizeof(HostClass), 0,
                             Py_TPFLAGS_DEFAULT | Py_TPFLAGS_IMMUTABLETYPE, slots};
  theClassType = reinterpret_cast<PyTypeObject*>(checked(PyType_FromSpec(&spec)).release().ptr());
  module.attr("Class") = py::handle(reinterpret_cast<PyObject*>(theClassType));
}

}  // namespace orbel::python
