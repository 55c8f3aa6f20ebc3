#ifndef ORV_OUTPUT_DESCRIPTOR_HPP
#define ORV_OUTPUT_DESCRIPTOR_HPP

#include <unistd.h>
#include <utility>

namespace orv {

// Owns a file descriptor, or none.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor& operator=(const Descriptor&) = delete;
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }
  ~Descriptor() {
    if (number_ >= 0) static_cast<void>(::close(number_));
  }

  explicit operator bool() const { return number_ >= 0; }
  int get() const { return number_; }
  // The caller closes it.
  int release() { return std::exchange(number_, -1); }

 private:
  int number_ = -1;
};

}  // namespace orv

#endif
