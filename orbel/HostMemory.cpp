#include "orbel/HostMemory.hpp"

#include <new>

namespace orbel {

void* HostMemory::operator new(std::size_t size) { return ::operator new(size); }

void HostMemory::operator delete(void* memory) noexcept { ::operator delete(memory); }

}  // namespace orbel
