// The contents of a protocol description, in the order of the file.
#ifndef WAYLAND_PROTOCOL_HPP
#define WAYLAND_PROTOCOL_HPP

#include <string>
#include <vector>

namespace wayland {

// Either part may be empty. The text still has the line breaks and the indentation of its file.
struct Description {
  std::string summary;
  std::string text;
};

enum class ArgumentType { Int, Uint, Fixed, String, Object, NewId, Array, Fd };

struct Argument {
  std::string name;
  ArgumentType type = ArgumentType::Int;
  std::string interface;    // of an object or a new_id; empty when any interface will do
  std::string enumeration;  // "name" or "interface.name"; empty for a plain number
  std::string summary;
  bool nullable = false;
  int line = 0;
};

// A request, which the client sends, or an event, which the server sends.
struct Message {
  std::string name;
  int since = 1;
  bool destructor = false;
  Description description;
  std::vector<Argument> arguments;
  int line = 0;
};

struct EnumerationEntry {
  std::string name;   // may start with a digit: it is always the end of a longer name
  std::string value;  // a C integer constant, as written
  int since = 1;
  Description description;
  int line = 0;
};

struct Enumeration {
  std::string name;
  bool bitfield = false;
  Description description;
  std::vector<EnumerationEntry> entries;
  int line = 0;
};

struct Interface {
  std::string name;
  int version = 1;
  Description description;
  std::vector<Message> requests;
  std::vector<Message> events;
  std::vector<Enumeration> enumerations;
  int line = 0;
};

struct Protocol {
  std::string file;  // the path it was read from
  std::string name;
  std::string copyright;
  Description description;
  std::vector<Interface> interfaces;
  int line = 0;
};

// The interfaces of other protocols that the messages of `protocol` refer to, each once, in the
// order of their first use.
std::vector<std::string> foreignInterfaces(const Protocol& protocol);

// The argument of `message` that makes an object, or null.
const Argument* newObject(const Message& message);

}  // namespace wayland

#endif
