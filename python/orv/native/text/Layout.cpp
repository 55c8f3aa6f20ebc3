#include "python/orv/native/text/Layout.hpp"

#include <algorithm>

#include "python/orv/native/text/CText.hpp"

namespace orv {
namespace {

using Pieces = std::vector<std::string_view>;

constexpr std::string_view kBlanks = " \t\v\f";

Pieces split(std::string_view text, std::string_view separator) {
  Pieces pieces;
  for (;;) {
    const std::size_t end = text.find(separator);
    pieces.push_back(text.substr(0, end));
    if (end == std::string_view::npos) return pieces;
    text.remove_prefix(end + separator.size());
  }
}

std::size_t characterCount(std::string_view text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U;
  }));
}

std::string_view withoutTrailingBlanks(std::string_view text) {
  return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

// Where the cell after each begins: given, or made of the widest cells.
void completeColumns(const std::vector<Pieces>& rows, std::vector<std::size_t>& columns) {
  const std::size_t given = columns.size();
  std::size_t cells = 0;
  for (const Pieces& row : rows) cells = std::max(cells, row.size());
  for (std::size_t cell = given; cell + 1 < cells; ++cell) {
    std::size_t widest = 0;
    for (const Pieces& row : rows) {
      if (row.size() > cell + 1) {
        widest = std::max(widest, characterCount(withoutTrailingBlanks(row[cell])));
      }
    }
    columns.push_back((cell == 0 ? 0 : columns[cell - 1]) + widest + 1);
  }
}

void appendRow(std::string& out, const Pieces& row, const std::vector<std::size_t>& columns) {
  std::size_t at = 0;
  for (std::size_t cell = 0; cell + 1 < row.size(); ++cell) {
    const std::string_view text = withoutTrailingBlanks(row[cell]);
    out += text;
    at += characterCount(text);
    const std::size_t blanks = columns[cell] > at ? columns[cell] - at : 1;
    out.append(blanks, ' ');
    at += blanks;
  }
  out += row.back();
}

// The lines of one paragraph, filled with as many words as fit.
void appendFilled(Pieces& words, std::size_t width, std::vector<std::string>& lines) {
  std::string line;
  std::size_t length = 0;
  for (const std::string_view word : words) {
    const std::size_t size = characterCount(word);
    if (!line.empty() && length + 1 + size > width) {
      lines.push_back(line);
      line.clear();
      length = 0;
    }
    if (!line.empty()) line += ' ';
    length += size + (line.empty() ? 0 : 1);
    line += word;
  }
  if (!line.empty()) lines.push_back(line);
  words.clear();
}

void appendWords(std::string_view line, Pieces& words) {
  constexpr std::string_view kBetween = " \t\v\f\r";
  std::size_t begin = line.find_first_not_of(kBetween);
  while (begin != std::string_view::npos) {
    const std::size_t end = line.find_first_of(kBetween, begin);
    words.push_back(line.substr(begin, end - begin));
    begin = line.find_first_not_of(kBetween, end);
  }
}

std::vector<std::string> filledLines(std::string_view text, std::size_t width) {
  std::vector<std::string> lines;
  Pieces words;
  for (const std::string_view line : split(text, "\n")) {
    const std::size_t before = words.size();
    appendWords(line, words);
    if (words.size() > before) continue;
    appendFilled(words, width, lines);
    if (!lines.empty() && !lines.back().empty()) lines.emplace_back();
  }
  appendFilled(words, width, lines);
  if (!lines.empty() && lines.back().empty()) lines.pop_back();
  return lines;
}

}  // namespace

std::string alignedColumns(std::string_view text, std::string_view separator,
                           std::vector<std::size_t> columns) {
  std::vector<Pieces> rows;
  for (const std::string_view line : split(text, "\n")) rows.push_back(split(line, separator));
  completeColumns(rows, columns);
  std::string out;
  for (std::size_t row = 0; row < rows.size(); ++row) {
    if (row > 0) out += '\n';
    appendRow(out, rows[row], columns);
  }
  return out;
}

std::string wrappedComment(std::string_view text, std::size_t width) {
  constexpr std::size_t kMargin = 3;
  constexpr std::size_t kDelimiters = 6;
  const std::vector<std::string> lines = filledLines(text, width > kMargin ? width - kMargin : 1);
  if (lines.empty()) return "/* */";
  if (lines.size() == 1 && characterCount(lines[0]) + kDelimiters <= width) {
    return "/* " + cComment(lines[0]) + " */";
  }
  std::string out = "/*\n";
  for (const std::string& line : lines) {
    out += line.empty() ? " *" : " * ";
    out += cComment(line);
    out += '\n';
  }
  return out + " */";
}

}  // namespace orv
