#include <cerrno>
#include <exception>
#include <optional>
#include <string>
#include <string_view>

#include <pybind11/stl.h>

#include "python/orv/native/Bindings.hpp"
#include "python/orv/native/Bytes.hpp"
#include "python/orv/native/Text.hpp"
#include "python/orv/native/output/Beneath.hpp"
#include "python/orv/native/output/OutputErrors.hpp"
#include "python/orv/native/output/OutputFolder.hpp"
#include "python/orv/native/output/OutputName.hpp"
#include "python/orv/native/output/RegionBinding.hpp"
#include "python/orv/native/output/TextHash.hpp"

namespace orv {
namespace {

namespace py = pybind11;

// A path as the system has it: Python's text for it may hold any byte.
std::string systemPath(const py::object& path) {
  PyObject* encoded = nullptr;
  if (PyUnicode_FSConverter(path.ptr(), &encoded) == 0) throw py::error_already_set();
  return py::reinterpret_steal<py::bytes>(encoded);
}

py::object fromSystem(const std::string& path) {
  PyObject* text =
      PyUnicode_DecodeFSDefaultAndSize(path.data(), static_cast<Py_ssize_t>(path.size()));
  if (text == nullptr) throw py::error_already_set();
  return py::reinterpret_steal<py::object>(text);
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): the type that pybind11 requires
void translateOutputErrors(std::exception_ptr error) {
  try {
    if (error) std::rethrow_exception(error);
  } catch (const SystemError& systemError) {
    const py::object path = fromSystem(systemError.path());
    errno = systemError.code().value();
    PyErr_SetFromErrnoWithFilenameObject(PyExc_OSError, path.ptr());
  } catch (const OutputRefused& refused) {
    const py::object type = py::module_::import("orv.errors").attr("OutputError");
    PyErr_SetObject(type.ptr(), toPython(refused.what()).ptr());
  }
}

py::object readFile(const OutputFolder& folder, const py::str& location) {
  const std::optional<std::string> bytes = folder.read(bytesOf(location));
  if (!bytes) return py::none();
  return py::bytes(*bytes);
}

OutputFolder::Comparison compare(const OutputFolder& folder, const py::str& location,
                                 const py::object& data, const Regions& regions,
                                 const Markers* markers) {
  const std::string path = bytesOf(location);
  try {
    return folder.compare(path, Bytes(data).view(), regions, markers);
  } catch (const RegionDamage& damage) {
    const std::string place = joinPath(folder.path(), path);
    const py::object type = py::module_::import("orv.errors").attr("Located");
    const std::string said = ":" + std::to_string(damage.line()) + ": " + damage.what();
    PyErr_SetObject(type.ptr(), (fromSystem(place) + toPython(said)).ptr());
    throw py::error_already_set();
  }
}

void bindFolder(py::module_& module) {
  py::class_<OutputFolder>(module, "OutputFolder")
      .def(py::init([](const py::object& path, const py::object& real, bool durable) {
        return OutputFolder(systemPath(path), systemPath(real), durable);
      }))
      .def_property_readonly("path",
                             [](const OutputFolder& folder) { return fromSystem(folder.path()); })
      .def_property_readonly("real",
                             [](const OutputFolder& folder) { return fromSystem(folder.real()); })
      .def_property_readonly("exists", &OutputFolder::exists)
      .def("create", &OutputFolder::create)
      .def("lock", &OutputFolder::lock)
      .def("locate", [](OutputFolder& folder,
                        const py::str& path) { return toPython(folder.locate(bytesOf(path))); })
      .def("compare", &compare, py::arg("location"), py::arg("data"),
           py::arg("regions") = Regions(), py::arg("markers") = py::none())
      .def("read", &readFile)
      .def("has_folder",
           [](const OutputFolder& folder, const py::str& location) {
             return folder.hasFolder(bytesOf(location));
           })
      .def("replace",
           [](OutputFolder& folder, const py::str& location, const py::object& data,
              std::optional<mode_t> mode) {
             folder.replace(bytesOf(location), Bytes(data).view(), mode);
           })
      .def("set_mode", [](const OutputFolder& folder, const py::str& location,
                          mode_t mode) { folder.setMode(bytesOf(location), mode); })
      .def("remove",
           [](OutputFolder& folder, const py::str& location) { folder.remove(bytesOf(location)); })
      .def("remove_folder",
           [](OutputFolder& folder, const py::str& location) {
             return folder.removeFolder(bytesOf(location));
           })
      .def("remove_abandoned",
           [](const OutputFolder& folder, const py::str& location) {
             folder.removeAbandoned(bytesOf(location));
           })
      .def("sync", &OutputFolder::sync);
}

void bindComparison(py::module_& module) {
  using Comparison = OutputFolder::Comparison;
  using KeptRegion = OutputFolder::KeptRegion;
  py::class_<KeptRegion>(module, "KeptRegion")
      .def_property_readonly("id", [](const KeptRegion& region) { return toPython(region.id); })
      .def_readonly("line", &KeptRegion::line)
      .def_property_readonly("text",
                             [](const KeptRegion& region) { return py::bytes(region.text); })
      .def_property_readonly("hash", [](const KeptRegion& region) { return textHash(region.text); })
      .def_readonly("is_taken", &KeptRegion::isTaken);
  py::class_<Comparison>(module, "Comparison")
      .def_readonly("exists", &Comparison::exists)
      .def_readonly("same", &Comparison::same)
      .def_readonly("hash", &Comparison::hash)
      .def_readonly("regions", &Comparison::regions)
      .def_readonly("ends_lines_with_return", &Comparison::endsLinesWithReturn)
      .def_property_readonly("merged", [](const Comparison& comparison) -> py::object {
        if (!comparison.merged) return py::none();
        return py::bytes(*comparison.merged);
      });
}

}  // namespace

void bindOutput(py::module_& module) {
  py::register_local_exception_translator(&translateOutputErrors);
  bindComparison(module);
  bindFolder(module);
  module.def("output_path", [](const py::str& directory, const py::str& name) {
    return toPython(outputPath(bytesOf(directory), bytesOf(name)));
  });
}

}  // namespace orv
