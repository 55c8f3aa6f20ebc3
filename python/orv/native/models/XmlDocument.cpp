#include "python/orv/native/models/XmlDocument.hpp"

#include "python/orv/native/models/XmlReader.hpp"

namespace orv {

XmlDocument::XmlDocument(std::string_view text) {
  XmlReader(*this).read(text);
  nodes_.shrink_to_fit();
  attributes_.shrink_to_fit();
  texts_.shrink_to_fit();
}

XmlDocument::Attribute XmlDocument::attribute(Position element, std::size_t index) const {
  const StoredAttribute& stored = attributes_[nodes_[element].begin + index];
  return {stored.name, slice(stored.begin, stored.size)};
}

std::string XmlDocument::allText(Position element) const {
  std::string text;
  for (Position node = element + 1; node < after(element); ++node) {
    if (isText(node)) text.append(this->text(node));
  }
  return text;
}

}  // namespace orv
