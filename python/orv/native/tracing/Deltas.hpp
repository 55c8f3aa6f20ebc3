#ifndef ORV_TRACING_DELTAS_HPP
#define ORV_TRACING_DELTAS_HPP

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orv {

// Numbers as text: base64 VLQ as in source maps, six bits a character, the sign in the lowest bit
// of the first. Small numbers of either sign take one character.
constexpr std::size_t longestNumber = 13;
// Writes a number of at most longestNumber characters. Returns its end.
char* writeNumber(char* to, std::int64_t number);

template <std::size_t Count>
void appendNumbers(std::string& text, const std::array<std::int64_t, Count>& numbers) {
  char characters[Count * longestNumber];
  char* end = characters;
  for (const std::int64_t number : numbers) end = writeNumber(end, number);
  text.append(characters, static_cast<std::size_t>(end - characters));
}

// Takes the number that `text` begins with. Throws std::invalid_argument for what is none.
std::int64_t takeNumber(std::string_view& text);

// A table of numbers as text, row by row; each field is the difference from that of the row before.
template <std::size_t Fields>
class DeltaTable {
 public:
  using Row = std::array<std::int64_t, Fields>;

  void append(const Row& row) {
    Row differences;
    for (std::size_t field = 0; field < Fields; ++field) {
      differences[field] = row[field] - last_[field];
    }
    appendNumbers(text_, differences);
    last_ = row;
  }
  const std::string& text() const { return text_; }

 private:
  std::string text_;
  Row last_{};
};

// The columns of a table of so many fields. Throws std::invalid_argument for a text that is none,
// or a value that 32 bits do not hold.
std::vector<std::vector<std::int32_t>> columnsOf(std::string_view text, std::size_t fields);

}  // namespace orv

#endif
