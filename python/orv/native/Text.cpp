#include "python/orv/native/Text.hpp"

namespace orv {

namespace py = pybind11;

std::string_view utf8(py::handle text, const char* what) {
  if (!PyUnicode_Check(text.ptr())) {
    throw py::type_error(std::string(what) + " must be text, not " + Py_TYPE(text.ptr())->tp_name);
  }
  if (PyUnicode_IS_COMPACT_ASCII(text.ptr())) return asciiOf(text.ptr());
  Py_ssize_t size = 0;
  const char* characters = PyUnicode_AsUTF8AndSize(text.ptr(), &size);
  if (characters != nullptr) return {characters, static_cast<std::size_t>(size)};
  if (PyErr_ExceptionMatches(PyExc_UnicodeEncodeError) == 0) throw py::error_already_set();
  PyErr_Clear();
  throw py::value_error(std::string(what) + " holds a lone surrogate, which UTF-8 cannot express");
}

std::string_view utf8WithoutNul(py::handle text, const char* what) {
  const std::string_view characters = utf8(text, what);
  if (characters.find('\0') == std::string_view::npos) return characters;
  throw py::value_error(std::string(what) + " holds a NUL character, which would cut it short");
}

std::string textArgument(py::handle text, const char* what) {
  return std::string(utf8WithoutNul(text, what));
}

py::str toPython(std::string_view text) {
  PyObject* decoded =
      PyUnicode_DecodeUTF8(text.data(), static_cast<Py_ssize_t>(text.size()), "surrogateescape");
  if (decoded == nullptr) throw py::error_already_set();
  return py::reinterpret_steal<py::str>(decoded);
}

std::string bytesOf(const py::str& text) {
  PyObject* bytes = PyUnicode_AsEncodedString(text.ptr(), "utf-8", "surrogateescape");
  if (bytes == nullptr) throw py::error_already_set();
  return py::reinterpret_steal<py::bytes>(bytes);
}

}  // namespace orv
