#include "python/orbel/native/Text.hpp"

#include "python/orbel/native/Errors.hpp"

namespace orbel::python {
namespace {

constexpr const char* escape = "surrogateescape";

std::string bytesOf(PyObject* bytes) {
  return {PyBytes_AS_STRING(bytes), static_cast<std::size_t>(PyBytes_GET_SIZE(bytes))};
}

std::optional<std::string> escapedTextOf(PyObject* string) {
  if (!PyErr_ExceptionMatches(PyExc_UnicodeEncodeError)) raisePending();
  PyErr_Clear();
  PyObject* bytes = PyUnicode_AsEncodedString(string, "utf-8", escape);
  if (bytes == nullptr && PyErr_ExceptionMatches(PyExc_UnicodeEncodeError)) {
    PyErr_Clear();
    return std::nullopt;
  }
  return bytesOf(checked(bytes).ptr());
}

}  // namespace

PyObject* newText(std::string_view text) {
  return PyUnicode_DecodeUTF8(text.data(), static_cast<Py_ssize_t>(text.size()), escape);
}

std::optional<std::string> textOf(PyObject* string) {
  Py_ssize_t size = 0;
  const char* data = PyUnicode_AsUTF8AndSize(string, &size);
  return data ? std::string(data, static_cast<std::size_t>(size)) : escapedTextOf(string);
}

std::string requireText(const pybind11::handle& object, const char* caller) {
  if (PyBytes_Check(object.ptr())) return bytesOf(object.ptr());
  if (!PyUnicode_Check(object.ptr())) {
    raisePython(PyExc_TypeError, std::string(caller) + " needs a str, but was given " +
                                     Py_TYPE(object.ptr())->tp_name);
  }
  auto text = textOf(object.ptr());
  if (!text) {
    raisePython(PyExc_TypeError, std::string(caller) + " was given a text with a lone surrogate");
  }
  return *std::move(text);
}

}  // namespace orbel::python
