// What templates do with values, within bounds: operators that make texts and lists, and the check
// of values that become text. Compiled templates call the operators, so that they are plain
// functions of the interpreter.

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <iterator>
#include <system_error>

#include "python/orv/native/Bindings.hpp"

namespace orv {
namespace {

namespace py = pybind11;

constexpr Py_ssize_t longestText = Py_ssize_t{1} << 27;
constexpr Py_ssize_t mostElements = Py_ssize_t{1} << 24;

// Values nested deeper are refused, as are those that reach more values, shared ones counted again.
constexpr int deepestValue = 500;
constexpr Py_ssize_t mostValues = Py_ssize_t{1} << 24;

using Arguments = PyObject* const*;

// The functions of the template side, in the tuple that the operators are bound to.
PyObject* textOf(PyObject* self) { return PyTuple_GET_ITEM(self, 0); }
PyObject* refuseText(PyObject* self) { return PyTuple_GET_ITEM(self, 1); }
PyObject* refuseList(PyObject* self) { return PyTuple_GET_ITEM(self, 2); }

// Calls `refuse`, which raises; false if it does not.
bool refused(PyObject* refuse, Py_ssize_t length) {
  PyObject* number = PyLong_FromSsize_t(length);
  if (number == nullptr) return true;
  PyObject* result = PyObject_CallOneArg(refuse, number);
  Py_DECREF(number);
  Py_XDECREF(result);
  return result == nullptr;
}

// Whether the sum of two sequences is refused, or cannot be known for an error.
bool isRefusedSum(PyObject* self, PyObject* left, PyObject* right) {
  const bool isText = PyUnicode_Check(left) != 0;
  if (!isText && PySequence_Check(left) == 0) return false;
  const Py_ssize_t first = PyObject_Size(left);
  const Py_ssize_t second = first < 0 ? -1 : PyObject_Size(right);
  if (second < 0) {
    PyErr_Clear();
    return false;
  }
  if (first + second <= (isText ? longestText : mostElements)) return false;
  return refused(isText ? refuseText(self) : refuseList(self), first + second);
}

bool areTwo(Py_ssize_t count, const char* function) {
  if (count != 2) PyErr_Format(PyExc_TypeError, "%s() takes two arguments", function);
  return count == 2;
}

// left + right
PyObject* add(PyObject* self, Arguments arguments, Py_ssize_t count) {
  if (!areTwo(count, "add")) return nullptr;
  PyObject* left = arguments[0];
  PyObject* right = arguments[1];
  const bool isNumber = PyLong_CheckExact(left) || PyFloat_CheckExact(left);
  if (!isNumber && isRefusedSum(self, left, right)) return nullptr;
  return PyNumber_Add(left, right);
}

// The text of one operand of ~; a new reference.
PyObject* operandText(PyObject* self, PyObject* value) {
  if (PyUnicode_CheckExact(value)) return Py_NewRef(value);
  const bool isFinite = PyFloat_CheckExact(value) && std::isfinite(PyFloat_AS_DOUBLE(value));
  if (PyLong_CheckExact(value) || isFinite) return PyObject_Str(value);
  return PyObject_CallOneArg(textOf(self), value);
}

// A short ASCII text that is made of texts and integers.
class ShortText {
 public:
  // False, and the text is of no use, for anything else.
  bool append(PyObject* value) {
    if (PyUnicode_CheckExact(value) && PyUnicode_IS_COMPACT_ASCII(value)) {
      const auto length = static_cast<std::size_t>(PyUnicode_GET_LENGTH(value));
      if (length > sizeof characters_ - size_) return false;
      std::memcpy(characters_ + size_, PyUnicode_DATA(value), length);
      size_ += length;
      return true;
    }
    int overflow = PyLong_CheckExact(value) ? 0 : 1;
    const long number = overflow == 0 ? PyLong_AsLongAndOverflow(value, &overflow) : 0;
    if (overflow != 0) return false;
    const auto [end, error] = std::to_chars(characters_ + size_, std::end(characters_), number);
    size_ = static_cast<std::size_t>(end - characters_);
    return error == std::errc();
  }
  PyObject* get() const {
    PyObject* text = PyUnicode_New(static_cast<Py_ssize_t>(size_), 0x7F);
    if (text != nullptr) std::memcpy(PyUnicode_DATA(text), characters_, size_);
    return text;
  }

