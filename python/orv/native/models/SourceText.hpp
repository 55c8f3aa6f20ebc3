#ifndef ORV_MODELS_SOURCETEXT_HPP
#define ORV_MODELS_SOURCETEXT_HPP

#include <cstddef>
#include <string_view>

#include "python/orv/native/models/ModelError.hpp"

namespace orv {

// The text of a model file in UTF-8 without its byte order mark. `data` must be followed by a NUL,
// as the contents of Python's bytes are, and outlive the result. Throws ModelError for bytes that
// are not UTF-8 and for NUL characters.
std::string_view sourceText(std::string_view data);

// Finds the lines of ascending offsets of a text, in one pass over it.
class LineCounter {
 public:
  explicit LineCounter(std::string_view text) : text_(text), lineEnd_(text.find('\n')) {}

  // The location of an offset. Going back to an earlier line is allowed, and costs a pass from the
  // beginning.
  Location at(std::size_t offset) {
    if (offset < lineBegin_ || offset > lineEnd_) goTo(offset);
    return {line_, static_cast<std::uint32_t>(offset - lineBegin_ + 1)};
  }

 private:
  void goTo(std::size_t offset);

  std::string_view text_;
  // The line that was asked for last: its first character and the new line behind it, or npos.
  std::size_t lineBegin_ = 0;
  std::size_t lineEnd_;
  std::uint32_t line_ = 1;
};

}  // namespace orv

#endif
