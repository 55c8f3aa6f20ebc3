#include <cstdlib>
#include <map>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <pybind11/stl.h>

#include "python/orv/native/Bindings.hpp"
#include "python/orv/native/Bytes.hpp"
#include "python/orv/native/SectionNames.hpp"
#include "python/orv/native/Text.hpp"
#include "python/orv/native/output/Composer.hpp"
#include "python/orv/native/output/LineDirectives.hpp"
#include "python/orv/native/output/RegionBinding.hpp"
#include "python/orv/native/tracing/Carry.hpp"

namespace orv {
namespace {

namespace py = pybind11;

SectionOrder orderOf(PackagedFiles& files, int index, const py::object& names) {
  SectionOrder order;
  for (const py::handle name : names) {
    const int section = sectionNumber(utf8(name, "a section's name"));
    order.push_back(requireSection(files, index, section));
  }
  return order;
}

ComposedFile composeFile(PackagedFiles& files, int index, const py::object& order, bool blankLines,
                         bool guarded, const py::object& guardForm, const py::str& path,
                         bool externC) {
  Composition composition;
  if (!order.is_none()) composition.order = orderOf(files, index, order);
  composition.blankLines = blankLines;
  composition.guarded = guarded;
  composition.guardForm = textArgument(guardForm, "the form of guards");
  composition.path = bytesOf(path);
  composition.externC = externC;
  return compose(files, index, composition);
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

// None without a guard; empty for one that is no macro.
py::object guardOf(const ComposedFile& file) {
  if (!file.guard().exists()) return py::none();
  return toPython(file.guard().macro());
}

// What unpickled() takes: the bytes, the number and size of each section, and the guard.
py::tuple pickled(const ComposedFile& file) {
  py::list sections;
  for (const ComposedFile::Section& section : file.sections()) {
    sections.append(py::make_tuple(section.number, section.size));
  }
  return py::make_tuple(py::bytes(file.bytes().data(), file.bytes().size()), sections,
                        file.guard().exists(), file.guard().macro());
}

// The file without its origins.
ComposedFile unpickled(const py::tuple& state) {
  const Bytes bytes(state[0]);
  const std::string_view text = bytes.view();
  std::vector<ComposedFile::Section> sections;
  for (const py::handle section : state[1]) {
    const auto [number, size] = section.cast<std::pair<int, std::size_t>>();
    sections.push_back({number, size});
  }
  Guard guard;
  const auto macro = state[3].cast<std::string>();
  if (state[2].cast<bool>()) guard = macro.empty() ? Guard::pragma() : Guard::ofMacro(macro);
  char* characters = static_cast<char*>(std::malloc(text.size() + 1));
  if (characters == nullptr) throw std::bad_alloc();
  text.copy(characters, text.size());
  return ComposedFile(characters, text.size(), std::move(sections), std::move(guard), {});
}

// The table of ranges, and the spans.
py::tuple tracedTables(const TracedText& traced) {
  constexpr const char* kinds[] = {"section", "function", "custom section", "user region"};
  py::list spans;
  for (const Span& span : traced.spans) {
    spans.append(py::make_tuple(kinds[static_cast<std::size_t>(span.kind)], toPython(span.name),
                                span.begin, span.size));
  }
  return py::make_tuple(traced.ranges.text(), spans);
}

py::tuple traced(const ComposedFile& file, Trace& trace, const py::object& formatted,
                 const Regions& regions, const std::map<std::string, py::bytes>& texts,
                 const py::object& merged) {
  TracedText found = file.traced();
  std::string_view text = file.bytes();
  std::optional<Bytes> after;
  if (!formatted.is_none()) {
    after.emplace(formatted);
    found = carriedOver(trace, found, text, after->view());
    text = after->view();
  }
  RegionTexts taken;
  for (const auto& [id, bytes] : texts) taken.emplace(id, static_cast<std::string_view>(bytes));
  std::optional<Bytes> filled;
  if (!merged.is_none()) filled.emplace(merged);
  return tracedTables(withRegions(found, text, filled ? filled->view() : text, regions, taken));
}

}  // namespace

void bindComposer(py::module_& module, RepositoryClass& repository) {
  py::class_<ComposedFile>(module, "ComposedFile", py::buffer_protocol())
      .def_buffer(&bufferOf)
      .def("__len__", [](const ComposedFile& file) { return file.bytes().size(); })
      .def_property_readonly("sections", &sectionSizes)
      .def_property_readonly("guard", &guardOf)
      .def("traced", &traced)
      .def(py::pickle(&pickled, &unpickled))
      .def("with_line_directives", [](const ComposedFile& file, const Trace& trace,
                                      const py::function& name, const py::str& own) {
        const auto nameOf = [&](const std::string& template_) {
          return bytesOf(name(toPython(template_)));
        };
        return withLineDirectives(file, trace, nameOf, bytesOf(own));
      });
  module.def("renumbered", [](const py::object& data, const Regions& regions, const py::str& own) {
    return py::bytes(renumbered(Bytes(data).view(), regions, bytesOf(own)));
  });
  repository
      .def("compose", &composeFile, py::arg("file"), py::arg("order") = py::none(),
           py::arg("blank_lines") = false, py::arg("guarded") = true, py::arg("guard_form") = "",
           py::arg("path") = "", py::arg("extern_c") = false)
      .def("is_header",
           [](PackagedFiles& files, int index) { return isHeader(files.file(index)); });
}

}  // namespace orv
