// Any text as part of a C program: literals and comments.
#ifndef ORV_TEXT_CTEXT_HPP
#define ORV_TEXT_CTEXT_HPP

#include <string>
#include <string_view>

namespace orv {

// A string literal of C99 whose value is the bytes of `text`. What is not printable ASCII becomes
// an escape of three octal digits, so that nothing that follows can join it; trigraphs are broken
// up.
std::string cString(std::string_view text);

// A character constant. `character` is below 128.
std::string cCharacter(char character);

// The text as it can be written in a comment of either kind, line by line: without the ends and
// beginnings of comments, lines that a backslash joins to the next, and characters that change the
// direction of what follows. Line endings become '\n'.
std::string cComment(std::string_view text);

}  // namespace orv

#endif
