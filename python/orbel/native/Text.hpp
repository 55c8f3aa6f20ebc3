#ifndef ORBEL_PYTHON_TEXT_HPP
#define ORBEL_PYTHON_TEXT_HPP

#include <optional>
#include <string>
#include <string_view>

#include <pybind11/pybind11.h>

namespace orbel::python {

// Host text is 8-bit; Python text is Unicode. Bytes that are no well-formed UTF-8 are lone
// surrogates in Python (its error handler "surrogateescape", PEP 383) and become bytes again on the
// way back.

// A new str; null with a Python exception set when memory runs out.
PyObject* newText(std::string_view text);

// The text of a str; nothing when it has a surrogate that is no escaped byte, since no 8-bit text
// corresponds to it.
std::optional<std::string> textOf(PyObject* string);

// The text of a str or bytes that the function `caller` was given; anything else is a TypeError.
std::string requireText(const pybind11::handle& object, const char* caller);

}  // namespace orbel::python

#endif
