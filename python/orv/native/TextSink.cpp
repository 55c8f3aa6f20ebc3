#include "python/orv/native/TextSink.hpp"

#include <string>
#include <utility>

#include <varn/FunctionsSection.hpp>

#include "python/orv/native/Bindings.hpp"
#include "python/orv/native/SectionNames.hpp"
#include "python/orv/native/Text.hpp"

namespace orv {

namespace py = pybind11;

TextSink::TextSink(std::shared_ptr<PackagedFiles> files, py::object defer)
    : files_(std::move(files)), defer_(std::move(defer)) {}

void TextSink::select(int index) {
  if (index != -1) static_cast<void>(files_->file(index));
  current_ = index;
}

int TextSink::requireCurrent() const {
  if (current_ >= 0) return current_;
  throw py::value_error(
      "no file is open here; put this between {% file ... %} and {% endfile %}"
      " or say which file it is for: of \"NAME\"");
}

void TextSink::append(py::handle text, py::handle section) {
  appendTo(text, section, requireCurrent());
}

void TextSink::appendTo(py::handle text, py::handle section, int index) {
  const auto kind = sectionKindOf(files_->file(index), utf8(section, "a section's name"));
  const std::string_view characters = utf8(text, "the text of a section");
  // An empty text would make an empty file one that is written.
  if (characters.empty() || deferIfNotReady(index, kind, text, characters, py::none())) return;
  appendText(*files_, index, kind, characters.data());
}

void TextSink::addFunction(py::handle body, py::handle name) {
  addFunctionTo(body, name, requireCurrent());
}

void TextSink::addFunctionTo(py::handle body, py::handle name, int index) {
  Varn::VarnFile& file = files_->file(index);
  const auto kind = sectionKindOf(file, "Functions");
  const std::string function = textArgument(name, "a function's name");
  const std::string_view characters = utf8(body, "the body of a function");
  // As for a section: an empty function would make an empty file one that is written.
  if (characters.empty() || deferIfNotReady(index, kind, body, characters, name)) return;
  dynamic_cast<Varn::FunctionsSection&>(file.getFileSection(kind))
      .addFunction(function, std::string(characters));
}

bool TextSink::isDeferred(int index, Varn::VarnFileSectionKind kind) const {
  const auto position = static_cast<std::size_t>(index);
  return position < deferred_.size() && (deferred_[position] >> kind & 1U) != 0;
}

bool TextSink::deferIfNotReady(int index, Varn::VarnFileSectionKind kind, py::handle text,
                               std::string_view characters, py::handle function) {
  const bool isReady = characters.find('\0') == std::string_view::npos;
  if (isReady && !isDeferred(index, kind)) return false;
  defer_(index, toPython(sectionNames()[kind]), text, function);
  const auto position = static_cast<std::size_t>(index);
  if (position >= deferred_.size()) deferred_.resize(position + 1);
  deferred_[position] |= 1U << kind;
  return true;
}

void bindTextSink(py::module_& module) {
  // The operations return an empty text: a template prints what a tag returns.
  py::class_<TextSink>(module, "TextSink")
      .def(py::init<std::shared_ptr<PackagedFiles>, py::object>(), py::arg("files").none(false),
           py::arg("defer"))
      .def_property("current", &TextSink::current, &TextSink::select)
      .def("append",
           [](TextSink& sink, py::handle text, py::handle section) {
             sink.append(text, section);
             return "";
           })
      .def("append_to",
           [](TextSink& sink, py::handle text, py::handle section, int index) {
             sink.appendTo(text, section, index);
             return "";
           })
      .def("add_function",
           [](TextSink& sink, py::handle body, py::handle name) {
             sink.addFunction(body, name);
             return "";
           })
      .def("add_function_to",
           [](TextSink& sink, py::handle body, py::handle name, int index) {
             sink.addFunctionTo(body, name, index);
             return "";
           })
      .def("is_deferred",
           [](const TextSink& sink, int index, py::handle section) {
             return sink.isDeferred(index, sectionKind(utf8(section, "a section's name")));
           })
      .def("stop_deferring", &TextSink::stopDeferring);
}

}  // namespace orv
