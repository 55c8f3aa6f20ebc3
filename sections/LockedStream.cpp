#include "sections/LockedStream.hpp"

#include <algorithm>
#include <stdio_ext.h>
#include <string_view>

namespace Varn {
namespace {

// What the C standard asks of BUFSIZ. A smaller buffer is passed by as soon as it is full.
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
      // The piece that was not taken as a whole is lost, and no other.
      for (size = 0; size <= taken; ++i) size += page.length(i);
    }
    left.remove_prefix(size);
  }
}

// What fills the buffer and leaves the next one unfilled: the GNU C library then hands the buffer
// on once, full. An empty buffer it may pass by when it is given enough to fill it. A stream
// without a buffer has none, or not yet; one that is read, too, may begin to write in the middle of
// it.
std::size_t LockedStream::longestRun() const {
  const std::size_t size = ::__fbufsize(stream_);
  if (size < smallestBuffer || ::__flbf(stream_) != 0 || ::__freadable(stream_) != 0) return 0;
  const std::size_t pending = std::min(::__fpending(stream_), size);
  return pending == 0 ? size - 1 : 2 * size - 1 - pending;
}

}  // namespace Varn
