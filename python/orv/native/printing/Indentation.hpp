#ifndef ORV_PRINTING_INDENTATION_HPP
#define ORV_PRINTING_INDENTATION_HPP

#include <cstddef>
#include <string>
#include <string_view>

namespace orv {

// What is put in front of the lines of a text. Empty lines get nothing.
struct Indentation {
  // The longest that a template can ask for.
  static constexpr std::size_t longest = 200;

  std::string lines;
  // For preprocessor directives, and the lines that continue one after a backslash.
  std::string directives;

  bool isNone() const { return lines.empty() && directives.empty(); }
};

// The indentation of a text whose lines have `inner` when it is indented by `outer`.
Indentation operator+(const Indentation& outer, const Indentation& inner);

// Whether what is appended to `text` begins a line.
bool endsLine(std::string_view text);

// What `indentation` puts in front of the line that `text` begins with.
std::string_view indentationOfLine(const Indentation& indentation, std::string_view text);

// Appends `added` with each line indented that begins in it; the first one does if `beginsLine`.
void appendIndented(std::string& text, std::string_view added, const Indentation& indentation,
                    bool beginsLine);

}  // namespace orv

#endif
