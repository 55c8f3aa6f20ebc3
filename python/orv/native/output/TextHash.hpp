#ifndef ORV_OUTPUT_TEXTHASH_HPP
#define ORV_OUTPUT_TEXTHASH_HPP

#include <string>
#include <string_view>

#define XXH_INLINE_ALL  // NOLINT: makes the header self-contained, without a library
#include <xxhash.h>

namespace orv {

// A hash of a text in pieces: XXH3 with 128 bits, of the bytes with each CR LF taken as LF. So a
// text keeps its hash when a version control system converts its line ends.
class TextHash {
 public:
  TextHash() { XXH3_128bits_reset(&state_); }

  void add(std::string_view text);
  // The hash as 32 hexadecimal digits. Nothing may be added after.
  std::string digest();

 private:
  void addBytes(std::string_view bytes);

  XXH3_state_t state_;
  bool endsInReturn_ = false;
};

std::string textHash(std::string_view text);

// XXH3 with 128 bits, of the bytes as they are.
std::string byteHash(std::string_view bytes);

}  // namespace orv

#endif
