// Texts of several lines, laid out.
#ifndef ORV_TEXT_LAYOUT_HPP
#define ORV_TEXT_LAYOUT_HPP

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace orv {

// Replaces each `separator` of a line with blanks up to the column where the next cell begins,
// counted in characters from 0. `columns` are those of the second cell and of the ones after it; a
// cell that reaches its column is followed by one blank. Cells beyond `columns` begin one blank
// after the widest cell before them. Lines without a separator stay as they are. `separator` is not
// empty.
std::string alignedColumns(std::string_view text, std::string_view separator,
                           std::vector<std::size_t> columns);

// A block comment of lines of at most `width` characters, longer words aside: on one line if it
// fits, else with a line for its beginning and for its end. Empty lines separate paragraphs.
std::string wrappedComment(std::string_view text, std::size_t width);

}  // namespace orv

#endif
