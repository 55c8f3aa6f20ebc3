#include "Protocol.hpp"

#include <algorithm>
#include <set>

namespace wayland {

std::vector<std::string> foreignInterfaces(const Protocol& protocol) {
  std::set<std::string> known;
  for (const Interface& interface : protocol.interfaces) known.insert(interface.name);
  std::vector<std::string> foreign;
  const auto collect = [&](const std::vector<Message>& messages) {
    for (const Message& message : messages) {
      for (const Argument& argument : message.arguments) {
        if (!argument.interface.empty() && known.insert(argument.interface).second) {
          foreign.push_back(argument.interface);
        }
      }
    }
  };
  for (const Interface& interface : protocol.interfaces) {
    collect(interface.requests);
    collect(interface.events);
  }
  return foreign;
}

const Argument* newObject(const Message& message) {
  const auto found =
      std::find_if(message.arguments.begin(), message.arguments.end(),
                   [](const Argument& argument) { return argument.type == ArgumentType::NewId; });
  return found == message.arguments.end() ? nullptr : &*found;
}

}  // namespace wayland
