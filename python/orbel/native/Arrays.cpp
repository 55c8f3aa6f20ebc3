#include "python/orbel/native/Arrays.hpp"

#include "python/orbel/native/Errors.hpp"
#include "python/orbel/native/Text.hpp"

namespace orbel::python {
namespace {

namespace py = pybind11;

py::object arrayClass(const char* name) { return py::module_::import("orbel._arrays").attr(name); }

// Never destroyed: the interpreter may be gone before static objects are.
const py::object& stringArrayClass() {
  static const auto& type = *new py::object(arrayClass("StringArray"));
  return type;
}

const py::object& objectArrayClass() {
  static const auto& type = *new py::object(arrayClass("ObjectArray"));
  return type;
}

}  // namespace

bool isStringArray(PyObject* object) {
  return PyObject_TypeCheck(object, reinterpret_cast<PyTypeObject*>(stringArrayClass().ptr()));
}

py::object newStringArray(const StringArray& strings) {
  py::list texts;
  for (const std::string& text : strings.elements()) {
    texts.append(checked(newText(text)));
  }
  return stringArrayClass()(texts);
}

py::object newObjectArray(const ObjectArray& objects, const py::tuple& elements) {
  const auto shape = py::make_tuple(objects.rows(), objects.columns());
  return objectArrayClass()(checked(newText(objects.className())), shape, objects.isHeterogeneous(),
                            elements);
}

}  // namespace orbel::python
