#include "python/orbel/native/Errors.hpp"

#include <cmath>
#include <new>

#include "python/orbel/native/Text.hpp"

namespace orbel::python {
namespace {

namespace py = pybind11;

py::object argumentOf(const MessageArgument& argument) {
  if (const auto* text = std::get_if<std::string>(&argument)) return checked(newText(*text));
  const double number = std::get<double>(argument);
  const bool whole = std::isfinite(number) && std::trunc(number) == number;
  return checked(whole ? PyLong_FromDouble(number) : PyFloat_FromDouble(number));
}

}  // namespace

void setHostError(const HostException& error, const char* module, const char* name) {
  const std::string identifier = error.component() + ":" + error.identifier();
  py::tuple arguments(error.arguments().size());
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    arguments[i] = argumentOf(error.arguments()[i]);
  }
  // Interned, as Python's cache of look-ups keeps each name object that it has seen.
  const py::object attribute = checked(PyUnicode_InternFromString(name));
  const py::object type = py::getattr(py::module_::import(module), attribute);
  const py::object raised =
      type(checked(newText(error.message())), checked(newText(identifier)), arguments);
  PyErr_SetObject(type.ptr(), raised.ptr());
}

void raisePython(PyObject* type, const std::string& message) {
  PyErr_SetObject(type, checked(newText(message)).ptr());
  raisePending();
}

void raisePending() { throw py::error_already_set(); }

void setPythonError() noexcept {
  try {
    throw;
  } catch (const HostException& error) {
    guarded(false, [&] {
      setHostError(error, "orbel._error", "Error");
      return true;
    });
  } catch (py::error_already_set& error) {
    error.restore();
  } catch (const py::builtin_exception& error) {
    error.set_error();
  } catch (const std::bad_alloc&) {
    PyErr_NoMemory();
  } catch (const std::exception& error) {
    // pybind11 throws this beside the MemoryError that a failed allocation has set.
    if (PyErr_Occurred() == nullptr) PyErr_SetString(PyExc_RuntimeError, error.what());
  } catch (...) {
    PyErr_SetString(PyExc_RuntimeError, "a host object raised something that is no exception");
  }
}

}  // namespace orbel::python
