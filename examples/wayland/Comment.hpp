// Comments of generated C from text that anybody may have written.
#ifndef WAYLAND_COMMENT_HPP
#define WAYLAND_COMMENT_HPP

#include <string>

#include "Protocol.hpp"

namespace wayland {

// A block comment of the lines of `text`, without their indentation and with one blank line at most
// between two others, each line of it starting with `indent`; nothing at all for blank text.
// Whatever would end the comment early, start another one or hide code from a reader is taken
// apart, so that the result is one comment that compiles without a warning.
std::string blockComment(const std::string& text, const std::string& indent = "");

// The summary, a blank line and the text, if present.
std::string wholeText(const Description& description);

// The descriptions of `message` and its arguments.
std::string describe(const Message& message);

}  // namespace wayland

#endif
