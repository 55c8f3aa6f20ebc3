#include "python/orbel/native/Arrays.hpp"

#include "python/orbel/native/Errors.hpp"
#include "python/orbel/native/Text.hpp"

namespace orbel::python {
namespace {

namespace py = pybind11;

// Never released: the interpreter may be gone before static objects are.
py::handle stringArrayClass;
py::handle objectArrayClass;

}  // namespace

void findArrayTypes() {
  const auto arrays = py::module_::import("orbel._arrays");
  stringArrayClass = py::object(arrays.attr("StringArray")).release();
  objectArrayClass = py::object(arrays.attr("ObjectArray")).release();
}

bool isStringArray(PyObject* object) {
  return PyObject_TypeCheck(object, reinterpret_cast<PyTypeObject*>(stringArrayClass.ptr()));
}

py::object newStringArray(const StringArray& strings) {
  py::list texts;
  for (const std::string& text : strings.elements()) texts.append(checked(newText(text)));
  return stringArrayClass(texts);
}

py::object newObjectArray(const ObjectArray& objects, const py::tuple& elements) {
  const auto shape = py::make_tuple(objects.rows(), objects.columns());
  return objectArrayClass(checked(newText(objects.className())), shape, objects.isHeterogeneous(),
                          elements);
}

}  // namespace orbel::python
