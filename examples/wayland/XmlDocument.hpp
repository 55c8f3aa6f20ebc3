// XML for the protocol reader: elements with their lines, and errors that name them.
#ifndef WAYLAND_XMLDOCUMENT_HPP
#define WAYLAND_XMLDOCUMENT_HPP

#include <cstddef>
#include <initializer_list>
#include <pugixml.hpp>
#include <string>
#include <vector>

namespace wayland {

// One XML file in memory, as UTF-8. Nodes are valid until the document is destroyed.
class XmlDocument {
 public:
  // Throws std::system_error when the file cannot be read, ProtocolError when it is
  // malformed or declares another encoding.
  explicit XmlDocument(const std::string& path);
  XmlDocument(const XmlDocument&) = delete;
  XmlDocument& operator=(const XmlDocument&) = delete;
  ~XmlDocument() = default;

  const std::string& path() const { return path_; }

  // The document element. Throws ProtocolError when it is called anything but `name`.
  pugi::xml_node root(const char* name) const;

  // The line of `node`'s start tag, counted from 1.
  int lineOf(const pugi::xml_node& node) const;

  // Throws ProtocolError for `node`'s line.
  [[noreturn]] void reject(const pugi::xml_node& node, const std::string& reason) const;

  // The attribute's value; throws ProtocolError when it is missing.
  std::string require(const pugi::xml_node& node, const char* attribute) const;

  // The elements in `node`. Throws ProtocolError for one that is none of `names`, and for text
  // between them.
  std::vector<pugi::xml_node> children(const pugi::xml_node& node,
                                       std::initializer_list<const char*> names) const;

  // The text in `node`, comments left out. Throws ProtocolError when there is an element in it.
  std::string text(const pugi::xml_node& node) const;

 private:
  void refuseOtherEncodings() const;
  int lineAt(std::ptrdiff_t offset) const;

  std::string path_;
  std::vector<std::ptrdiff_t> lineEnds_;
  pugi::xml_document document_;
};

}  // namespace wayland

#endif
