#ifndef VARN_SECTIONS_LOCKEDSTREAM_HPP
#define VARN_SECTIONS_LOCKEDSTREAM_HPP

#include <cstddef>
#include <cstdio>

#include <varn/detail/TextPage.hpp>

namespace Varn::detail {

// Writes pages to a stream, which it locks for its own lifetime.
//
// Write sizes match one `fwrite` per piece. Adjacent pieces that fill no more than one buffer of
// the stream are written with one call; an unbuffered or line-buffered stream gets one piece at a
// time.
class LockedStream {
 public:
  explicit LockedStream(FILE* stream);
  LockedStream(const LockedStream&) = delete;
  LockedStream& operator=(const LockedStream&) = delete;
  ~LockedStream();

  // Continues after a piece that fails; the stream keeps the error.
  void write(const TextPage& page) const;

 private:
  // The most bytes that one call may write.
  std::size_t longestRun() const;

  FILE* stream_;
};

}  // namespace Varn::detail

#endif
