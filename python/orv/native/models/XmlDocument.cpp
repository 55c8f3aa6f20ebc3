#include "python/orv/native/models/XmlDocument.hpp"

#include "python/orv/native/models/XmlReader.hpp"

namespace orv {

XmlDocument::XmlDocument(std::string_view text) {
  XmlReader(*this).read(text);
  texts_.finish();
}

std::size_t XmlDocument::attributeCount(Position element) const {
  const std::size_t next = nodes_[element] + 1;
  const std::size_t end =
      next < elements_.size() ? elements_[next].firstAttribute : attributes_.size();
  return end - elements_[nodes_[element]].firstAttribute;
}

XmlDocument::Attribute XmlDocument::attribute(Position element, std::size_t index) const {
  const auto& [name, value] = attributes_[elements_[nodes_[element]].firstAttribute + index];
  return {name, texts_[value]};
}

std::string XmlDocument::allText(Position element) const {
  std::string text;
  for (Position node = element + 1; node < after(element); ++node) {
    if (isText(node)) text.append(this->text(node));
  }
  return text;
}

}  // namespace orv
