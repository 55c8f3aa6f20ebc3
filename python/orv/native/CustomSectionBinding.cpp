#include <string>

#include <varn/CustomContents.hpp>

#include "python/orv/native/Bindings.hpp"
#include "python/orv/native/SectionAccess.hpp"
#include "python/orv/native/SectionNames.hpp"
#include "python/orv/native/Text.hpp"
#include "python/orv/native/tracing/Trace.hpp"

namespace orv {
namespace {

namespace py = pybind11;

std::string customName(const py::object& name) {
  return textArgument(name, "a custom section's name");
}

// The file must have the built-in section: a custom section on one that it lacks is never written.
void declare(PackagedFiles& files, int index, const py::object& builtin, const py::object& name) {
  std::string section = textArgument(builtin, "a section's name");
  if (section == "Types") section = "Typedefs";
  const Varn::VarnFileSectionKind kind = requireSection(files, index, sectionNumber(section));
  declareCustomSection(files, index, kind, customName(name));
  if (files.trace) files.trace->declare(index, kind, customName(name));
}

}  // namespace

void bindCustomSections(RepositoryClass& repository) {
  repository.def("declare_custom", &declare)
      .def("fill_custom",
           [](PackagedFiles& files, int index, const py::object& name, const py::object& text) {
             files.file(index).getCustomContent().addContentToSection(
                 customName(name), utf8WithoutNul(text, "the text of a custom section").data());
           })
      .def(
          "retrieve_custom",
          [](PackagedFiles& files, int index, const py::object& name, const py::object& requester) {
            const std::string& text = files.file(index).getCustomContent().getCustomSectionContent(
                customName(name), textArgument(requester, "the requester"));
            if (files.trace) files.trace->retrieve(index, customName(name));
            return toPython(text);
          })
      .def("mark_custom_in_use", [](PackagedFiles& files, int index, const py::object& name) {
        files.file(index).getCustomContent().setCustomTokenInUse(customName(name));
        if (files.trace) files.trace->markInUse(index, customName(name));
      });
}

}  // namespace orv
