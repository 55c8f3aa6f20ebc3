#include <string>

#include "python/orv/native/Bindings.hpp"
#include "python/orv/native/SectionNames.hpp"
#include "python/orv/native/Text.hpp"

// NOLINTNEXTLINE: the macro's own code
PYBIND11_MODULE(_native, module) {
  module.doc() = "The file packaging library as the template engine sees it.";
  orv::bindErrors();
  orv::RepositoryClass repository(module, "Repository");
  orv::bindFiles(module, repository);
  orv::bindAttributes(module, repository);
  orv::bindSections(repository);
  orv::bindCustomSections(repository);
  orv::bindTrace(module, repository);
  orv::bindPrinter(module);
  orv::bindOperations(module);
  orv::bindAlarm(module);
  orv::bindComposer(module, repository);
  orv::bindModels(module);
  orv::bindRegions(module);
  orv::bindOutput(module);
  orv::bindTextFilters(module);

  pybind11::list names;
  for (const std::string& name : orv::sectionNames()) names.append(orv::toPython(name));
  module.attr("SECTION_NAMES") = pybind11::tuple(names);
}
