#ifndef VARN_TESTS_SUPPORT_DIAGNOSED_HPP
#define VARN_TESTS_SUPPORT_DIAGNOSED_HPP

#include <sstream>
#include <string>

#include <orbel/Diagnostics.hpp>

namespace Varn {

// The diagnostic that `call` throws, as "component:identifier(argument)(argument)"; "none" if it
// throws none. Texts stand in quotes, numbers do not.
template <typename Call>
std::string diagnosticOf(Call call) {
  try {
    call();
  } catch (const orbel::HostException& exception) {
    std::ostringstream text;
    text << exception.component() << ':' << exception.identifier();
    for (const orbel::MessageArgument& argument : exception.arguments()) {
      if (const auto* string = std::get_if<std::string>(&argument)) {
        text << "('" << *string << "')";
      } else {
        text << '(' << std::get<double>(argument) << ')';
      }
    }
    return text.str();
  }
  return "none";
}

}  // namespace Varn

#endif
