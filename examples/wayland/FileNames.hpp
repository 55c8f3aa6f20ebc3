// The files that each protocol gets.
#ifndef WAYLAND_FILENAMES_HPP
#define WAYLAND_FILENAMES_HPP

#include <string>
#include <vector>

#include "Protocol.hpp"

namespace wayland {

std::string clientHeaderName(const Protocol& protocol);
std::string serverHeaderName(const Protocol& protocol);
std::string marshallingCodeName(const Protocol& protocol);
std::string enumerationsHeaderName(const Protocol& protocol);
std::string umbrellaHeaderName(const Protocol& protocol);

// Those that have an include guard, and all of them.
std::vector<std::string> headerNames(const Protocol& protocol);
std::vector<std::string> fileNames(const Protocol& protocol);

// "XDG_SHELL_ENUMS_H" for "xdg-shell-enums.h".
std::string includeGuard(const std::string& headerName);

}  // namespace wayland

#endif
