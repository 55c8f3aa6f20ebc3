#include "orbel/Text.hpp"

#include <iterator>

#include <boost/locale/utf.hpp>

namespace orbel {
namespace {

using Utf8 = boost::locale::utf::utf_traits<char>;
using Utf16 = boost::locale::utf::utf_traits<char16_t>;

constexpr char16_t escapeBase = 0xDC00;

bool isEscapedByte(char16_t unit) { return unit >= 0xDC80 && unit <= 0xDCFF; }

}  // namespace

std::u16string toUtf16(std::string_view text) {
  std::u16string result;
  result.reserve(text.size());
  for (auto at = text.begin(); at != text.end();) {
    auto next = at;
    const auto point = Utf8::decode(next, text.end());
    if (boost::locale::utf::is_valid_codepoint(point)) {
      Utf16::encode(point, std::back_inserter(result));
      at = next;
    } else {
      result += static_cast<char16_t>(escapeBase + static_cast<unsigned char>(*at));
      ++at;
    }
  }
  return result;
}

std::string toUtf8(std::u16string_view text) {
  std::string result;
  result.reserve(text.size());
  for (auto at = text.begin(); at != text.end();) {
    auto next = at;
    const auto point = Utf16::decode(next, text.end());
    if (boost::locale::utf::is_valid_codepoint(point)) {
      Utf8::encode(point, std::back_inserter(result));
      at = next;
      continue;
    }
    if (isEscapedByte(*at)) {
      result += static_cast<char>(*at - escapeBase);
    } else {
      Utf8::encode(*at, std::back_inserter(result));
    }
    ++at;
  }
  return result;
}

}  // namespace orbel