 private:
  char characters_[256];
  std::size_t size_ = 0;
};

// The texts of operands of ~ in one.
PyObject* joined(PyObject* self, Arguments arguments, Py_ssize_t count) {
  const auto texts = py::reinterpret_steal<py::object>(PyTuple_New(count));
  if (!texts) return nullptr;
  Py_ssize_t length = 0;
  for (Py_ssize_t i = 0; i < count; ++i) {
    PyObject* text = operandText(self, arguments[i]);
    if (text == nullptr) return nullptr;
    PyTuple_SET_ITEM(texts.ptr(), i, text);
    if (PyUnicode_Check(text)) length += PyUnicode_GET_LENGTH(text);
    if (length > longestText && refused(refuseText(self), length)) return nullptr;
  }
  const auto nothing = py::reinterpret_steal<py::object>(PyUnicode_New(0, 0));
  return nothing ? PyUnicode_Join(nothing.ptr(), texts.ptr()) : nullptr;
}

// left ~ right ~ ...
PyObject* concat(PyObject* self, Arguments arguments, Py_ssize_t count) {
  ShortText text;
  const bool isShort = std::all_of(arguments, arguments + count,
                                   [&](PyObject* value) { return text.append(value); });
  return isShort ? text.get() : joined(self, arguments, count);
}

// Whether templates may read the attribute as it is: a public one of a type of which all are.
bool isPlainAttribute(PyObject* self, PyObject* owner, PyObject* name) {
  if (!PyUnicode_Check(name) || PyUnicode_GET_LENGTH(name) == 0) return false;
  PyObject* types = PyTuple_GET_ITEM(self, 1);
  for (Py_ssize_t i = 0; i < PyTuple_GET_SIZE(types); ++i) {
    if (PyTuple_GET_ITEM(types, i) == reinterpret_cast<PyObject*>(Py_TYPE(owner))) {
      return PyUnicode_READ_CHAR(name, 0) != '_';
    }
  }
  return false;
}

// owner.name
PyObject* entry(PyObject* self, Arguments arguments, Py_ssize_t count) {
  if (!areTwo(count, "entry")) return nullptr;
  PyObject* owner = arguments[0];
  PyObject* name = arguments[1];
  if (PyDict_CheckExact(owner)) {
    PyObject* found = PyDict_GetItemWithError(owner, name);
    if (found != nullptr) return Py_NewRef(found);
  } else if (isPlainAttribute(self, owner, name)) {
    PyObject* found = PyObject_GetAttr(owner, name);
    if (found != nullptr || PyErr_ExceptionMatches(PyExc_AttributeError) == 0) return found;
    PyErr_Clear();
  }
  if (PyErr_Occurred() != nullptr) return nullptr;
  return PyObject_Vectorcall(PyTuple_GET_ITEM(self, 0), arguments, 2, nullptr);
}

PyMethodDef method(const char* name, PyObject* (*call)(PyObject*, Arguments, Py_ssize_t)) {
  return {name, reinterpret_cast<PyCFunction>(reinterpret_cast<void (*)()>(call)), METH_FASTCALL,
          nullptr};
}

PyMethodDef addMethod = method("add", &add);
PyMethodDef concatMethod = method("concat", &concat);
PyMethodDef entryMethod = method("entry", &entry);

py::object function(PyMethodDef& definition, const py::tuple& bound) {
  auto made = py::reinterpret_steal<py::object>(PyCFunction_New(&definition, bound.ptr()));
  if (!made) throw py::error_already_set();
  return made;
}

py::tuple operations(const py::object& text, const py::object& tooLong, const py::object& tooMany) {
  const py::tuple bound = py::make_tuple(text, tooLong, tooMany);
  return py::make_tuple(function(addMethod, bound), function(concatMethod, bound));
}

py::object entryReader(const py::function& find, const py::tuple& plain) {
  return function(entryMethod, py::make_tuple(find, plain));
}

// Calls `refuse` for each value, however deep, that is no text, number, truth value, none, list or
// dictionary.
class PlainCheck {
 public:
  explicit PlainCheck(const py::function& refuse) : refuse_(refuse) {}

  void require(PyObject* value, int depth = 0) {
    if (++count_ > mostValues) {
      throw py::value_error("the value holds too many values to make a text of it");
    }
    if (PyUnicode_Check(value) || PyLong_Check(value) || PyFloat_Check(value) || value == Py_None) {
      return;
    }
    if (depth >= deepestValue) throw py::value_error("the value is nested too deeply for a text");
    if (PyDict_Check(value)) {
      requireEntries(value, depth + 1);
    } else if (PyList_Check(value) || PyTuple_Check(value)) {
      for (Py_ssize_t i = 0; i < PySequence_Fast_GET_SIZE(value); ++i) {
        require(PySequence_Fast_GET_ITEM(value, i), depth + 1);
      }
    } else {
      refuse_(py::handle(value));
    }
  }

 private:
  void requireEntries(PyObject* dictionary, int depth) {
    Py_ssize_t position = 0;
    PyObject* key = nullptr;
    PyObject* entry = nullptr;
    while (PyDict_Next(dictionary, &position, &key, &entry) != 0) {
      require(key, depth);
      require(entry, depth);
    }
  }

  const py::function& refuse_;
  Py_ssize_t count_ = 0;
};

}  // namespace

void bindOperations(py::module_& module) {
  module.attr("LONGEST_TEXT") = longestText;
  module.attr("MOST_ELEMENTS") = mostElements;
  module.def("operations", &operations);
  module.def("entry_reader", &entryReader);
  module.def("require_plain", [](const py::object& value, const py::function& refuse) {
    PlainCheck(refuse).require(value.ptr());
  });
}

}  // namespace orv
