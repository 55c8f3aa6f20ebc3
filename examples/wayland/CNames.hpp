// The names that generated C code declares, and which names are valid.
#ifndef WAYLAND_CNAMES_HPP
#define WAYLAND_CNAMES_HPP

#include <string>

#include "Protocol.hpp"

namespace wayland {

// Whether `name` is a C identifier of ASCII characters and no keyword.
bool isIdentifier(const std::string& name);
// Whether `name` can end an identifier.
bool isIdentifierEnd(const std::string& name);
// Whether `value` is a C integer constant, perhaps negative, that fits 32 bits.
bool isEnumerationValue(const std::string& value);

// In capitals, of ASCII letters.
std::string capitals(std::string name);

// "wl_surface_interface", the constant.
std::string interfaceSymbol(const std::string& interfaceName);
// "WL_SURFACE_REQUEST_ATTACH" and "WL_SURFACE_EVENT_ENTER".
std::string requestOpcode(const Interface& interface, const Message& request);
std::string eventOpcode(const Interface& interface, const Message& event);
// "WL_SURFACE_ATTACH_SINCE_VERSION".
std::string sinceMacro(const Interface& interface, const Message& message);
// "wl_output_transform" and "WL_OUTPUT_TRANSFORM_90".
std::string enumerationTag(const Interface& interface, const Enumeration& enumeration);
std::string enumeratorName(const Interface& interface, const Enumeration& enumeration,
                           const EnumerationEntry& entry);
// "wl_surface_attach" and "wl_surface_send_enter".
std::string requestFunction(const Interface& interface, const Message& request);
std::string eventFunction(const Interface& interface, const Message& event);
// "WL_SURFACE_INTERFACE_VERSION".
std::string versionMacro(const Interface& interface);
// "xdg_shell_find_interface".
std::string findFunction(const Protocol& protocol);

// Whether a client has a function "wl_surface_destroy" that is not a request: every object has one
// but the display, which is disconnected instead.
bool hasDestroyFunction(const Interface& interface);

// Throws ProtocolError when two different things of `protocol` have the same name in C, which
// happens when parts of names run together ("a_b" of "c", "a" of "b_c"), and when a name is one
// that the generated code needs for something else.
void checkNames(const Protocol& protocol);

}  // namespace wayland

#endif
