#ifndef ORV_MODELS_XMLDOCUMENT_HPP
#define ORV_MODELS_XMLDOCUMENT_HPP

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "python/orv/native/models/DistinctTexts.hpp"
#include "python/orv/native/models/ModelError.hpp"

namespace orv {

// An XML document in few, compact tables: a model is read once and walked in parts, so that its
// nodes become objects only when somebody looks at them.
//
// Nodes are known by their positions in the order in which they begin. A node's first child, if it
// has any, is the next position; what follows the node and all that is in it is at `after`. The
// document never changes once it is made, and what it hands out lives as long as it does.
class XmlDocument {
 public:
  using Position = std::uint32_t;

  struct Attribute {
    std::uint32_t name;  // in names()
    std::string_view value;
  };

  // Internal entities are expanded and declared attribute defaults are given; nothing is ever taken
  // from another document. Throws ModelError for a document that is not well-formed, that uses what
  // only another document could declare, that expands to much more than was read, or that is nested
  // too deeply.
  explicit XmlDocument(std::string_view text);

  static constexpr Position root = 0;

  // Whether the node is a text and not an element.
  bool isText(Position node) const { return (nodes_[node] & textMark) != 0; }
  // Only for texts.
  std::string_view text(Position node) const { return texts_[nodes_[node] - textMark]; }
  // Only for elements: the position of its tag in names().
  std::uint32_t tag(Position element) const { return elements_[nodes_[element]].name; }
  Position after(Position node) const {
    return isText(node) ? node + 1 : elements_[nodes_[node]].after;
  }
  // Of the start tag of an element, counted from 1.
  std::uint32_t line(Position element) const { return elements_[nodes_[element]].line; }
  std::size_t attributeCount(Position element) const;
  Attribute attribute(Position element, std::size_t index) const;

  // All text in the element, in order, that of inner elements included.
  std::string allText(Position element) const;

  // The names of tags and attributes, each once, with their prefixes as written.
  const std::vector<std::string>& names() const { return names_; }

 private:
  friend class XmlReader;

  struct StoredElement {
    std::uint32_t name;
    Position after;
    std::uint32_t firstAttribute;  // its last is before the first of the next element
    std::uint32_t line;
  };

  struct StoredAttribute {
    std::uint32_t name;
    std::uint32_t value;  // in texts_
  };

  static constexpr std::uint32_t textMark = std::uint32_t{1} << 31;

  // Many: they are not to be copied when there are more.
  //
  // The position of an element in elements_; or that of a text in texts_, with the mark.
  std::deque<std::uint32_t> nodes_;
  std::deque<StoredElement> elements_;
  std::deque<StoredAttribute> attributes_;
  std::vector<std::string> names_;
  DistinctTexts texts_;
};

}  // namespace orv

#endif
