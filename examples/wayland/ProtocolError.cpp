#include "ProtocolError.hpp"

#include <cstddef>
#include <string_view>

#include <fmt/format.h>

namespace wayland {
namespace {

// The length of the control character that `text` starts with, or 0. UTF-8 has those beyond ASCII
// as 0xC2 and a byte of 0x80 to 0x9F.
std::size_t controlAt(std::string_view text) {
  const auto first = static_cast<unsigned char>(text[0]);
  if (first < ' ' || first == 0x7F) return 1;
  const auto second = static_cast<unsigned char>(text.size() > 1 ? text[1] : 0);
  return first == 0xC2 && second >= 0x80 && second <= 0x9F ? 2 : 0;
}

std::string visible(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    const std::size_t control = controlAt(text);
    if (control != 0) {
      result += fmt::format("\\u{:04x}", static_cast<unsigned char>(text[control - 1]));
    } else {
      result += text[0];
    }
    text.remove_prefix(control != 0 ? control : 1);
  }
  return result;
}

}  // namespace

ProtocolError::ProtocolError(const std::string& file, int line, const std::string& reason)
    : std::runtime_error(visible(fmt::format("{}:{}: {}", file, line, reason))) {}

}  // namespace wayland
