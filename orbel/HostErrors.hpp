#ifndef ORBEL_SRC_HOSTERRORS_HPP
#define ORBEL_SRC_HOSTERRORS_HPP

#include <vector>

#include <orbel/Diagnostics.hpp>

namespace orbel {

// Throws the host's own error `identifier`, component "Orbel".
[[noreturn]] void raise(const char* identifier, std::vector<MessageArgument> arguments);

}  // namespace orbel

#endif
