#include "python/orv/native/models/SourceText.hpp"

#include <algorithm>
#include <cstdio>
#include <string>

namespace orv {
namespace {

// More than any model that templates can walk, and little enough for offsets in 32 bits.
constexpr std::size_t largestModel = std::size_t{1} << 30;

bool isContinuation(unsigned char byte) { return (byte & 0xC0) == 0x80; }

// The size of the UTF-8 sequence that `rest` begins with; 0 when it is none.
std::size_t sequenceSize(std::string_view rest) {
  const auto byte = [&](std::size_t i) {
    return i < rest.size() ? static_cast<unsigned char>(rest[i]) : static_cast<unsigned char>(0);
  };
  const unsigned char first = byte(0);
  const unsigned char second = byte(1);
  if (first < 0x80) return 1;
  if (first < 0xC2 || first > 0xF4 || !isContinuation(second)) return 0;
  if (first < 0xE0) return 2;
  if (!isContinuation(byte(2))) return 0;
  if (first < 0xF0) {
    const bool isOverlong = first == 0xE0 && second < 0xA0;
    const bool isSurrogate = first == 0xED && second >= 0xA0;
    return isOverlong || isSurrogate ? 0 : 3;
  }
  const bool isInRange = (first > 0xF0 || second >= 0x90) && (first < 0xF4 || second < 0x90);
  return isInRange && isContinuation(byte(3)) ? 4 : 0;
}

// How many bytes are looked at in one step; compilers do so in a few instructions.
constexpr std::size_t step = 64;

// Whether all bytes of a step are ASCII and none is NUL.
bool arePlain(const char* bytes) {
  unsigned char others = 0;
  for (std::size_t i = 0; i < step; ++i) {
    const auto byte = static_cast<unsigned char>(bytes[i]);
    others |= static_cast<unsigned char>(byte | (byte - 1));
  }
  return others < 0x80;
}

[[noreturn]] void refuseByte(std::string_view text, std::size_t offset) {
  const Location location = LineCounter(text).at(offset);
  if (text[offset] == '\0') throw ModelError(location, "a model cannot hold a NUL character");
  char byte[8];
  std::snprintf(byte, sizeof byte, "0x%02X", static_cast<unsigned char>(text[offset]));
  throw ModelError(location, std::string("expected UTF-8, got the byte ") + byte);
}

}  // namespace

std::string_view sourceText(std::string_view data) {
  if (data.size() > largestModel) throw ModelError({}, "the model is larger than 1 GiB");
  constexpr std::string_view mark = "\xEF\xBB\xBF";
  if (data.substr(0, mark.size()) == mark) data.remove_prefix(mark.size());
  std::size_t offset = 0;
  while (offset < data.size()) {
    const std::size_t end = std::min(offset + step, data.size());
    if (end - offset == step && arePlain(data.data() + offset)) {
      offset = end;
      continue;
    }
    while (offset < end) {
      const std::size_t size = data[offset] == '\0' ? 0 : sequenceSize(data.substr(offset));
      if (size == 0) refuseByte(data, offset);
      offset += size;
    }
  }
  return data;
}

void LineCounter::goTo(std::size_t offset) {
  if (offset < lineBegin_) *this = LineCounter(text_);
  while (lineEnd_ < offset) {
    ++line_;
    lineBegin_ = lineEnd_ + 1;
    lineEnd_ = text_.find('\n', lineBegin_);
  }
}

}  // namespace orv
