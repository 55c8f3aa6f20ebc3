#include "orbel/IndexGuard.hpp"

#include "orbel/HostErrors.hpp"

namespace orbel {

void checkIndex(std::uint32_t index, std::size_t count) {
  if (index < 1 || index > count) {
    raise("IndexOutOfRange", {static_cast<double>(index), static_cast<double>(count)});
  }
}

}  // namespace orbel
