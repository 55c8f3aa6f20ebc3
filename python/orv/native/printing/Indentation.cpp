#include "python/orv/native/printing/Indentation.hpp"

namespace orv {
namespace {

bool isEmptyLine(std::string_view text) {
  return text.empty() || text[0] == '\n' || text.substr(0, 2) == "\r\n";
}

bool isDirective(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t");
  return first != std::string_view::npos && text[first] == '#';
}

// Whether the next line is part of this one, which ends with its newline.
bool isContinued(std::string_view line) {
  if (endsLine(line)) line.remove_suffix(1);
  if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
  return !line.empty() && line.back() == '\\';
}

}  // namespace

Indentation operator+(const Indentation& outer, const Indentation& inner) {
  return {outer.lines + inner.lines, outer.directives + inner.directives};
}

bool endsLine(std::string_view text) { return text.empty() || text.back() == '\n'; }

std::string_view indentationOfLine(const Indentation& indentation, std::string_view text) {
  if (isEmptyLine(text)) return {};
  return isDirective(text) ? indentation.directives : indentation.lines;
}

void appendIndented(std::string& text, std::string_view added, const Indentation& indentation,
                    bool beginsLine) {
  if (indentation.isNone()) {
    text += added;
    return;
  }
  bool inDirective = false;
  while (!added.empty()) {
    const std::size_t newline = added.find('\n');
    const std::string_view line = added.substr(0, newline == added.npos ? newline : newline + 1);
    if (beginsLine) {
      const bool continues = inDirective && !isEmptyLine(line);
      text += continues ? indentation.directives : indentationOfLine(indentation, line);
      inDirective = (inDirective || isDirective(line)) && isContinued(line);
    }
    text += line;
    added.remove_prefix(line.size());
    beginsLine = true;
  }
}

}  // namespace orv
