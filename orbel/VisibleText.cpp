#include "orbel/VisibleText.hpp"

namespace orbel {

std::string visibleText(const std::string& text) {
  std::string result;
  result.reserve(text.size());
  for (const char character : text) {
    if (character == '\0') {
      result += "\\0";
    } else {
      result += character;
    }
  }
  return result;
}

}  // namespace orbel
