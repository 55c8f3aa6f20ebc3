#ifndef ORBEL_ARGUMENTS_HPP
#define ORBEL_ARGUMENTS_HPP

#include <cstddef>
#include <vector>

#include <orbel/Value.hpp>

namespace orbel {

// A view of the values that a script passes to a call, valid while they are.
class Arguments {
 public:
  Arguments() = default;
  Arguments(const Value* first, std::size_t size) : first_(first), size_(size) {}
  // NOLINTNEXTLINE(google-explicit-constructor): a list of values is what a call is given
  Arguments(const std::vector<Value>& values) : Arguments(values.data(), values.size()) {}

  std::size_t size() const { return size_; }
  const Value& operator[](std::size_t position) const { return first_[position]; }

 private:
  const Value* first_ = nullptr;
  std::size_t size_ = 0;
};

}  // namespace orbel

#endif
