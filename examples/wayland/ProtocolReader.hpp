#ifndef WAYLAND_PROTOCOLREADER_HPP
#define WAYLAND_PROTOCOLREADER_HPP

#include <string>

#include "Protocol.hpp"

namespace wayland {

// Reads one protocol description: the XML format that wayland.dtd describes.
//
// What it returns can be written as C: every name is an identifier, unique in its place and none
// that the generated code itself needs, every number fits, every reference within the protocol
// leads somewhere. Throws ProtocolError with the line for anything else, std::system_error when the
// file cannot be read.
Protocol readProtocol(const std::string& path);

}  // namespace wayland

#endif
