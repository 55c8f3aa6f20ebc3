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
    if (size <= longest) {
      i = count;
    } else {
      size = page.length(i++);
      while (i < count && size + page.length(i) <= longest) size += page.length(i++);
    }
    static_cast<void>(::fwrite_unlocked(left.data(), size, 1, stream_));
    left.remove_prefix(size);
  }
}

// What fills the buffer and leaves the next one unfilled. A stream without a buffer has none, or
// not yet.
std::size_t LockedStream::longestRun() const {
  const std::size_t size = ::__fbufsize(stream_);
  if (size < smallestBuffer || ::__flbf(stream_) != 0) return 0;
  return 2 * size - 1 - std::min(::__fpending(stream_), size);
}

}  // namespace Varn
