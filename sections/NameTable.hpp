#ifndef VARN_SECTIONS_NAMETABLE_HPP
#define VARN_SECTIONS_NAMETABLE_HPP

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace Varn {

// Finds a name in a fixed set by exact comparison, reading a few characters and comparing once: the
// hash is chosen when the table is compiled so that no two names share a slot.
//
// A name is mapped to its position in the array that the table was made from. Empty names in the
// array only hold a position and are never found. The others must differ in their length or in a
// character at a quarter of it: first, second, ... last.
template <std::size_t N>
class NameTable {
 public:
  static_assert(N < 128, "the hash is searched for among 512 slots");

  constexpr explicit NameTable(const std::array<std::string_view, N>& names) : names_(names) {
    while (!fill()) seed_ = seed_ * 6364136223846793005U + 1442695040888963407U;
  }

  // The position of `name`, or -1.
  constexpr int find(std::string_view name) const {
    if (name.empty()) return -1;
    const int position = slots_[slotOf(name)] - 1;
    return position >= 0 && names_[static_cast<std::size_t>(position)] == name ? position : -1;
  }

 private:
  static constexpr unsigned int slotBits = 9;

  static constexpr std::uint64_t character(std::string_view name, std::size_t index) {
    return static_cast<unsigned char>(name[index]);
  }

  constexpr std::size_t slotOf(std::string_view name) const {
    const std::size_t length = name.size();
    const std::size_t quarter = length / 4;
    const std::uint64_t sample = length << 40U | character(name, 0) << 32U |
                                 character(name, quarter) << 24U |
                                 character(name, 2 * quarter) << 16U |
                                 character(name, 3 * quarter) << 8U | character(name, length - 1);
    return static_cast<std::size_t>((sample * (seed_ | 1U)) >> (64U - slotBits));
  }

  constexpr bool fill() {
    for (auto& slot : slots_) slot = 0;
    for (std::size_t i = 0; i < N; ++i) {
      if (names_[i].empty()) continue;
      auto& slot = slots_[slotOf(names_[i])];
      if (slot != 0) return false;
      slot = static_cast<std::int8_t>(i + 1);
    }
    return true;
  }

  std::array<std::string_view, N> names_;
  std::array<std::int8_t, std::size_t{1} << slotBits> slots_{};
  std::uint64_t seed_ = 0x9E3779B97F4A7C15U;
};

}  // namespace Varn

#endif
