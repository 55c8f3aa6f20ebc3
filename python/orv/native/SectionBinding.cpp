#include <string>

#include <varn/FunctionsSection.hpp>
#include <varn/IncludesSection.hpp>

#include "python/orv/native/Bindings.hpp"
#include "python/orv/native/SectionNames.hpp"
#include "python/orv/native/Text.hpp"

namespace orv {
namespace {

namespace py = pybind11;

Varn::VarnFileSectionKind kindArgument(const py::object& section) {
  return sectionKind(utf8(section, "a section's name"));
}

py::list namesOf(PackagedFiles& files, int index) {
  const Varn::VarnFile& file = files.file(index);
  py::list names;
  for (std::size_t kind = 0; kind < sectionNames().size(); ++kind) {
    if (file.hasSection(static_cast<Varn::VarnFileSectionKind>(kind))) {
      names.append(toPython(sectionNames()[kind]));
    }
  }
  return names;
}

void requireNamed(PackagedFiles& files, int index, const py::object& section) {
  requireSection(files.file(index), kindArgument(section));
}

py::list functionNames(PackagedFiles& files, int index) {
  py::list names;
  const auto* functions = dynamic_cast<const Varn::FunctionsSection*>(
      &files.file(index).getFileSection(Varn::FUNCTIONS_SECTION));
  if (functions == nullptr) return names;
  for (unsigned int i = 0; i < functions->getNumberOfFunctionNames(); ++i) {
    names.append(toPython(functions->getFunctionName(i)));
  }
  return names;
}

void addInclude(PackagedFiles& files, int index, const py::object& header, bool isSystem) {
  auto& section = files.file(index).getFileSection(Varn::INCLUDES_SECTION);
  dynamic_cast<Varn::IncludesSection&>(section).addInclude(textArgument(header, "a header's name"),
                                                           isSystem);
}

void placeAll(PackagedFiles& files, int index) {
  Varn::VarnFile& file = files.file(index);
  for (std::size_t i = 0; i < sectionNames().size(); ++i) {
    const auto kind = static_cast<Varn::VarnFileSectionKind>(i);
    if (!file.hasSection(kind)) continue;
    file.getCustomContent().appendMissingTokens(file.getFileSection(kind), kind);
  }
}

}  // namespace

void bindSections(RepositoryClass& repository) {
  repository.def("section_names", &namesOf)
      .def("require_section", &requireNamed)
      .def("section_text",
           [](PackagedFiles& files, int index, const py::object& section) {
             return toPython(files.file(index).getFileSection(kindArgument(section)).getContent());
           })
      .def("function_names", &functionNames)
      .def("add_include", &addInclude)
      .def("place_custom_sections", &placeAll);
}

}  // namespace orv
