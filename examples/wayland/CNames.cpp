#include "CNames.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <string_view>
#include <utility>

#include <fmt/format.h>

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

// The functions that a client has for every interface, whatever its requests.
constexpr std::array<const char*, 4> commonFunctions = {"add_listener", "set_user_data",
                                                        "get_user_data", "get_version"};

class NamesInUse {
 public:
  explicit NamesInUse(const Protocol& protocol) : file_(protocol.file) {}

  void add(const std::string& name, int line) {
    const auto [earlier, isNew] = lines_.emplace(name, line);
    if (!isNew) {
      throw ProtocolError(file_, line,
                          fmt::format("this makes a second '{}' in C, beside the one of line {}",
                                      name, earlier->second));
    }
  }

 private:
  const std::string& file_;
  std::map<std::string, int> lines_;
};

void addMessages(const Interface& interface, NamesInUse& names) {
  for (const Message& request : interface.requests) {
    names.add(requestFunction(interface, request), request.line);
    names.add(requestOpcode(interface, request), request.line);
    names.add(sinceMacro(interface, request), request.line);
  }
  for (const Message& event : interface.events) {
    names.add(eventFunction(interface, event), event.line);
    names.add(eventOpcode(interface, event), event.line);
    // The one macro serves a request and an event of the same name and version.
    const bool shared = std::any_of(
        interface.requests.begin(), interface.requests.end(),
        [&](const Message& m) { return m.name == event.name && m.since == event.since; });
    if (!shared) {
      names.add(sinceMacro(interface, event), event.line);
    }
  }
}

void addEnumerations(const Interface& interface, NamesInUse& names) {
  for (const Enumeration& enumeration : interface.enumerations) {
    names.add(capitals(enumerationTag(interface, enumeration)) + "_ENUM", enumeration.line);
    names.add("tag " + enumerationTag(interface, enumeration), enumeration.line);
    for (const EnumerationEntry& entry : enumeration.entries) {
      names.add(enumeratorName(interface, enumeration, entry), entry.line);
      names.add(enumeratorName(interface, enumeration, entry) + "_SINCE_VERSION", entry.line);
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
  if (digits.empty() || !isDigit(digits.front())) {
    return false;
  }
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

void checkNames(const Protocol& protocol) {
  NamesInUse names(protocol);
  names.add(findFunction(protocol), protocol.line);
  for (const Interface& interface : protocol.interfaces) {
    names.add(interfaceSymbol(interface.name), interface.line);
    names.add(versionMacro(interface), interface.line);
    for (const char* suffix : {"", "_listener", "_interface"}) {
      names.add("tag " + interface.name + suffix, interface.line);
    }
    for (const char* function : commonFunctions) {
      names.add(interface.name + "_" + function, interface.line);
    }
    addMessages(interface, names);
    addEnumerations(interface, names);
  }
}

}  // namespace wayland
