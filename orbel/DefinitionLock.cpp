#include "orbel/DefinitionLock.hpp"

namespace orbel {

// Never destroyed: classes may be needed after every other static object is destroyed.
std::recursive_mutex& definitionMutex() {
  static auto& mutex = *new std::recursive_mutex;
  return mutex;
}

}  // namespace orbel
