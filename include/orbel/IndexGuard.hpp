#ifndef ORBEL_INDEXGUARD_HPP
#define ORBEL_INDEXGUARD_HPP

#include <cstddef>
#include <cstdint>
#include <functional>

#include <orbel/Export.hpp>

namespace orbel {

// Throws "IndexOutOfRange" unless 1 <= `index` <= `count`.
ORBEL_EXPORT void checkIndex(std::uint32_t index, std::size_t count);

// A guard (HandleClass::addMethod) for methods that take a one-based index as their only argument.
// `counter` gives the number of things that can be addressed: a member function of the object, or a
// function that takes the object.
template <class Counter>
auto oneBasedIndex(Counter counter) {
  return [counter](const auto& object, std::uint32_t index) {
    checkIndex(index, std::invoke(counter, object));
  };
}

}  // namespace orbel

#endif
