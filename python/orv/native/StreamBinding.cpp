#include <cerrno>
#include <cstdio>
#include <exception>
#include <string>

#include <pybind11/stl.h>

#include "python/orv/native/Bindings.hpp"
#include "python/orv/native/SectionNames.hpp"
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

// Returns the number of bytes of the section. A text that does not end its last line is given a
// newline, so that the next section starts a line of its own.
std::size_t writeWholeSection(Stream& stream, PackagedFiles& files, int index,
                              const py::object& section) {
  const Varn::VarnFileSectionKind kind = sectionKind(utf8(section, "a section's name"));
  const std::size_t before = stream.contents().size();
  stream.write([&](FILE* file) { writeSection(files, index, kind, file); });
  const std::string_view contents = stream.contents();
  const std::size_t size = contents.size() - before;
  if (size != 0 && contents.back() != '\n') {
    stream.write([](FILE* file) { std::fputc('\n', file); });
  }
  return size;
}

void writeBytes(Stream& stream, const py::bytes& bytes) {
  char* characters = nullptr;
  Py_ssize_t size = 0;
  if (PyBytes_AsStringAndSize(bytes.ptr(), &characters, &size) != 0) throw py::error_already_set();
  stream.write([&](FILE* file) {
    static_cast<void>(std::fwrite(characters, 1, static_cast<std::size_t>(size), file));
  });
}

}  // namespace

void bindStreams(py::module_& module) {
  py::register_local_exception_translator(&translateStreamErrors);
  py::class_<Stream>(module, "Stream")
      .def_static("create", [](const py::object& path) { return Stream::create(systemPath(path)); })
      .def_static("in_memory", &Stream::inMemory)
      .def("write_section", &writeWholeSection)
      .def("write", &writeBytes)
      .def("flush", &Stream::flush)
      .def("close", &Stream::close)
      .def("contents", [](Stream& stream) {
        const std::string_view contents = stream.contents();
        return py::bytes(contents.data(), contents.size());
      });
}

}  // namespace orv
