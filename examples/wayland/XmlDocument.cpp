#include "XmlDocument.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <strings.h>
#include <system_error>

#include <fmt/format.h>

#include "ProtocolError.hpp"

namespace wayland {
namespace {

struct CloseFile {
  void operator()(FILE* file) const { std::fclose(file); }
};

[[noreturn]] void failReading(const std::string& path) {
  throw std::system_error(errno, std::generic_category(), path);
}

std::string readFile(const std::string& path) {
  const std::unique_ptr<FILE, CloseFile> file(std::fopen(path.c_str(), "rb"));
  if (!file) failReading(path);
  std::string text;
  std::array<char, 65536> buffer{};
  std::size_t count = 0;
  while ((count = std::fread(buffer.data(), 1, buffer.size(), file.get())) != 0) {
    text.append(buffer.data(), count);
  }
  if (std::ferror(file.get()) != 0) failReading(path);
  return text;
}

// Plain ASCII is UTF-8 too.
bool isUtf8(const char* encoding) {
  return strcasecmp(encoding, "UTF-8") == 0 || strcasecmp(encoding, "US-ASCII") == 0;
}

bool isElement(const pugi::xml_node& node) { return node.type() == pugi::node_element; }

bool isText(const pugi::xml_node& node) {
  return node.type() == pugi::node_pcdata || node.type() == pugi::node_cdata;
}

}  // namespace

XmlDocument::XmlDocument(const std::string& path) : path_(path) {
  const std::string text = readFile(path);
  for (std::size_t at = text.find('\n'); at != std::string::npos; at = text.find('\n', at + 1)) {
    lineEnds_.push_back(static_cast<std::ptrdiff_t>(at));
  }
  // With any other encoding, offsets would not be those of the file.
  const pugi::xml_parse_result result = document_.load_buffer(
      text.data(), text.size(), pugi::parse_default | pugi::parse_declaration, pugi::encoding_utf8);
  if (!result) {
    throw ProtocolError(path_, lineAt(result.offset),
                        fmt::format("malformed XML: {}", result.description()));
  }
  refuseOtherEncodings();
}

void XmlDocument::refuseOtherEncodings() const {
  for (const pugi::xml_node& node : document_.children()) {
    const pugi::xml_attribute encoding = node.attribute("encoding");
    if (node.type() == pugi::node_declaration && encoding && !isUtf8(encoding.value())) {
      reject(node, fmt::format("encoding '{}' is not UTF-8", encoding.value()));
    }
  }
}

pugi::xml_node XmlDocument::root(const char* name) const {
  const std::vector<pugi::xml_node> elements = children(document_, {name});
  if (elements.size() != 1) reject(elements.back(), fmt::format("a second <{}> in one file", name));
  return elements.front();
}

int XmlDocument::lineAt(std::ptrdiff_t offset) const {
  const auto end = std::lower_bound(lineEnds_.begin(), lineEnds_.end(), offset);
  return static_cast<int>(end - lineEnds_.begin()) + 1;
}

int XmlDocument::lineOf(const pugi::xml_node& node) const { return lineAt(node.offset_debug()); }

void XmlDocument::reject(const pugi::xml_node& node, const std::string& reason) const {
  throw ProtocolError(path_, lineOf(node), reason);
}

std::string XmlDocument::require(const pugi::xml_node& node, const char* attribute) const {
  const pugi::xml_attribute found = node.attribute(attribute);
  if (!found) reject(node, fmt::format("<{}> has no attribute '{}'", node.name(), attribute));
  return found.value();
}

std::vector<pugi::xml_node> XmlDocument::children(const pugi::xml_node& node,
                                                  std::initializer_list<const char*> names) const {
  std::vector<pugi::xml_node> elements;
  for (const pugi::xml_node& child : node.children()) {
    if (isText(child)) reject(child, fmt::format("text directly in <{}>", node.name()));
    if (!isElement(child)) continue;
    const std::string name = child.name();
    if (std::find(names.begin(), names.end(), name) == names.end()) {
      reject(child, fmt::format("unexpected element <{}>", name));
    }
    elements.push_back(child);
  }
  return elements;
}

std::string XmlDocument::text(const pugi::xml_node& node) const {
  std::string text;
  for (const pugi::xml_node& child : node.children()) {
    if (isElement(child)) {
      reject(child, fmt::format("<{}> in the text of <{}>", child.name(), node.name()));
    }
    if (isText(child)) text += child.value();
  }
  return text;
}

}  // namespace wayland
