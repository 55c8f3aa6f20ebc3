#include "sections/LockedStream.hpp"

#include <algorithm>
#include <stdio_ext.h>
#include <string_view>

namespace Varn::detail {
namespace {

// The C standard's minimum for BUFSIZ. Smaller buffers are bypassed as soon as they are full.
constexpr std::size_t smallestBuffer = 256;

}  // namespace

LockedStream::LockedStream(FILE* stream) : stream_(stream) { ::flockfile(stream_); }

LockedStream::~LockedStream() { ::funlockfile(stream_); }

void LockedStream::write(const TextPage& page) const {
  std::string_view left = page.text();
  const std::size_t count = page.pieceCount();
  for (std::size_t i = 0; i < count;) {
    const std::size_t longest = longestRun();
    std::size_t size = left.size();
    std::size_t end = count;
    if (size > longest) {
      size = page.length(i);
      end = i + 1;
      while (end < count && size + page.length(end) <= longest) size += page.length(end++);
    }
    const std::size_t taken = ::fwrite_unlocked(left.data(), 1, size, stream_);
    if (taken == size) {
      i = end;
    } else {
      // Only the piece that was cut short is lost.
      for (size = 0; size <= taken; ++i) size += page.length(i);
    }
    left.remove_prefix(size);
  }
}

// As much as fills the buffer once and not the next one: the GNU C library then flushes one full
// buffer. Given enough to fill an empty buffer, it may bypass it. A stream may have no buffer, or
// none yet, and one that is also read may start to write in the middle of it.
std::size_t LockedStream::longestRun() const {
  const std::size_t size = ::__fbufsize(stream_);
  if (size < smallestBuffer || ::__flbf(stream_) != 0 || ::__freadable(stream_) != 0) return 0;
  const std::size_t pending = std::min(::__fpending(stream_), size);
  return pending == 0 ? size - 1 : 2 * size - 1 - pending;
}

}  // namespace Varn::detail
