#include "python/orbel/native/FromPython.hpp"

#include <limits>
#include <utility>
#include <vector>

#include <orbel/ObjectSystem.hpp>

#include "python/orbel/native/Arrays.hpp"
#include "python/orbel/native/Errors.hpp"
#include "python/orbel/native/Object.hpp"
#include "python/orbel/native/Text.hpp"

namespace orbel::python {
namespace {

constexpr int deepestNesting = 64;
// Nested lists may hold one list many times: the total number of elements is bounded.
constexpr std::size_t mostNestedElements = 1'000'000;

// A list whose elements are being converted, and the lists around it.
struct Nesting {
  PyObject* list;
  std::size_t element;
  const Nesting* outer;
  int depth;
};

// A value being converted: its destination, the lists around it, and the number of elements of
// nested lists so far.
struct Position {
  const Place& place;
  const Nesting* nesting;
  std::size_t& nestedElements;

  [[noreturn]] void refuse(const std::string& reason) const {
    const std::string element =
        nesting ? "element " + std::to_string(nesting->element + 1) + " of " : "";
    raisePython(PyExc_TypeError, element + place.text() + " " + reason);
  }
};

Value convert(PyObject* object, const Position& position);

std::size_t sizeOf(PyObject* list) {
  return static_cast<std::size_t>(PySequence_Fast_GET_SIZE(list));
}

std::string text(PyObject* string, const Position& position) {
  if (PyBytes_Check(string)) {
    return {PyBytes_AS_STRING(string), static_cast<std::size_t>(PyBytes_GET_SIZE(string))};
  }
  auto converted = textOf(string);
  if (!converted) position.refuse("has a lone surrogate, which no host text holds");
  return *std::move(converted);
}

Value number(PyObject* integer, const Position& position) {
  int overflow = 0;
  const long long number = PyLong_AsLongLongAndOverflow(integer, &overflow);
  if (overflow != 0 || number < 0 || number > std::numeric_limits<std::uint32_t>::max()) {
    position.refuse("is an int outside 0 to 4294967295");
  }
  return Value(static_cast<std::uint32_t>(number));
}

// Making an error object may start a collection, and with it code of a script that changes the
// list: nothing of the list is remembered from one element to the next.
Value cells(PyObject* list, const Position& position) {
  const Nesting* outer = position.nesting;
  for (const Nesting* around = outer; around != nullptr; around = around->outer) {
    if (around->list == list) position.refuse("is a list that contains itself");
  }
  Nesting nesting{list, 0, outer, outer ? outer->depth + 1 : 1};
  if (nesting.depth > deepestNesting) position.refuse("is a list nested too deep");
  std::vector<Value> elements;
  if (outer == nullptr) elements.reserve(sizeOf(list));
  for (; nesting.element < sizeOf(list); ++nesting.element) {
    if (outer != nullptr && ++position.nestedElements > mostNestedElements) {
      position.refuse("holds more than 1000000 elements in lists within lists");
    }
    const auto item = pybind11::reinterpret_borrow<pybind11::object>(
        PySequence_Fast_GET_ITEM(list, static_cast<Py_ssize_t>(nesting.element)));
    elements.push_back(convert(item.ptr(), {position.place, &nesting, position.nestedElements}));
  }
  return Value(CellArray(std::move(elements)));
}

Value strings(PyObject* texts, const Position& position) {
  Nesting nesting{texts, 0, position.nesting, 1};
  std::vector<std::string> elements;
  elements.reserve(sizeOf(texts));
  for (; nesting.element < sizeOf(texts); ++nesting.element) {
    PyObject* item = PyTuple_GET_ITEM(texts, static_cast<Py_ssize_t>(nesting.element));
    const Position inside{position.place, &nesting, position.nestedElements};
    if (!PyUnicode_Check(item) && !PyBytes_Check(item)) {
      inside.refuse("cannot be of the type " + std::string(Py_TYPE(item)->tp_name));
    }
    elements.push_back(text(item, inside));
  }
  return Value(StringArray(std::move(elements)));
}

Value convert(PyObject* object, const Position& position) {
  if (PyUnicode_Check(object) || PyBytes_Check(object)) {
    return Value(CharacterArray(text(object, position)));
  }
  if (PyBool_Check(object)) return Value(object == Py_True);
  if (PyLong_Check(object)) return number(object, position);
  if (PyFloat_Check(object)) return Value(PyFloat_AS_DOUBLE(object));
  if (object == Py_None) return {};
  if (PyTuple_Check(object) && isStringArray(object)) return strings(object, position);
  if (PyList_Check(object) || PyTuple_Check(object)) return cells(object, position);
  if (const Object* known = asObject(object)) return known->value;
  position.refuse("cannot be of the type " + std::string(Py_TYPE(object)->tp_name));
}

}  // namespace

std::string Place::text() const {
  return position_ == 0 ? "the value of " + callee_
                        : "argument " + std::to_string(position_) + " of " + callee_;
}

Value fromPython(PyObject* object, const Place& place) {
  std::size_t nestedElements = 0;
  return convert(object, {place, nullptr, nestedElements});
}

Value constructObject(const ClassInfo& info, PyObject* arguments) {
  std::vector<Value> values;
  values.reserve(sizeOf(arguments));
  for (std::size_t i = 0; i < sizeOf(arguments); ++i) {
    values.push_back(
        fromPython(PySequence_Fast_ITEMS(arguments)[i], Place(info.qualifiedName(), i + 1)));
  }
  return ObjectSystem::instance().publicClient().construct(info, values);
}

}  // namespace orbel::python
