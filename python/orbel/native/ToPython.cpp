#include "python/orbel/native/ToPython.hpp"

#include <variant>

#include "python/orbel/native/Arrays.hpp"
#include "python/orbel/native/Errors.hpp"
#include "python/orbel/native/Text.hpp"

namespace orbel::python {
namespace {

namespace py = pybind11;

class Converter {
 public:
  explicit Converter(Object* source) : source_(source) {}

  PyObject* operator()(Missing /*value*/) const { Py_RETURN_NONE; }
  PyObject* operator()(bool logical) const { return PyBool_FromLong(logical ? 1 : 0); }
  PyObject* operator()(std::uint32_t number) const { return PyLong_FromUnsignedLong(number); }
  PyObject* operator()(double number) const { return PyFloat_FromDouble(number); }

  PyObject* operator()(const CharacterArray& characters) const {
    const std::string* text = characters.text();
    return text ? newText(*text) : newText(characters.toText());
  }

  PyObject* operator()(const CellArray& cells) const {
    py::list list(cells.elements().size());
    for (std::size_t i = 0; i < cells.elements().size(); ++i) {
      list[i] = checked(toPython(cells.elements()[i], source_));
    }
    return list.release().ptr();
  }

  PyObject* operator()(const StringArray& strings) const {
    return newStringArray(strings).release().ptr();
  }

  PyObject* operator()(const Handle& handle) const {
    const bool keepsItself = source_ == nullptr || handle.identity().ownsObject();
    return newObject(handle, keepsItself ? nullptr : ownerOfResults(*source_));
  }

  PyObject* operator()(const ObjectArray& objects) const {
    if (objects.rows() == 0) Py_RETURN_NONE;
    py::tuple elements(objects.elements().size());
    for (std::size_t i = 0; i < elements.size(); ++i) {
      elements[i] = checked((*this)(objects.elements()[i]));
    }
    return newObjectArray(objects, elements).release().ptr();
  }

 private:
  Object* source_;
};

}  // namespace

PyObject* toPython(const Value& value, Object* source) {
  return std::visit(Converter(source), value.content());
}

}  // namespace orbel::python
