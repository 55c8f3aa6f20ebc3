// The arguments of messages in signatures and in C. The signature letters and the types
// array are those that libwayland documents for wl_message in wayland-util.h.
#ifndef WAYLAND_ARGUMENTTYPES_HPP
#define WAYLAND_ARGUMENTTYPES_HPP

#include <string>
#include <vector>

#include "Protocol.hpp"

namespace wayland {

struct ArgumentTypeFacts {
  ArgumentType type;
  const char* name;  // in descriptions
  char letter;       // in signatures
  // Up to the parameter's name. Null for objects, whose type depends on who calls.
  const char* cType;
  bool mayBeNull;
  bool mayNameEnumeration;
  bool mayNameInterface;
};

const ArgumentTypeFacts& factsOf(ArgumentType type);
// Null for a name that is no type.
const ArgumentTypeFacts* findArgumentType(const std::string& name);

// The signature of `message`, such as "3?o".
std::string signatureOf(const Message& message);

// The interface of each signature letter of `message`; empty where there is none.
std::vector<std::string> signatureInterfaces(const Message& message);

// The function whose parameters a message gives.
enum class Side {
  ClientRequest,  // the client's call: the object that it makes is returned, not passed
  ClientEvent,    // the client's handler
  ServerRequest,  // the server's handler: the object to make is passed as an id
  ServerEvent     // the server's call
};

// The C parameters for the arguments of `message`, such as "int32_t x". A request that makes an
// object of any interface has the interface and its version in front of the id.
std::vector<std::string> cParameters(const Message& message, Side side);

// `wanted`, made different from the name of each argument of `message`.
std::string freeParameterName(const Message& message, std::string wanted);

}  // namespace wayland

#endif
