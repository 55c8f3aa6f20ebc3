// Names for C programs, made of any text.
#ifndef ORV_TEXT_CNAMES_HPP
#define ORV_TEXT_CNAMES_HPP

#include <string>
#include <string_view>

namespace orv {

// How a name joins its words.
enum class NameStyle { kSnake, kUpperSnake, kCamel, kPascal };

// The words of `text` in another style. Words end at whatever is neither a letter nor a digit, and
// before a capital letter that follows a small one or a digit, or precedes a small one:
// "HTTPServer2Go" is HTTP, Server2, Go. Characters beyond ASCII stay as they are, within words.
std::string restyled(std::string_view text, NameStyle style);

// An identifier of ASCII: each character that cannot be in one becomes '_', a digit in front gets a
// '_' before it, a keyword of C or C++ one after it. Empty for an empty text.
std::string cIdentifier(std::string_view text);

}  // namespace orv

#endif
