#include "Comment.hpp"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>
#include <vector>

#include <fmt/format.h>

namespace wayland {
namespace {

// Characters that turn the direction of the text that follows: the bytes of their UTF-8 form before
// the last one, and the range of that.
struct DirectionMarks {
  std::string_view lead;
  unsigned char first;
  unsigned char last;
};

constexpr std::array<DirectionMarks, 4> directionMarks = {{
    {"\xD8", 0x9C, 0x9C},
    {"\xE2\x80", 0x8E, 0x8F},
    {"\xE2\x80", 0xAA, 0xAE},
    {"\xE2\x81", 0xA6, 0xA9},
}};

// The length of the mark that `text` starts with, or 0.
std::size_t directionMarkAt(std::string_view text) {
  for (const DirectionMarks& marks : directionMarks) {
    const std::size_t length = marks.lead.size() + 1;
    if (text.size() < length || text.substr(0, length - 1) != marks.lead) continue;
    const auto last = static_cast<unsigned char>(text[length - 1]);
    if (last >= marks.first && last <= marks.last) return length;
  }
  return 0;
}

bool opensOrCloses(char previous, char next) {
  return (previous == '*' && next == '/') || (previous == '/' && next == '*') ||
         (previous == '?' && next == '?');
}

std::string harmless(std::string_view line) {
  std::string result;
  for (std::size_t i = 0; i < line.size();) {
    const std::size_t mark = directionMarkAt(line.substr(i));
    if (mark != 0) {
      i += mark;
      continue;
    }
    const bool control = static_cast<unsigned char>(line[i]) < ' ' || line[i] == '\x7F';
    const char next = control ? ' ' : line[i];
    if (!result.empty() && opensOrCloses(result.back(), next)) result += ' ';
    result += next;
    ++i;
  }
  return result;
}

std::string_view trimmed(std::string_view line) {
  constexpr std::string_view blanks = " \t\r\v\f";
  const std::size_t first = line.find_first_not_of(blanks);
  if (first == std::string_view::npos) return {};
  return line.substr(first, line.find_last_not_of(blanks) - first + 1);
}

std::vector<std::string> linesOf(std::string_view text) {
  std::vector<std::string> lines;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string line = harmless(trimmed(text.substr(0, end)));
    if (!line.empty() || (!lines.empty() && !lines.back().empty())) {
      lines.push_back(std::move(line));
    }
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  if (!lines.empty() && lines.back().empty()) lines.pop_back();
  return lines;
}

}  // namespace

std::string blockComment(const std::string& text, const std::string& indent) {
  const std::vector<std::string> lines = linesOf(text);
  if (lines.empty()) return {};
  std::string comment = indent + "/*\n";
  for (const std::string& line : lines) {
    comment += fmt::format("{} *{}{}\n", indent, line.empty() ? "" : " ", line);
  }
  return comment + indent + " */\n";
}

std::string wholeText(const Description& description) {
  return description.summary + "\n\n" + description.text;
}

std::string describe(const Message& message) {
  std::string text = wholeText(message.description) + "\n";
  for (const Argument& argument : message.arguments) {
    text += fmt::format("\n{}: {}", argument.name,
                        argument.summary.empty() ? "not described" : argument.summary);
    if (!argument.enumeration.empty()) {
      text += fmt::format(" (a value of {})", argument.enumeration);
    }
  }
  return text + fmt::format("\n\nSince version {}.", message.since);
}

}  // namespace wayland
