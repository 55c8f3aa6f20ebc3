#ifndef ORBEL_TEXT_HPP
#define ORBEL_TEXT_HPP

#include <string>
#include <string_view>

#include <orbel/Export.hpp>

namespace orbel {

// The host's text conversion between 8-bit text, read as UTF-8, and 16-bit text, UTF-16 (RFC 3629).
// Every 8-bit text survives the way there and back unchanged: a byte that is not part of
// well-formed UTF-8 becomes the lone low surrogate 0xDC00 plus the byte, and back.

// Never fails but for memory.
ORBEL_EXPORT std::u16string toUtf16(std::string_view text);

// The reverse. A lone surrogate outside 0xDC80..0xDCFF, which no 8-bit text gives, is written as
// its own three-byte sequence.
ORBEL_EXPORT std::string toUtf8(std::u16string_view text);

}  // namespace orbel

#endif
