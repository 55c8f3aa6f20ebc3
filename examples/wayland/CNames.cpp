#include "CNames.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <string_view>
#include <vector>

#include <fmt/format.h>

#include "FileNames.hpp"
#include "ProtocolError.hpp"

namespace wayland {
namespace {

constexpr std::array<std::string_view, 37> keywords = {
    "auto",     "break",  "case",   "char",     "const",     "continue", "default",  "do",
    "double",   "else",   "enum",   "extern",   "float",     "for",      "goto",     "if",
    "inline",   "int",    "long",   "register", "restrict",  "return",   "short",    "signed",
    "sizeof",   "static", "struct", "switch",   "typedef",   "union",    "unsigned", "void",
    "volatile", "while",  "_Bool",  "_Complex", "_Imaginary"};

bool isDigit(char c) { return c >= '0' && c <= '9'; }

bool isNameCharacter(char c) {
  return isDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

// The names that the generated code uses, the macros of <stdbool.h>, and the tags of libwayland
// that no protocol declares.
constexpr std::array<std::string_view, 34> foreignNames = {
    "NULL",
    "WL_MARSHAL_FLAG_DESTROY",
    "bool",
    "false",
    "int32_t",
    "size_t",
    "true",
    "uint32_t",
    "wl_fixed_t",
    "wl_proxy_add_listener",
    "wl_proxy_destroy",
    "wl_proxy_get_user_data",
    "wl_proxy_get_version",
    "wl_proxy_marshal_flags",
    "wl_proxy_set_user_data",
    "wl_resource_post_event",
    "tag wl_argument",
    "tag wl_array",
    "tag wl_client",
    "tag wl_event_loop",
    "tag wl_event_queue",
    "tag wl_event_source",
    "tag wl_global",
    "tag wl_interface",
    "tag wl_iterator_result",
    "tag wl_list",
    "tag wl_listener",
    "tag wl_message",
    "tag wl_object",
    "tag wl_protocol_logger",
    "tag wl_protocol_logger_type",
    "tag wl_proxy",
    "tag wl_resource",
    "tag wl_signal",
};

// The functions that a client has for every interface, whatever its requests.
constexpr std::array<const char*, 4> commonFunctions = {"add_listener", "set_user_data",
                                                        "get_user_data", "get_version"};

class NamesInUse {
 public:
  explicit NamesInUse(const Protocol& protocol) : file_(protocol.file) {
    for (const std::string_view name : foreignNames) addExclusive(std::string(name), noLine);
  }

  void add(const std::string& name, int line) { add(name, {line, false}); }

  // A name that no interface, message or argument may have either: a macro, or something that the
  // functions with those arguments use.
  void addExclusive(const std::string& name, int line) { add(name, {line, true}); }

  // For the names of interfaces, messages and arguments, each of which is a scope.
  void requireUsable(const std::string& name, int line) const {
    const auto found = uses_.find(name);
    if (found != uses_.end() && found->second.exclusive) reject(name, line, found->second.line);
  }

 private:
  static constexpr int noLine = 0;

  struct Use {
    int line;
    bool exclusive;
  };

  void add(const std::string& name, Use use) {
    const auto [earlier, isNew] = uses_.emplace(name, use);
    if (!isNew) reject(name, use.line, earlier->second.line);
  }

  [[noreturn]] void reject(const std::string& name, int line, int earlier) const {
    const std::string other = earlier == noLine ? "the one that generated code needs"
                                                : fmt::format("the one of line {}", earlier);
    throw ProtocolError(file_, line,
                        fmt::format("this makes a second '{}' in C, beside {}", name, other));
  }

  const std::string& file_;
  std::map<std::string, Use> uses_;
};

void addMessages(const Interface& interface, NamesInUse& names) {
  std::map<std::string, int> requestVersions;
  for (const Message& request : interface.requests) {
    names.add(requestFunction(interface, request), request.line);
    names.addExclusive(requestOpcode(interface, request), request.line);
    names.addExclusive(sinceMacro(interface, request), request.line);
    requestVersions.emplace(request.name, request.since);
  }
  for (const Message& event : interface.events) {
    names.add(eventFunction(interface, event), event.line);
    names.addExclusive(eventOpcode(interface, event), event.line);
    // The one macro serves a request and an event of the same name and version.
    const auto request = requestVersions.find(event.name);
    if (request == requestVersions.end() || request->second != event.since) {
      names.addExclusive(sinceMacro(interface, event), event.line);
    }
  }
}

void addEnumerations(const Interface& interface, NamesInUse& names) {
  for (const Enumeration& enumeration : interface.enumerations) {
    names.addExclusive(capitals(enumerationTag(interface, enumeration)) + "_ENUM",
                       enumeration.line);
    names.add("tag " + enumerationTag(interface, enumeration), enumeration.line);
    for (const EnumerationEntry& entry : enumeration.entries) {
      names.add(enumeratorName(interface, enumeration, entry), entry.line);
      names.addExclusive(enumeratorName(interface, enumeration, entry) + "_SINCE_VERSION",
                         entry.line);
    }
  }
}

void addInterface(const Interface& interface, NamesInUse& names) {
  names.addExclusive(interfaceSymbol(interface.name), interface.line);
  names.addExclusive(versionMacro(interface), interface.line);
  for (const char* suffix : {"", "_listener", "_interface"}) {
    names.add("tag " + interface.name + suffix, interface.line);
  }
  for (const char* function : commonFunctions) {
    names.add(interface.name + "_" + function, interface.line);
  }
  if (hasDestroyFunction(interface)) names.add(interface.name + "_destroy", interface.line);
  addMessages(interface, names);
  addEnumerations(interface, names);
}

void requireUsable(const std::vector<Message>& messages, const NamesInUse& names) {
  for (const Message& message : messages) {
    names.requireUsable(message.name, message.line);
    for (const Argument& argument : message.arguments) {
      names.requireUsable(argument.name, argument.line);
    }
  }
}

}  // namespace

bool isIdentifierEnd(const std::string& name) {
  return !name.empty() && std::all_of(name.begin(), name.end(), isNameCharacter);
}

bool isIdentifier(const std::string& name) {
  return isIdentifierEnd(name) && !isDigit(name.front()) &&
         std::find(keywords.begin(), keywords.end(), name) == keywords.end();
}

bool isEnumerationValue(const std::string& value) {
  const std::string digits = value.substr(!value.empty() && value.front() == '-' ? 1 : 0);
  if (digits.empty() || !isDigit(digits.front())) return false;
  errno = 0;
  char* end = nullptr;
  const long long number = std::strtoll(value.c_str(), &end, 0);
  return errno == 0 && end == value.c_str() + value.size() && number >= INT32_MIN &&
         number <= UINT32_MAX;
}

std::string capitals(std::string name) {
  std::transform(name.begin(), name.end(), name.begin(), [](char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  });
  return name;
}

std::string interfaceSymbol(const std::string& interfaceName) {
  return interfaceName + "_interface";
}

std::string requestOpcode(const Interface& interface, const Message& request) {
  return capitals(interface.name + "_request_" + request.name);
}

std::string eventOpcode(const Interface& interface, const Message& event) {
  return capitals(interface.name + "_event_" + event.name);
}

std::string sinceMacro(const Interface& interface, const Message& message) {
  return capitals(interface.name + "_" + message.name + "_since_version");
}

std::string enumerationTag(const Interface& interface, const Enumeration& enumeration) {
  return interface.name + "_" + enumeration.name;
}

std::string enumeratorName(const Interface& interface, const Enumeration& enumeration,
                           const EnumerationEntry& entry) {
  return capitals(enumerationTag(interface, enumeration) + "_" + entry.name);
}

std::string requestFunction(const Interface& interface, const Message& request) {
  return interface.name + "_" + request.name;
}

std::string eventFunction(const Interface& interface, const Message& event) {
  return interface.name + "_send_" + event.name;
}

std::string versionMacro(const Interface& interface) {
  return capitals(interface.name + "_interface_version");
}

std::string findFunction(const Protocol& protocol) { return protocol.name + "_find_interface"; }

bool hasDestroyFunction(const Interface& interface) {
  return interface.name != "wl_display" &&
         std::none_of(interface.requests.begin(), interface.requests.end(),
                      [](const Message& request) { return request.name == "destroy"; });
}

void checkNames(const Protocol& protocol) {
  NamesInUse names(protocol);
  names.add(findFunction(protocol), protocol.line);
  for (const std::string& header : headerNames(protocol)) {
    names.addExclusive(includeGuard(header), protocol.line);
  }
  const std::vector<std::string> foreign = foreignInterfaces(protocol);
  for (const std::string& interface : foreign) {
    names.addExclusive(interfaceSymbol(interface), protocol.line);
    names.add("tag " + interface, protocol.line);
  }
  for (const Interface& interface : protocol.interfaces) addInterface(interface, names);
  for (const std::string& interface : foreign) names.requireUsable(interface, protocol.line);
  for (const Interface& interface : protocol.interfaces) {
    names.requireUsable(interface.name, interface.line);
    requireUsable(interface.requests, names);
    requireUsable(interface.events, names);
  }
}

}  // namespace wayland
