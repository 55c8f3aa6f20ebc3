#ifndef ORBEL_SRC_VISIBLETEXT_HPP
#define ORBEL_SRC_VISIBLETEXT_HPP

#include <string>

namespace orbel {

// `text` with each NUL byte as the two characters "\0", so that a NUL-terminated message holds all
// of it.
std::string visibleText(const std::string& text);

}  // namespace orbel

#endif
