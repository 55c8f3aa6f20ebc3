#include "ArgumentTypes.hpp"

#include <algorithm>
#include <array>

#include <fmt/format.h>

namespace wayland {
namespace {

constexpr std::array<ArgumentTypeFacts, 8> argumentTypes = {{
    {ArgumentType::Int, "int", 'i', "int32_t ", false, true, false},
    {ArgumentType::Uint, "uint", 'u', "uint32_t ", false, true, false},
    {ArgumentType::Fixed, "fixed", 'f', "wl_fixed_t ", false, false, false},
    {ArgumentType::String, "string", 's', "const char *", true, false, false},
    {ArgumentType::Object, "object", 'o', nullptr, true, false, true},
    {ArgumentType::NewId, "new_id", 'n', nullptr, true, false, true},
    {ArgumentType::Array, "array", 'a', "struct wl_array *", true, false, false},
    {ArgumentType::Fd, "fd", 'h', "int32_t ", false, false, false},
}};

bool isUntypedNewId(const Argument& argument) {
  return argument.type == ArgumentType::NewId && argument.interface.empty();
}

std::string objectType(const Argument& argument, Side side) {
  if (side == Side::ServerRequest && argument.type == ArgumentType::NewId) return "uint32_t ";
  if (side == Side::ServerRequest || side == Side::ServerEvent) return "struct wl_resource *";
  return argument.interface.empty() ? "void *" : fmt::format("struct {} *", argument.interface);
}

// The arguments that precede the id of an object of any interface, on the wire and in calls.
void addInterfaceParameters(const Message& message, Side side, std::vector<std::string>& result) {
  const char* type = side == Side::ClientRequest ? "const struct wl_interface *" : "const char *";
  result.push_back(type + freeParameterName(message, "interface"));
  result.push_back("uint32_t " + freeParameterName(message, "version"));
}

}  // namespace

const ArgumentTypeFacts& factsOf(ArgumentType type) {
  return *std::find_if(argumentTypes.begin(), argumentTypes.end(),
                       [type](const ArgumentTypeFacts& facts) { return facts.type == type; });
}

const ArgumentTypeFacts* findArgumentType(const std::string& name) {
  const auto* found =
      std::find_if(argumentTypes.begin(), argumentTypes.end(),
                   [&](const ArgumentTypeFacts& facts) { return facts.name == name; });
  return found == argumentTypes.end() ? nullptr : found;
}

std::string signatureOf(const Message& message) {
  std::string signature = message.since > 1 ? std::to_string(message.since) : std::string();
  for (const Argument& argument : message.arguments) {
    if (argument.nullable) signature += '?';
    if (isUntypedNewId(argument)) signature += "su";
    signature += factsOf(argument.type).letter;
  }
  return signature;
}

std::vector<std::string> signatureInterfaces(const Message& message) {
  std::vector<std::string> interfaces;
  for (const Argument& argument : message.arguments) {
    if (isUntypedNewId(argument)) interfaces.resize(interfaces.size() + 2);
    interfaces.push_back(argument.interface);
  }
  return interfaces;
}

std::vector<std::string> cParameters(const Message& message, Side side) {
  std::vector<std::string> parameters;
  for (const Argument& argument : message.arguments) {
    if (isUntypedNewId(argument)) addInterfaceParameters(message, side, parameters);
    if (argument.type == ArgumentType::NewId && side == Side::ClientRequest) continue;
    const char* cType = factsOf(argument.type).cType;
    parameters.push_back((cType == nullptr ? objectType(argument, side) : cType) + argument.name);
  }
  return parameters;
}

std::string freeParameterName(const Message& message, std::string wanted) {
  const auto taken = [&](const Argument& argument) { return argument.name == wanted; };
  while (std::any_of(message.arguments.begin(), message.arguments.end(), taken)) wanted += '_';
  return wanted;
}

}  // namespace wayland
