#include "python/orv/native/output/TextHash.hpp"

#include <array>
#include <cstdint>
#include <cstdio>

namespace orv {

void TextHash::addBytes(std::string_view bytes) {
  XXH3_128bits_update(&state_, bytes.data(), bytes.size());
}

void TextHash::add(std::string_view text) {
  if (text.empty()) return;
  if (endsInReturn_ && text.front() != '\n') addBytes("\r");
  endsInReturn_ = false;
  for (std::size_t at = text.find('\r'); at != std::string_view::npos; at = text.find('\r')) {
    addBytes(text.substr(0, at));
    text.remove_prefix(at + 1);
    endsInReturn_ = text.empty();
    if (!endsInReturn_ && text.front() != '\n') addBytes("\r");
  }
  addBytes(text);
}

std::string TextHash::digest() {
  if (endsInReturn_) addBytes("\r");
  const XXH128_hash_t hash = XXH3_128bits_digest(&state_);
  std::array<char, 33> digits{};
  static_cast<void>(std::snprintf(digits.data(), digits.size(), "%016llx%016llx",
                                  static_cast<unsigned long long>(hash.high64),
                                  static_cast<unsigned long long>(hash.low64)));
  return digits.data();
}

std::string textHash(std::string_view text) {
  TextHash hash;
  hash.add(text);
  return hash.digest();
}

std::string byteHash(std::string_view bytes) {
  XXH128_canonical_t canonical;
  XXH128_canonicalFromHash(&canonical, XXH3_128bits(bytes.data(), bytes.size()));
  return {reinterpret_cast<const char*>(canonical.digest), sizeof canonical.digest};
}

}  // namespace orv
