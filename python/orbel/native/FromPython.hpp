#ifndef ORBEL_PYTHON_FROMPYTHON_HPP
#define ORBEL_PYTHON_FROMPYTHON_HPP

#include <cstddef>
#include <string>

#include <pybind11/pybind11.h>

#include <orbel/ClassInfo.hpp>
#include <orbel/Value.hpp>

namespace orbel::python {

// The destination of a value, as a TypeError names it. The callee is kept by reference.
class Place {
 public:
  // The argument `position`, counted from 1.
  Place(const std::string& callee, std::size_t position) : callee_(callee), position_(position) {}
  Place(const Member& callee, std::size_t position) : Place(callee.qualifiedName(), position) {}
  // The value that a property is set to.
  explicit Place(const Member& property) : Place(property, 0) {}

  std::string text() const;

 private:
  const std::string& callee_;
  std::size_t position_;
};

// The host value of a Python object:
//
//   None                  missing value           str, bytes           character array
//   bool                  logical                 list, tuple          cell array
//   int, 0 to 2**32 - 1   unsigned 32-bit         orbel.StringArray    string array
//   float                 double                  an orbel.Object      handle
//
// Subclasses of these count as what they derive from, and none of their own code runs. Anything
// else, an int outside its range, a text with a lone surrogate that is no escaped byte (Text.hpp),
// and a list that contains itself, nests more than 64 deep or holds more than a million elements in
// lists within lists is a TypeError that names `place`.
Value fromPython(PyObject* object, const Place& place);

// A new object of the class `info` from a tuple of arguments, on behalf of the public client.
Value constructObject(const ClassInfo& info, PyObject* arguments);

}  // namespace orbel::python

#endif
