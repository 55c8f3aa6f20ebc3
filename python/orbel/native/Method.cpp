#include <Python.h>
#include <memory>
#include <new>
#include <string>
#include <structmember.h>

#include <boost/container/small_vector.hpp>
#include <pybind11/pybind11.h>

#include <orbel/ObjectSystem.hpp>

#include "python/orbel/native/Documentation.hpp"
#include "python/orbel/native/Errors.hpp"
#include "python/orbel/native/FromPython.hpp"
#include "python/orbel/native/HostClass.hpp"
#include "python/orbel/native/Members.hpp"
#include "python/orbel/native/Object.hpp"
#include "python/orbel/native/Observer.hpp"
#include "python/orbel/native/Text.hpp"
#include "python/orbel/native/ToPython.hpp"

namespace orbel::python {
namespace {

struct MethodObject {
  PyObject_HEAD vectorcallfunc vectorcall;
  const Method* method;
  bool makesObjects;     // whether the result is an object
  bool isResultDefined;  // whether the class of that object has been asked for
};

PyTypeObject* theMethodType = nullptr;

// Null unless calls are observed.
Observer* theObserver = nullptr;

MethodObject& self(PyObject* object) { return *reinterpret_cast<MethodObject*>(object); }

const Method& methodOf(PyObject* object) { return *self(object).method; }

Object& requireObject(const Method& method, PyObject* const* arguments, std::size_t count) {
  Object* object = count == 0 ? nullptr : asObject(arguments[0]);
  if (object == nullptr) {
    raisePython(PyExc_TypeError, method.qualifiedName() + " needs an object of the class " +
                                     method.owner().qualifiedName() + ", but was given " +
                                     (count == 0 ? "nothing" : Py_TYPE(arguments[0])->tp_name));
  }
  return *object;
}

// Makes the class of the results, which takes most of the memory that showing the first one does.
void defineResult(MethodObject& callable) {
  const ClassInfo* info = ObjectSystem::instance().findClass(callable.method->signature().result());
  if (info != nullptr) typeOf(*info);
  callable.isResultDefined = true;
}

// The result of a call that may have made an object. The call has taken effect, so that a lack of
// memory must not keep the object from the script: what showing it takes is allocated before.
PyObject* invokeMaking(MethodObject& callable, Arguments arguments, Object& object) {
  constexpr std::size_t enough = 1000;
  if (!callable.isResultDefined) defineResult(callable);
  std::unique_ptr<void, decltype(&PyMem_RawFree)> reserve(PyMem_RawMalloc(enough), &PyMem_RawFree);
  if (!reserve) throw std::bad_alloc();
  const Value result = callable.method->invoke(arguments);
  PyObject* shown = nullptr;
  try {
    shown = toPython(result, &object);
  } catch (const std::bad_alloc&) {
    PyErr_NoMemory();
  }
  if (shown != nullptr || PyErr_ExceptionMatches(PyExc_MemoryError) == 0) return shown;
  PyErr_Clear();
  reserve.reset();
  return toPython(result, &object);
}

PyObject* call(PyObject* callable, PyObject* const* arguments, std::size_t flaggedCount,
               PyObject* keywords) {
  return guarded<PyObject*>(nullptr, [&] {
    const Method& method = methodOf(callable);
    const auto count = static_cast<std::size_t>(PyVectorcall_NARGS(flaggedCount));
    if (keywords != nullptr && PyTuple_GET_SIZE(keywords) != 0) {
      raisePython(PyExc_TypeError, method.qualifiedName() + " takes no keyword arguments");
    }
    Object& object = requireObject(method, arguments, count);
    boost::container::small_vector<Value, 4> values;
    values.reserve(count);
    values.push_back(object.value);
    for (std::size_t i = 1; i < count; ++i) {
      values.push_back(fromPython(arguments[i], Place(method, i)));
    }
    const Arguments all(values.data(), values.size());
    if (self(callable).makesObjects) return invokeMaking(self(callable), all, object);
    const Value result = method.invoke(all);
    if (theObserver != nullptr) theObserver->called(method, all);
    return toPython(result, &object);
  });
}

PyObject* bind(PyObject* method, PyObject* object, PyObject* /*type*/) {
  return object == nullptr ? Py_NewRef(method) : PyMethod_New(method, object);
}

void deallocate(PyObject* object) {
  PyTypeObject* type = Py_TYPE(object);
  type->tp_free(object);
  Py_DECREF(type);
}

// The attributes of a method that inspect and help() read.
template <std::string (*Make)(const Method&)>
PyObject* textOfMethod(PyObject* object, void* /*closure*/) {
  return guarded<PyObject*>(nullptr, [&] { return newText(Make(methodOf(object))); });
}

std::string nameOf(const Method& method) { return method.name(); }

std::string qualifiedNameInPackage(const Method& method) {
  return method.owner().getName() + "." + method.name();
}

std::string textSignature(const Method& method) {
  const std::string parameters = parameterList(method.signature().arguments(), 1);
  return "($self, " + (parameters.empty() ? "/" : parameters) + ")";
}

PyObject* represent(PyObject* object) {
  return guarded<PyObject*>(
      nullptr, [&] { return newText("<method " + methodDocumentation(methodOf(object)) + ">"); });
}

PyObject* hostSignature(PyObject* object, void* /*closure*/) {
  return guarded<PyObject*>(nullptr, [&] {
    const Signature& signature = methodOf(object).signature();
    pybind11::tuple words(signature.arguments().size() + 1);
    words[0] = checked(newText(signature.result()));
    for (std::size_t i = 1; i < words.size(); ++i) {
      words[i] = checked(newText(signature.arguments()[i - 1]));
    }
    return words.release().ptr();
  });
}

void observe(const pybind11::object& capsule) {
  void* observer = nullptr;
  if (!capsule.is_none()) {
    observer = PyCapsule_GetPointer(capsule.ptr(), Observer::capsuleName);
    if (observer == nullptr) raisePending();
  }
  theObserver = static_cast<Observer*>(observer);
}

}  // namespace

pybind11::object newMethod(const Method& method) {
  auto made = checked(theMethodType->tp_alloc(theMethodType, 0));
  auto* object = reinterpret_cast<MethodObject*>(made.ptr());
  object->vectorcall = call;
  object->method = &method;
  object->makesObjects = typeKind(method.signature().result()) == TypeKind::object;
  return made;
}

void addMethodType(pybind11::module_& module) {
  static PyMemberDef members[] = {
      {"__vectorcalloffset__", T_PYSSIZET, offsetof(MethodObject, vectorcall), READONLY, nullptr},
      {nullptr, 0, 0, 0, nullptr}};
  static PyGetSetDef properties[] = {
      {"__name__", textOfMethod<nameOf>, nullptr, nullptr, nullptr},
      {"__qualname__", textOfMethod<qualifiedNameInPackage>, nullptr, nullptr, nullptr},
      {"__doc__", textOfMethod<methodDocumentation>, nullptr, nullptr, nullptr},
      {"__text_signature__", textOfMethod<textSignature>, nullptr, nullptr, nullptr},
      {"signature", hostSignature, nullptr,
       "The host's type words: the result, the class itself, then the arguments.", nullptr},
      {nullptr, nullptr, nullptr, nullptr, nullptr}};
  static PyType_Slot slots[] = {{Py_tp_call, reinterpret_cast<void*>(&PyVectorcall_Call)},
                                {Py_tp_descr_get, reinterpret_cast<void*>(&bind)},
                                {Py_tp_dealloc, reinterpret_cast<void*>(&deallocate)},
                                {Py_tp_repr, reinterpret_cast<void*>(&represent)},
                                {Py_tp_members, members},
                                {Py_tp_getset, properties},
                                {0, nullptr}};
  static PyType_Spec spec = {"orbel.Method", sizeof(MethodObject), 0,
                             Py_TPFLAGS_DEFAULT | Py_TPFLAGS_HAVE_VECTORCALL |
                                 Py_TPFLAGS_METHOD_DESCRIPTOR | Py_TPFLAGS_IMMUTABLETYPE |
                                 Py_TPFLAGS_DISALLOW_INSTANTIATION,
                             slots};
  theMethodType = reinterpret_cast<PyTypeObject*>(checked(PyType_FromSpec(&spec)).release().ptr());
  module.attr("Method") = pybind11::handle(reinterpret_cast<PyObject*>(theMethodType));
  module.def("observe", &observe);
}

}  // namespace orbel::python
