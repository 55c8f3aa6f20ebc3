#ifndef ORBEL_SRC_DEFINITIONLOCK_HPP
#define ORBEL_SRC_DEFINITIONLOCK_HPP

#include <mutex>

namespace orbel {

// Held by the thread that registers the classes of a package or defines a class. One lock for all,
// since a definition may need any other class; recursive, since it does so in the same thread.
std::recursive_mutex& definitionMutex();

using DefinitionLock = std::lock_guard<std::recursive_mutex>;

}  // namespace orbel

#endif
