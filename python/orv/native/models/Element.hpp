#ifndef ORV_MODELS_ELEMENT_HPP
#define ORV_MODELS_ELEMENT_HPP

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <pybind11/pybind11.h>

#include "python/orv/native/models/XmlDocument.hpp"

namespace orv {

// A document, and the Python texts of its names, made once. `label` is what messages call its file.
class XmlModel {
 public:
  XmlModel(std::string_view text, std::string label);

  const XmlDocument& document() const { return document_; }
  const std::string& label() const { return label_; }
  const pybind11::str& name(std::uint32_t name) const { return names_[name]; }

 private:
  XmlDocument document_;
  std::string label_;
  std::vector<pybind11::str> names_;
};

// One element of a model, which it keeps alive.
class Element {
 public:
  Element(std::shared_ptr<const XmlModel> model, XmlDocument::Position position)
      : model_(std::move(model)), position_(position) {}

  pybind11::str tag() const { return tagOf(position_); }
  pybind11::dict attributes() const;
  pybind11::list content() const;
  pybind11::list children() const;
  pybind11::list all(const pybind11::str& tag) const;
  // The first child of the tag, or None.
  pybind11::object first(const pybind11::str& tag) const;
  pybind11::str text() const;
  std::uint32_t line() const { return document().line(position_); }

  // "FILE:LINE" of its start tag.
  std::string place() const;
  // The way to it from the root: `registry/types/type[3]`.
  std::string path() const;

  const std::shared_ptr<const XmlModel>& model() const { return model_; }
  XmlDocument::Position position() const { return position_; }

  bool operator==(const Element& other) const {
    return model_ == other.model_ && position_ == other.position_;
  }
  std::size_t hash() const { return position_; }

 private:
  const XmlDocument& document() const { return model_->document(); }
  const pybind11::str& tagOf(XmlDocument::Position node) const {
    return model_->name(document().tag(node));
  }

  template <typename Visit>
  void forEachNode(Visit visit) const;
  template <typename Wanted>
  pybind11::list elements(Wanted wanted) const;

  std::shared_ptr<const XmlModel> model_;
  XmlDocument::Position position_;
};

}  // namespace orv

#endif
