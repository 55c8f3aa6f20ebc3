#ifndef ORV_MODELS_DISTINCTTEXTS_HPP
#define ORV_MODELS_DISTINCTTEXTS_HPP

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace orv {

// Texts by number, each kept once.
class DistinctTexts {
 public:
  // The number of a text, which is added if it is new. Throws std::length_error when there are more
  // than 4 GiB.
  std::uint32_t add(std::string_view text);

  // Valid until a text is added.
  std::string_view operator[](std::uint32_t number) const {
    const std::uint32_t begin = number == 0 ? 0 : ends_[number - 1];
    return std::string_view(bytes_).substr(begin, ends_[number] - begin);
  }

  // Frees what only add() needs: nothing may be added any more.
  void finish();

 private:
  std::uint32_t& slotOf(std::string_view text);
  void grow();

  std::string bytes_;
  std::vector<std::uint32_t> ends_;
  // Open addressing, by hash: one past the number of a text, or 0.
  std::vector<std::uint32_t> slots_;
  std::uint32_t last_ = 0;  // the number that add() gave
};

}  // namespace orv

#endif
