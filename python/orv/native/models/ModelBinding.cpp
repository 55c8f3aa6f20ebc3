#include <algorithm>
#include <malloc.h>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "python/orv/native/Bindings.hpp"
#include "python/orv/native/Text.hpp"
#include "python/orv/native/models/Element.hpp"
#include "python/orv/native/models/ModelBuilder.hpp"
#include "python/orv/native/models/Places.hpp"
#include "python/orv/native/models/Readers.hpp"
#include "python/orv/native/models/SourceText.hpp"

namespace orv {
namespace {

namespace py = pybind11;

// Keeps the collector of cycles from looking again and again at a model that is being made.
class CollectorPause {
 public:
  CollectorPause() : wasEnabled_(PyGC_Disable() != 0) {}
  ~CollectorPause() {
    if (wasEnabled_) PyGC_Enable();
  }
  CollectorPause(const CollectorPause&) = delete;
  CollectorPause& operator=(const CollectorPause&) = delete;

 private:
  bool wasEnabled_;
};

std::string messageOf(const std::string& label, Location location, const std::string& reason) {
  if (label.empty()) return reason;
  std::string message = label;
  if (location.line != 0) message += ':' + std::to_string(location.line);
  if (location.column != 0) message += ':' + std::to_string(location.column);
  return message + ": " + reason;
}

py::object readXml(std::string_view data, const std::string& label, Places* places) {
  const Element root(std::make_shared<const XmlModel>(data, label), XmlDocument::root);
  py::dict model;
  model[root.tag()] = root;
  if (places != nullptr) places->note(model, {places->addFile(label), root.line()});
  return model;
}

void readWith(const std::string& format, std::string_view text, ModelBuilder& builder,
              ModelRemarks& warnings) {
  if (format == "json") {
    readJson(text, builder);
  } else if (format == "yaml") {
    readYaml(text, builder, warnings);
  } else if (format == "toml") {
    readToml(text, builder);
  } else if (format == "csv") {
    readCsv(text, builder);
  } else {
    throw py::value_error("no format of models: " + format);
  }
}

py::object readText(const std::string& format, std::string_view data, const std::string& label,
                    Places* places, ModelRemarks& warnings, ModelRemarks& mistakes) {
  const std::string_view text = sourceText(data);
  ModelBuilder builder(places, places == nullptr ? 0 : places->addFile(label), mistakes);
  try {
    readWith(format, text, builder, warnings);
  } catch (const ModelError&) {
    builder.abandon();
    throw;
  }
  return builder.finish();
}

[[noreturn]] void refuse(const std::string& label, const ModelRemarks& mistakes) {
  std::string message;
  for (const auto& [location, text] : mistakes) {
    if (!message.empty()) message += '\n';
    message += messageOf(label, location, text);
  }
  const py::object type = py::module_::import("orv.errors").attr("ModelError");
  PyErr_SetObject(type.ptr(), toPython(message).ptr());
  throw py::error_already_set();
}

bool isBefore(const ModelRemark& left, const ModelRemark& right) {
  const Location& a = left.first;
  const Location& b = right.first;
  return a.line != b.line ? a.line < b.line : a.column < b.column;
}

py::object readValue(const std::string& format, std::string_view data, const std::string& label,
                     Places* places, ModelRemarks& warnings) {
  ModelRemarks mistakes;
  py::object value;
  try {
    value = format == "xml" ? readXml(data, label, places)
                            : readText(format, data, label, places, warnings, mistakes);
  } catch (const ModelError& error) {
    mistakes.emplace_back(error.location(), error.what());
  }
  if (mistakes.empty()) return value;
  std::stable_sort(mistakes.begin(), mistakes.end(), isBefore);
  refuse(label, mistakes);
}

// The value and the warnings. Messages begin with FILE:LINE:COLUMN, but with an empty name.
py::tuple readModel(const std::string& format, const py::bytes& data, const py::str& name,
                    Places* places) {
  const CollectorPause pause;
  const std::string label = bytesOf(name);
  ModelRemarks warnings;
  py::object model =
      readValue(format, static_cast<std::string_view>(data), label, places, warnings);
  py::list texts;
  for (const auto& [location, text] : warnings) {
    texts.append(toPython(messageOf(label, {location.line, 0}, text)));
  }
  return py::make_tuple(model, texts);
}

py::object toText(const std::optional<std::string>& text) {
  return text && !text->empty() ? py::object(toPython(*text)) : py::object(py::none());
}

py::object placeOf(const Places& places, const py::object& container, const py::object& key) {
  if (py::isinstance<Element>(container)) {
    return toPython(container.cast<const Element&>().place());
  }
  const std::optional<Places::Place> place = places.find(container, key);
  return place ? toText(places.text(*place)) : py::none();
}

py::object pathOf(const Places& places, const py::object& container, const py::object& key) {
  if (!py::isinstance<Element>(container)) {
    const std::optional<std::string> path = places.path(container, key);
    return path ? py::object(toPython(*path)) : py::object(py::none());
  }
  const std::string path = container.cast<const Element&>().path();
  return key.is_none() ? toPython(path) : toPython(path + "/@" + std::string(py::str(key)));
}

void note(Places& places, const py::dict& values, const py::str& label) {
  places.note(values, {places.addFile(bytesOf(label)), 0});
}

// A model is in small pieces. Where it was, composed files, each in one piece, find no place.
void returnFreedMemory() { ::malloc_trim(0); }

void bindElements(py::module_& module) {
  py::class_<Element>(module, "Element")
      .def_property_readonly("tag", &Element::tag)
      .def_property_readonly("attributes", &Element::attributes)
      .def_property_readonly("children", &Element::children)
      .def_property_readonly("content", &Element::content)
      .def_property_readonly("text", &Element::text)
      .def_property_readonly("line", &Element::line)
      .def("first", &Element::first)
      .def("all", &Element::all)
      .def("__str__", &Element::text)
      .def("__repr__",
           [](const Element& element) { return "<" + std::string(element.tag()) + ">"; })
      .def("__eq__",
           [](const Element& left, const py::object& right) {
             return py::isinstance<Element>(right) && left == right.cast<const Element&>();
           })
      .def("__hash__", &Element::hash);
}

}  // namespace

void bindModels(py::module_& module) {
  bindElements(module);
  py::class_<Places>(module, "Places")
      .def(py::init<>())
      .def("note", &note, py::arg("values"), py::arg("label"))
      .def("note_merged", &Places::addMerged, py::arg("merged"), py::arg("first"),
           py::arg("second"))
      .def("place_of", &placeOf, py::arg("container"), py::arg("key") = py::none())
      .def("path_of", &pathOf, py::arg("container"), py::arg("key") = py::none());
  module.def("read_model", &readModel, py::arg("format"), py::arg("data"), py::arg("label"),
             py::arg("places").none(true));
  module.def("return_freed_memory", &returnFreedMemory);
}

}  // namespace orv
