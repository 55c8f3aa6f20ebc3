#include "python/orv/native/tracing/Deltas.hpp"

#include <limits>
#include <stdexcept>

namespace orv {
namespace {

constexpr std::string_view digits =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::uint64_t continues = 32;

using Values = std::array<std::int8_t, 256>;

constexpr Values makeValues() {
  Values values{};
  for (auto& value : values) value = -1;
  for (std::size_t i = 0; i < digits.size(); ++i) {
    values[static_cast<unsigned char>(digits[i])] = static_cast<std::int8_t>(i);
  }
  return values;
}

constexpr Values valueOf = makeValues();

}  // namespace

char* writeNumber(char* to, std::int64_t number) {
  auto rest = number < 0 ? (static_cast<std::uint64_t>(-number) << 1U) | 1U
                         : static_cast<std::uint64_t>(number) << 1U;
  while (rest >= continues) {
    *to++ = digits[(rest & (continues - 1)) | continues];
    rest >>= 5U;
  }
  *to++ = digits[rest];
  return to;
}

std::int64_t takeNumber(std::string_view& text) {
  std::uint64_t number = 0;
  for (unsigned i = 0; i < longestNumber && i < text.size(); ++i) {
    const std::int8_t value = valueOf[static_cast<unsigned char>(text[i])];
    if (value < 0) break;
    number |= (static_cast<std::uint64_t>(value) & (continues - 1)) << (5 * i);
    if ((static_cast<std::uint64_t>(value) & continues) != 0) continue;
    text.remove_prefix(i + 1);
    const auto magnitude = static_cast<std::int64_t>(number >> 1U);
    return (number & 1U) != 0 ? -magnitude : magnitude;
  }
  throw std::invalid_argument("the table of numbers is damaged");
}

std::vector<std::vector<std::int32_t>> columnsOf(std::string_view text, std::size_t fields) {
  std::vector<std::vector<std::int32_t>> columns(fields);
  std::vector<std::int64_t> row(fields);
  while (!text.empty()) {
    for (std::size_t field = 0; field < fields; ++field) {
      const std::int64_t delta = takeNumber(text);
      constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max();
      if (delta > 2 * most || delta < -2 * most) {
        throw std::invalid_argument("the table of numbers is damaged");
      }
      row[field] += delta;
      if (row[field] < 0 || row[field] > most) {
        throw std::invalid_argument("the table of numbers is damaged");
      }
      columns[field].push_back(static_cast<std::int32_t>(row[field]));
    }
  }
  return columns;
}

}  // namespace orv
