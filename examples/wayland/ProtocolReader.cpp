#include "ProtocolReader.hpp"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <set>
#include <system_error>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "ArgumentTypes.hpp"
#include "CNames.hpp"
#include "ProtocolError.hpp"
#include "XmlDocument.hpp"

namespace wayland {
namespace {

using pugi::xml_node;

// The elements and names of the children of one element.
using NamesSeen = std::set<std::pair<std::string, std::string>>;

class Reader {
 public:
  explicit Reader(const std::string& path) : xml_(path) {}

  Protocol read() const;

 private:
  Interface readInterface(const xml_node& node) const;
  Message readMessage(const xml_node& node, int version) const;
  Argument readArgument(const xml_node& node) const;
  void readReferences(const xml_node& node, Argument& argument) const;
  Enumeration readEnumeration(const xml_node& node, int version) const;
  EnumerationEntry readEntry(const xml_node& node, int version) const;
  Description readDescription(const xml_node& node) const;

  std::string identifier(const xml_node& node, const char* attribute) const;
  int positive(const xml_node& node, const char* attribute) const;
  int since(const xml_node& node, int version) const;
  bool flag(const xml_node& node, const char* attribute) const;

  // Appends `item`, unless `seen` has its name for the same kind of element.
  template <typename Item>
  void append(const xml_node& node, NamesSeen& seen, std::vector<Item>& items, Item item) const {
    if (!seen.emplace(node.name(), item.name).second) {
      xml_.reject(node, fmt::format("a second <{}> called '{}'", node.name(), item.name));
    }
    items.push_back(std::move(item));
  }

