#ifndef WAYLAND_PROTOCOLERROR_HPP
#define WAYLAND_PROTOCOLERROR_HPP

#include <stdexcept>
#include <string>

#include <fmt/format.h>

namespace wayland {

// A protocol description that cannot be used: where, and why.
class ProtocolError : public std::runtime_error {
 public:
  ProtocolError(const std::string& file, int line, const std::string& reason)
      : std::runtime_error(fmt::format("{}:{}: {}", file, line, reason)) {}
};

}  // namespace wayland

#endif
