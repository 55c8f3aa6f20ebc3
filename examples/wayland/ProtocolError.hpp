#ifndef WAYLAND_PROTOCOLERROR_HPP
#define WAYLAND_PROTOCOLERROR_HPP

#include <stdexcept>
#include <string>

namespace wayland {

// A protocol description that cannot be used: where, and why. Control characters, which names in
// descriptions may have, are spelled out in the message, such as "\u001b".
class ProtocolError : public std::runtime_error {
 public:
  ProtocolError(const std::string& file, int line, const std::string& reason);
};

}  // namespace wayland

#endif
