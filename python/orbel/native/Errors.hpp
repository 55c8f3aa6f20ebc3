#ifndef ORBEL_PYTHON_ERRORS_HPP
#define ORBEL_PYTHON_ERRORS_HPP

#include <string>

#include <pybind11/pybind11.h>

#include <orbel/Diagnostics.hpp>

namespace orbel::python {

// Throws the Python exception `type` with the 8-bit text `message`.
[[noreturn]] void raisePython(PyObject* type, const std::string& message);

// Throws the exception that a call of the Python C API has set.
[[noreturn]] void raisePending();

// `result`, a new reference, unless the call that gave it failed: then that exception is thrown.
inline pybind11::object checked(PyObject* result) {
  if (result == nullptr) raisePending();
  return pybind11::reinterpret_steal<pybind11::object>(result);
}

// Sets the Python exception `name` of `module`, whose constructor takes the message, the full
// message ID and the arguments.
void setHostError(const HostException& error, const char* module, const char* name);

// For a catch-all handler: sets the Python exception for the C++ exception that is being handled;
// orbel.Error for HostException.
void setPythonError() noexcept;

// What `call` returns; `failed` with a Python exception set when it throws.
template <class Result, class Call>
Result guarded(Result failed, const Call& call) noexcept {
  try {
    return call();
  } catch (...) {
    setPythonError();
    return failed;
  }
}

}  // namespace orbel::python

#endif
