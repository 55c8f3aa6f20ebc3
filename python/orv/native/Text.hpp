#ifndef ORV_TEXT_HPP
#define ORV_TEXT_HPP

#include <string>
#include <string_view>

#include <pybind11/pybind11.h>

namespace orv {

// The UTF-8 form of a Python text, valid until the text is destroyed and followed by a NUL. Throws
// pybind11::type_error naming `what` for anything but a text, and pybind11::value_error for a text
// with a lone surrogate, which has no UTF-8 form.
std::string_view utf8(pybind11::handle text, const char* what);

// utf8() for a text that is known to be compact and ASCII.
inline std::string_view asciiOf(PyObject* text) {
  return {static_cast<const char*>(PyUnicode_DATA(text)),
          static_cast<std::size_t>(PyUnicode_GET_LENGTH(text))};
}

// utf8(), for text that the library stores as a C string: refuses a NUL, which would truncate it.
std::string_view utf8WithoutNul(pybind11::handle text, const char* what);
std::string textArgument(pybind11::handle text, const char* what);

// The Python text of the library's bytes. Bytes that are not UTF-8 become lone surrogates, as in
// Python's own file names.
pybind11::str toPython(std::string_view text);

// The bytes that toPython() makes this text of. Throws pybind11::error_already_set for a text with
// other lone surrogates.
std::string bytesOf(const pybind11::str& text);

}  // namespace orv

#endif
