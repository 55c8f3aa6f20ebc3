#include <string>

#include "python/orv/native/Bindings.hpp"
#include "python/orv/native/SectionNames.hpp"
#include "python/orv/native/Text.hpp"
#include "python/orv/native/output/Composer.hpp"

namespace orv {
namespace {

namespace py = pybind11;

ComposedFile composeFile(PackagedFiles& files, int index, const py::object& names,
                         bool blankLines) {
  if (names.is_none()) return compose(files, index, nullptr, blankLines);
  SectionOrder order;
  for (const py::handle name : names) {
    const int section = sectionNumber(utf8(name, "a section's name"));
    order.push_back(requireSection(files, index, section));
  }
  return compose(files, index, &order, blankLines);
}

// The bytes are the composed file's own; whoever holds the buffer holds the file alive.
py::buffer_info bufferOf(ComposedFile& file) {
  const std::string_view bytes = file.bytes();
  return py::buffer_info(const_cast<char*>(bytes.data()), 1,
                         py::format_descriptor<unsigned char>::format(), 1,
                         {static_cast<py::ssize_t>(bytes.size())}, {1}, true);
}

py::dict sectionSizes(const ComposedFile& file) {
  py::dict sizes;
  for (const ComposedFile::Section& section : file.sections()) {
    sizes[toPython(sectionNames()[static_cast<std::size_t>(section.number)])] = section.size;
  }
  return sizes;
}

}  // namespace

void bindComposer(py::module_& module, RepositoryClass& repository) {
  py::class_<ComposedFile>(module, "ComposedFile", py::buffer_protocol())
      .def_buffer(&bufferOf)
      .def("__len__", [](const ComposedFile& file) { return file.bytes().size(); })
      .def_property_readonly("sections", &sectionSizes);
  repository
      .def("compose", &composeFile, py::arg("file"), py::arg("order") = py::none(),
           py::arg("blank_lines") = false)
      .def("is_header",
           [](PackagedFiles& files, int index) { return isHeader(files.file(index)); });
}

}  // namespace orv
