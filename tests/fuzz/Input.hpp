#ifndef VARN_TESTS_FUZZ_INPUT_HPP
#define VARN_TESTS_FUZZ_INPUT_HPP

#include <cstddef>
#include <cstdint>
#include <string>

namespace fuzz {

// Reads choices and texts from the bytes of an input. An input that is used up gives zeros.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : next_(data), end_(data + size) {}

  bool isEmpty() const { return next_ == end_; }

  unsigned int byte() { return isEmpty() ? 0 : *next_++; }

  // Below `count`.
  std::size_t choice(std::size_t count) { return byte() % count; }

  bool flag() { return choice(2) != 0; }

  // Up to 31 characters as they are, or up to 32,768 times one character.
  std::string text() {
    const unsigned int head = byte();
    if (head >= 224) return std::string(std::size_t{1} << (head - 224) / 2, 'x');
    std::string text;
    for (unsigned int i = 0; i < head % 32; ++i) text += static_cast<char>(byte());
    return text;
  }

 private:
  const std::uint8_t* next_;
  const std::uint8_t* end_;
};

}  // namespace fuzz

#endif
