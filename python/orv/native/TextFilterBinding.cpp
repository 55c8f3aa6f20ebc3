#include <string>
#include <string_view>
#include <vector>

#include <pybind11/stl.h>

#include "python/orv/native/Bindings.hpp"
#include "python/orv/native/Text.hpp"
#include "python/orv/native/text/CNames.hpp"
#include "python/orv/native/text/CText.hpp"
#include "python/orv/native/text/Layout.hpp"
#include "python/orv/native/text/Patterns.hpp"

namespace orv {
namespace {

namespace py = pybind11;

constexpr const char* kText = "the text";

py::tuple cStringOf(const py::object& text) {
  const std::string_view bytes = utf8(text, kText);
  return py::make_tuple(toPython(cString(bytes)), bytes.size());
}

py::object cCharOf(const py::object& text) {
  const std::string_view bytes = utf8(text, kText);
  if (bytes.size() != 1) return py::none();
  return toPython(cCharacter(bytes[0]));
}

template <std::string (*transform)(std::string_view)>
py::str transformed(const py::object& text) {
  return toPython(transform(utf8(text, kText)));
}

template <NameStyle style>
py::str inStyle(const py::object& text) {
  return toPython(restyled(utf8(text, kText), style));
}

py::str aligned(const py::object& text, const py::object& separator,
                std::vector<std::size_t> columns) {
  return toPython(
      alignedColumns(utf8(text, kText), utf8(separator, "the separator"), std::move(columns)));
}

py::str wrapped(const py::object& text, std::size_t width) {
  return toPython(wrappedComment(utf8(text, kText), width));
}

std::string patternOf(const py::object& pattern) {
  return std::string(utf8(pattern, "the regular expression"));
}

py::object matchOf(Patterns& patterns, const py::object& text, const py::object& pattern) {
  const auto groups = patterns.match(utf8(text, kText), patternOf(pattern));
  if (!groups) return py::none();
  py::list found;
  for (const auto& group : *groups) {
    found.append(group ? py::object(toPython(*group)) : py::object(py::none()));
  }
  return std::move(found);
}

py::str replaced(Patterns& patterns, const py::object& text, const py::object& pattern,
                 const py::object& replacement) {
  return toPython(patterns.replace(utf8(text, kText), patternOf(pattern),
                                   utf8(replacement, "the replacement")));
}

}  // namespace

void bindTextFilters(py::module_& module) {
  module.def("c_string", &cStringOf);
  module.def("c_char", &cCharOf);
  module.def("c_comment", &transformed<cComment>);
  module.def("c_ident", &transformed<cIdentifier>);
  module.def("snake", &inStyle<NameStyle::kSnake>);
  module.def("upper_snake", &inStyle<NameStyle::kUpperSnake>);
  module.def("camel", &inStyle<NameStyle::kCamel>);
  module.def("pascal", &inStyle<NameStyle::kPascal>);
  module.def("align", &aligned);
  module.def("wrap_comment", &wrapped);
  py::class_<Patterns>(module, "Patterns")
      .def(py::init<>())
      .def("match", &matchOf)
      .def("replace", &replaced);
}

}  // namespace orv
