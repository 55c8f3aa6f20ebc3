#ifndef ORBEL_HOSTMEMORY_HPP
#define ORBEL_HOSTMEMORY_HPP

#include <cstddef>

#include <orbel/Export.hpp>

namespace orbel {

// Base of objects that a module makes and passes to the host: the host allocates their memory, and
// can therefore free it whatever run-time library the module uses.
class ORBEL_EXPORT HostMemory {
 public:
  static void* operator new(std::size_t size);
  static void operator delete(void* memory) noexcept;
};

}  // namespace orbel

#endif
