// The library's classes bound with pybind11 directly, to compare calls through orbel with.

#include <pybind11/pybind11.h>

#include <varn/varn_filepackaging.hpp>

#include "benchmarks/orbel_python/HostCalls.hpp"

namespace py = pybind11;

namespace {

std::pair<double, double> pairOf(const direct_binding::CallTime& time) {
  return {time.direct, time.throughHost};
}

}  // namespace

PYBIND11_MODULE(direct_binding, module) {
  using Section = Varn::FunctionsSection;
  using File = Varn::VarnFile;
  using Repository = Varn::VarnFileRepository;
  py::class_<Section>(module, "FunctionsSection")
      .def("addFunction", &Section::addFunction)
      .def("getNumberOfFunctions", &Section::getNumberOfFunctions)
      .def("getFunction", &Section::kobo_getFunction)
      .def("getFunctionName", &Section::kobo_getFunctionName);
  py::class_<File>(module, "VarnFile")
      .def_property_readonly("Name", &File::getName)
      .def_property("Type", &File::getType, &File::setType)
      .def_property("Indent", &File::getIndent, &File::setIndent)
      .def("hasSection",
           [](const File& file, const std::string& kind) {
             return file.hasSection(Varn::getSectionKindFromName(kind));
           })
      .def(
          "getFunctionsSection",
          [](File& file) -> Section& {
            return dynamic_cast<Section&>(file.getFileSection(Varn::FUNCTIONS_SECTION));
          },
          py::return_value_policy::reference_internal);
  py::class_<Repository>(module, "VarnFileRepository")
      .def(py::init<>())
      .def(
          "createGenericFile",
          [](Repository& repository, const std::string& name) -> File& {
            return repository.createGenericFile(name);
          },
          py::return_value_policy::reference_internal);
  module.def("time_property_read",
             [](std::size_t count) { return pairOf(direct_binding::timePropertyRead(count)); });
  module.def("time_method_call",
             [](std::size_t count) { return pairOf(direct_binding::timeMethodCall(count)); });
}
