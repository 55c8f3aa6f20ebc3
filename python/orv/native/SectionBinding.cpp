#include <string>

#include <varn/FunctionsSection.hpp>
#include <varn/IncludesSection.hpp>

#include "python/orv/native/Bindings.hpp"
#include "python/orv/native/SectionAccess.hpp"
#include "python/orv/native/SectionNames.hpp"
#include "python/orv/native/Text.hpp"
#include "python/orv/native/tracing/Trace.hpp"

namespace orv {
namespace {

namespace py = pybind11;

int sectionArgument(const py::object& section) {
  return sectionNumber(utf8(section, "a section's name"));
}

py::list namesOf(PackagedFiles& files, int index) {
  static_cast<void>(files.file(index));
  py::list names;
  int section = 0;
  for (const std::string& name : sectionNames()) {
    if (findSection(files, index, section++)) names.append(toPython(name));
  }
  return names;
}

void requireNamed(PackagedFiles& files, int index, const py::object& section) {
  static_cast<void>(requireSection(files, index, sectionArgument(section)));
}

py::str textOf(PackagedFiles& files, int index, const py::object& section) {
  Varn::VarnFile& file = files.file(index);
  const auto kind = findSection(files, index, sectionArgument(section));
  return toPython(kind ? file.getFileSection(*kind).getContent() : std::string());
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
  auto& section = dynamic_cast<Varn::IncludesSection&>(
      files.file(index).getFileSection(Varn::INCLUDES_SECTION));
  const std::string name = textArgument(header, "a header's name");
  section.addInclude(name, isSystem);
  if (files.trace) files.trace->addInclude(index, section, name, isSystem);
}

}  // namespace

void bindSections(RepositoryClass& repository) {
  repository.def("section_names", &namesOf)
      .def("require_section", &requireNamed)
      .def("section_text", &textOf)
      .def("function_names", &functionNames)
      .def("add_include", &addInclude)
      .def("place_custom_sections", &placeCustomSections);
}

}  // namespace orv
