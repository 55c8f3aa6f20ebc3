#include <cerrno>
#include <cstdio>
#include <exception>
#include <string>

#include <pybind11/stl.h>

#include "python/orv/native/Bindings.hpp"
#include "python/orv/native/Stream.hpp"
#include "python/orv/native/Text.hpp"

namespace orv {
namespace {

namespace py = pybind11;

// A path as the system has it: Python's text for it may hold any byte.
std::string systemPath(const py::object& path) {
  PyObject* encoded = nullptr;
  if (PyUnicode_FSConverter(path.ptr(), &encoded) == 0) throw py::error_already_set();
  return py::reinterpret_steal<py::bytes>(encoded);
}

void raiseStreamError(const StreamError& error) {
  const py::object path = py::reinterpret_steal<py::object>(PyUnicode_DecodeFSDefaultAndSize(
      error.path().data(), static_cast<Py_ssize_t>(error.path().size())));
  errno = error.code().value();
  PyErr_SetFromErrnoWithFilenameObject(PyExc_OSError, path.ptr());
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): the type that pybind11 asks for
void translateStreamErrors(std::exception_ptr error) {
  try {
    if (error) std::rethrow_exception(error);
  } catch (const StreamError& streamError) {
    raiseStreamError(streamError);
  }
}

void writeBytes(Stream& stream, const py::buffer& bytes) {
  const py::buffer_info block = bytes.request();
  stream.write([&](FILE* file) {
    static_cast<void>(std::fwrite(block.ptr, 1, static_cast<std::size_t>(block.size), file));
  });
}

}  // namespace

void bindStreams(py::module_& module) {
  py::register_local_exception_translator(&translateStreamErrors);
  py::class_<Stream>(module, "Stream")
      .def_static("create", [](const py::object& path) { return Stream::create(systemPath(path)); })
      .def("write", &writeBytes)
      .def("flush", &Stream::flush)
      .def("close", &Stream::close);
}

}  // namespace orv
