#ifndef ORBEL_HOSTMEMORY_HPP
#define ORBEL_HOSTMEMORY_HPP

#include <cstddef>

#include <orbel/Export.hpp>

namespace orbel {

// Base of what a module makes and then hands over to the host for good: it is allocated by the
// host, which is therefore free to release it whatever run-time library the module was built with.
class ORBEL_EXPORT HostMemory {
 public:
  static void* operator new(std::size_t size);
  static void operator delete(void* memory) noexcept;
};

}  // namespace orbel

#endif