  XmlDocument xml_;
};

bool is(const xml_node& node, const char* name) { return std::strcmp(node.name(), name) == 0; }

Protocol Reader::read() const {
  const xml_node root = xml_.root("protocol");
  Protocol protocol;
  protocol.file = xml_.path();
  protocol.line = xml_.lineOf(root);
  protocol.name = identifier(root, "name");
  NamesSeen seen;
  for (const xml_node& child : xml_.children(root, {"copyright", "description", "interface"})) {
    if (is(child, "copyright")) {
      protocol.copyright = xml_.text(child);
    } else if (is(child, "description")) {
      protocol.description = readDescription(child);
    } else {
      append(child, seen, protocol.interfaces, readInterface(child));
    }
  }
  if (protocol.interfaces.empty()) {
    xml_.reject(root, fmt::format("protocol '{}' has no interface", protocol.name));
  }
  return protocol;
}

Interface Reader::readInterface(const xml_node& node) const {
  Interface interface;
  interface.line = xml_.lineOf(node);
  interface.name = identifier(node, "name");
  interface.version = positive(node, "version");
  NamesSeen seen;
  for (const xml_node& child : xml_.children(node, {"description", "request", "event", "enum"})) {
    if (is(child, "description")) {
      interface.description = readDescription(child);
    } else if (is(child, "request")) {
      append(child, seen, interface.requests, readMessage(child, interface.version));
    } else if (is(child, "event")) {
      append(child, seen, interface.events, readMessage(child, interface.version));
    } else {
      append(child, seen, interface.enumerations, readEnumeration(child, interface.version));
    }
  }
  return interface;
}

Message Reader::readMessage(const xml_node& node, int version) const {
  Message message;
  message.line = xml_.lineOf(node);
  message.name = identifier(node, "name");
  message.since = since(node, version);
  const std::string type = node.attribute("type").value();
  if (!type.empty() && type != "destructor") {
    xml_.reject(node, fmt::format("unknown type '{}' of message '{}'", type, message.name));
  }
  message.destructor = !type.empty();
  NamesSeen seen;
  for (const xml_node& child : xml_.children(node, {"description", "arg"})) {
    if (is(child, "description")) {
      message.description = readDescription(child);
      continue;
    }
    Argument argument = readArgument(child);
    if (argument.type == ArgumentType::NewId && newObject(message) != nullptr) {
      xml_.reject(child, fmt::format("message '{}' makes a second object", message.name));
    }
    if (argument.type == ArgumentType::NewId && argument.interface.empty() && is(node, "event")) {
      xml_.reject(child, fmt::format("new_id '{}' of an event has no interface", argument.name));
    }
    append(child, seen, message.arguments, std::move(argument));
  }
  return message;
}

Argument Reader::readArgument(const xml_node& node) const {
  Argument argument;
  argument.line = xml_.lineOf(node);
  argument.name = identifier(node, "name");
  argument.summary = node.attribute("summary").value();
  const std::string typeName = xml_.require(node, "type");
  const ArgumentTypeFacts* type = findArgumentType(typeName);
  if (type == nullptr) {
    xml_.reject(node, fmt::format("unknown type '{}' of argument '{}'", typeName, argument.name));
  }
  argument.type = type->type;
  argument.nullable = flag(node, "allow-null");
  if (argument.nullable && !type->mayBeNull) {
    xml_.reject(node,
                fmt::format("argument '{}' of type {} cannot be null", argument.name, type->name));
  }
  readReferences(node, argument);
  for (const xml_node& child : xml_.children(node, {"description"})) {
    if (argument.summary.empty()) argument.summary = readDescription(child).summary;
  }
  return argument;
}

void Reader::readReferences(const xml_node& node, Argument& argument) const {
  const ArgumentTypeFacts& type = factsOf(argument.type);
  if (node.attribute("interface")) {
    argument.interface = identifier(node, "interface");
    if (!type.mayNameInterface) {
      xml_.reject(
          node, fmt::format("argument '{}' of type {} has no interface", argument.name, type.name));
    }
  }
  if (node.attribute("enum")) {
    argument.enumeration = node.attribute("enum").value();
    if (!type.mayNameEnumeration) {
      xml_.reject(node, fmt::format("argument '{}' of type {} has no enumeration", argument.name,
                                    type.name));
    }
  }
}

Enumeration Reader::readEnumeration(const xml_node& node, int version) const {
  Enumeration enumeration;
  enumeration.line = xml_.lineOf(node);
  enumeration.name = identifier(node, "name");
  enumeration.bitfield = flag(node, "bitfield");
  since(node, version);  // checked only: its entries have versions of their own
  NamesSeen seen;
  for (const xml_node& child : xml_.children(node, {"description", "entry"})) {
    if (is(child, "description")) {
      enumeration.description = readDescription(child);
    } else {
      append(child, seen, enumeration.entries, readEntry(child, version));
    }
  }
  if (enumeration.entries.empty()) {
    xml_.reject(node, fmt::format("enumeration '{}' has no entry", enumeration.name));
  }
  return enumeration;
}

EnumerationEntry Reader::readEntry(const xml_node& node, int version) const {
  EnumerationEntry entry;
  entry.line = xml_.lineOf(node);
  entry.name = xml_.require(node, "name");
  entry.value = xml_.require(node, "value");
  entry.since = since(node, version);
  entry.description.summary = node.attribute("summary").value();
  if (!isIdentifierEnd(entry.name)) {
    xml_.reject(node, fmt::format("'{}' cannot be part of a C name", entry.name));
  }
  if (!isEnumerationValue(entry.value)) {
    xml_.reject(node, fmt::format("'{}' is no integer of 32 bits", entry.value));
  }
  for (const xml_node& child : xml_.children(node, {"description"})) {
    entry.description = readDescription(child);
  }
  return entry;
}

Description Reader::readDescription(const xml_node& node) const {
  return {node.attribute("summary").value(), xml_.text(node)};
}

std::string Reader::identifier(const xml_node& node, const char* attribute) const {
  std::string name = xml_.require(node, attribute);
  if (!isIdentifier(name)) {
    xml_.reject(node,
                fmt::format("{} '{}' of <{}> is no C identifier", attribute, name, node.name()));
  }
  return name;
}

int Reader::positive(const xml_node& node, const char* attribute) const {
  const std::string text = xml_.require(node, attribute);
  int number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size() || number < 1) {
    xml_.reject(node,
                fmt::format("{} '{}' of <{}> is no version number", attribute, text, node.name()));
  }
  return number;
}

int Reader::since(const xml_node& node, int version) const {
  const int number = node.attribute("since") ? positive(node, "since") : 1;
  if (number > version) {
    xml_.reject(node, fmt::format("<{}> is there since version {} of an interface of version {}",
                                  node.name(), number, version));
  }
  return number;
}

bool Reader::flag(const xml_node& node, const char* attribute) const {
  const std::string text = node.attribute(attribute).value();
  if (!text.empty() && text != "true" && text != "false") {
    xml_.reject(node, fmt::format("{} '{}' is neither true nor false", attribute, text));
  }
  return text == "true";
}

// The interfaces of a protocol, and its enumerations as "interface.name".
std::set<std::string> referenceTargets(const Protocol& protocol) {
  std::set<std::string> targets;
  for (const Interface& interface : protocol.interfaces) {
    targets.insert(interface.name);
    for (const Enumeration& enumeration : interface.enumerations) {
      targets.insert(interface.name + "." + enumeration.name);
    }
  }
  return targets;
}

// The other half of the enumeration's name is the interface, which may be of another protocol:
// then all that can be asked is that it looks like a name.
bool leadsSomewhere(const std::string& reference, const Interface& owner,
                    const std::set<std::string>& targets) {
  const std::size_t dot = reference.find('.');
  const std::string interface = dot == std::string::npos ? owner.name : reference.substr(0, dot);
  const std::string name = dot == std::string::npos ? reference : reference.substr(dot + 1);
  if (targets.count(interface) == 0) return isIdentifier(interface) && isIdentifier(name);
  return targets.count(interface + "." + name) != 0;
}

void checkEnumerations(const Protocol& protocol) {
  const std::set<std::string> targets = referenceTargets(protocol);
  const auto check = [&](const Interface& interface, const std::vector<Message>& messages) {
    for (const Message& message : messages) {
      for (const Argument& argument : message.arguments) {
        if (!argument.enumeration.empty() &&
            !leadsSomewhere(argument.enumeration, interface, targets)) {
          throw ProtocolError(protocol.file, argument.line,
                              fmt::format("there is no enumeration '{}'", argument.enumeration));
        }
      }
    }
  };
  for (const Interface& interface : protocol.interfaces) {
    check(interface, interface.requests);
    check(interface, interface.events);
  }
}

}  // namespace

Protocol readProtocol(const std::string& path) {
  Protocol protocol = Reader(path).read();
  checkEnumerations(protocol);
  checkNames(protocol);
  return protocol;
}

}  // namespace wayland
