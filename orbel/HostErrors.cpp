#include "orbel/HostErrors.hpp"

#include <utility>

namespace orbel {

void raise(const char* identifier, std::vector<MessageArgument> arguments) {
  throwDiagnostic(createDiagnostic(MessageRecord("Orbel", identifier, std::move(arguments)), ""),
                  nullptr);
}

}  // namespace orbel
