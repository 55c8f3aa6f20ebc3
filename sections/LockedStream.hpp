#ifndef VARN_SECTIONS_LOCKEDSTREAM_HPP
#define VARN_SECTIONS_LOCKEDSTREAM_HPP

#include <cstddef>
#include <cstdio>

#include <varn/TextPage.hpp>

namespace Varn {

// A stream that stays locked while it takes the pieces of pages.
//
// It hands on the same blocks as if each piece were written to it with one `fwrite`. What is saved
// is the calls: neighbouring pieces are written together as long as they fill no more than one
// buffer of the stream. A stream that hands on each piece as it comes is given one at a time.
class LockedStream {
 public:
  explicit LockedStream(FILE* stream);
  LockedStream(const LockedStream&) = delete;
  LockedStream& operator=(const LockedStream&) = delete;
  ~LockedStream();

  // Goes on after a piece that fails; the error stays with the stream.
  void write(const TextPage& page) const;

 private:
  // How many bytes may be written together.
  std::size_t longestRun() const;

  FILE* stream_;
};

}  // namespace Varn

#endif
