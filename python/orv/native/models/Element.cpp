#include "python/orv/native/models/Element.hpp"

#include "python/orv/native/Text.hpp"

namespace orv {

namespace py = pybind11;

XmlModel::XmlModel(std::string_view text, std::string label)
    : document_(text), label_(std::move(label)) {
  for (const std::string& name : document_.names()) names_.push_back(toPython(name));
}

template <typename Visit>
void Element::forEachNode(Visit visit) const {
  for (XmlDocument::Position node = position_ + 1; node < document().after(position_);
       node = document().after(node)) {
    visit(node);
  }
}

template <typename Wanted>
py::list Element::elements(Wanted wanted) const {
  py::list elements;
  forEachNode([&](XmlDocument::Position node) {
    if (!document().isText(node) && wanted(node)) elements.append(Element(model_, node));
  });
  return elements;
}

py::dict Element::attributes() const {
  py::dict attributes;
  for (std::size_t i = 0; i < document().attributeCount(position_); ++i) {
    const XmlDocument::Attribute attribute = document().attribute(position_, i);
    attributes[model_->name(attribute.name)] = toPython(attribute.value);
  }
  return attributes;
}

py::list Element::content() const {
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

py::list Element::children() const {
  return elements([](XmlDocument::Position) { return true; });
}

py::list Element::all(const py::str& tag) const {
  return elements([&](XmlDocument::Position node) { return tagOf(node).equal(tag); });
}

py::object Element::first(const py::str& tag) const {
  for (XmlDocument::Position node = position_ + 1; node < document().after(position_);
       node = document().after(node)) {
    if (!document().isText(node) && tagOf(node).equal(tag)) return py::cast(Element(model_, node));
  }
  return py::none();
}

py::str Element::text() const { return toPython(document().allText(position_)); }

std::string Element::place() const { return model_->label() + ':' + std::to_string(line()); }

std::string Element::path() const {
  const XmlDocument& nodes = document();
  XmlDocument::Position parent = XmlDocument::root;
  std::string path = nodes.names()[nodes.tag(parent)];
  while (parent != position_) {
    XmlDocument::Position child = parent + 1;
    while (nodes.after(child) <= position_) child = nodes.after(child);
    std::size_t same = 0;
    std::size_t before = 0;
    for (auto node = parent + 1; node < nodes.after(parent); node = nodes.after(node)) {
      if (nodes.isText(node) || nodes.tag(node) != nodes.tag(child)) continue;
      ++same;
      if (node <= child) ++before;
    }
    path += '/' + nodes.names()[nodes.tag(child)];
    if (same > 1) path += '[' + std::to_string(before) + ']';
    parent = child;
  }
  return path;
}

}  // namespace orv
