#include <cstddef>
#include <exception>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "python/orv/native/Bindings.hpp"
#include "python/orv/native/Text.hpp"
#include "python/orv/native/XmlDocument.hpp"

namespace orv {
namespace {

namespace py = pybind11;

// A document, and the Python texts of its names, made once.
class XmlModel {
 public:
  explicit XmlModel(std::string_view text) : document_(text) {
    for (const std::string& name : document_.names()) names_.push_back(toPython(name));
  }

  const XmlDocument& document() const { return document_; }
  const py::str& name(std::uint32_t name) const { return names_[name]; }

 private:
  XmlDocument document_;
  std::vector<py::str> names_;
};

// One element of a model, which it keeps alive.
class Element {
 public:
  Element(std::shared_ptr<const XmlModel> model, XmlDocument::Position position)
      : model_(std::move(model)), position_(position) {}

  py::str tag() const { return tagOf(position_); }

  py::dict attributes() const {
    py::dict attributes;
    for (std::size_t i = 0; i < document().attributeCount(position_); ++i) {
      const XmlDocument::Attribute attribute = document().attribute(position_, i);
      attributes[model_->name(attribute.name)] = toPython(attribute.value);
    }
    return attributes;
  }

  py::list content() const {
    py::list content;
    forEachNode([&](XmlDocument::Position node) {
      if (document().isText(node)) {
        content.append(toPython(document().text(node)));
      } else {
        content.append(Element(model_, node));
      }
    });
    return content;
  }

  py::list children() const {
    return elements([](XmlDocument::Position) { return true; });
  }

  py::list all(const py::str& tag) const {
    return elements([&](XmlDocument::Position node) { return tagOf(node).equal(tag); });
  }

  py::object first(const py::str& tag) const {
    for (XmlDocument::Position node = position_ + 1; node < document().after(position_);
         node = document().after(node)) {
      if (!document().isText(node) && tagOf(node).equal(tag))
        return py::cast(Element(model_, node));
    }
    return py::none();
  }

  py::str text() const { return toPython(document().allText(position_)); }

  bool operator==(const Element& other) const {
    return model_ == other.model_ && position_ == other.position_;
  }
  std::size_t hash() const { return position_; }

 private:
  const XmlDocument& document() const { return model_->document(); }
  const py::str& tagOf(XmlDocument::Position node) const {
    return model_->name(document().tag(node));
  }

  template <typename Visit>
  void forEachNode(Visit visit) const {
    for (XmlDocument::Position node = position_ + 1; node < document().after(position_);
         node = document().after(node)) {
      visit(node);
    }
  }

  template <typename Wanted>
  py::list elements(Wanted wanted) const {
    py::list elements;
    forEachNode([&](XmlDocument::Position node) {
      if (!document().isText(node) && wanted(node)) elements.append(Element(model_, node));
    });
    return elements;
  }

  std::shared_ptr<const XmlModel> model_;
  XmlDocument::Position position_;
};

Element parse(const py::bytes& data) {
  const auto text = static_cast<std::string_view>(data);
  return {std::make_shared<const XmlModel>(text), XmlDocument::root};
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): the type that pybind11 asks for
void translateXmlErrors(std::exception_ptr error) {
  try {
    if (error) std::rethrow_exception(error);
  } catch (const XmlError& xmlError) {
    const py::object type = py::module_::import("orv.errors").attr("ModelError");
    PyErr_SetObject(type.ptr(), toPython(xmlError.what()).ptr());
  }
}

}  // namespace

void bindXml(py::module_& module) {
  py::register_local_exception_translator(&translateXmlErrors);
  py::class_<Element>(module, "Element")
      .def_property_readonly("tag", &Element::tag)
      .def_property_readonly("attributes", &Element::attributes)
      .def_property_readonly("children", &Element::children)
      .def_property_readonly("content", &Element::content)
      .def_property_readonly("text", &Element::text)
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
  module.def("parse_xml", &parse);
}

}  // namespace orv
