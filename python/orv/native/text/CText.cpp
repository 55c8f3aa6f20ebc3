#include "python/orv/native/text/CText.hpp"

namespace orv {
namespace {

void appendOctal(std::string& out, unsigned char byte) {
  out += '\\';
  out += static_cast<char>('0' + (byte >> 6));
  out += static_cast<char>('0' + ((byte >> 3) & 7));
  out += static_cast<char>('0' + (byte & 7));
}

// `quote` is what would end the literal.
void appendEscaped(std::string& out, char character, char quote) {
  constexpr std::string_view kNamed = "abtnvfr";
  const auto byte = static_cast<unsigned char>(character);
  if (byte >= '\a' && byte <= '\r') {
    out += '\\';
    out += kNamed[byte - static_cast<unsigned char>('\a')];
  } else if (byte < ' ' || byte > '~') {
    appendOctal(out, byte);
  } else {
    if (character == quote || character == '\\') out += '\\';
    out += character;
  }
}

// Whether the bytes at `at` are a character from U+202A to U+202E or from U+2066 to U+2069, which
// overrides the direction of text.
bool isDirectionOverride(std::string_view text, std::size_t at) {
  if (text.size() - at < 3 || text[at] != '\xE2') return false;
  const char middle = text[at + 1];
  const char last = text[at + 2];
  return (middle == '\x80' && last >= '\xAA' && last <= '\xAE') ||
         (middle == '\x81' && last >= '\xA6' && last <= '\xA9');
}

void appendOverrideName(std::string& out, std::string_view text, std::size_t at) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  const unsigned code = (static_cast<unsigned char>(text[at + 1]) & 0x3FU) << 6 |
                        (static_cast<unsigned char>(text[at + 2]) & 0x3FU);
  out += "<U+20";
  out += kDigits[(code >> 4) & 0xFU];
  out += kDigits[code & 0xFU];
  out += '>';
}

void endLine(std::string& out) {
  // Compilers join lines over blanks after the backslash, too.
  const std::size_t last = out.find_last_not_of(" \t\v\f");
  if (last != std::string::npos && out[last] == '\\') out.insert(last + 1, ".");
}

// Whether `next` would complete the beginning or the end of a comment, or a trigraph.
bool completes(const std::string& out, char next) {
  if (out.empty()) return false;
  const char before = out.back();
  return (before == '*' && next == '/') || (before == '/' && next == '*') ||
         (before == '?' && next == '?');
}

}  // namespace

std::string cString(std::string_view text) {
  std::string out = "\"";
  out.reserve(text.size() + text.size() / 8 + 2);
  for (const char character : text) {
    if (character == '?' && out.back() == '?') out += '\\';
    appendEscaped(out, character, '"');
  }
  out += '"';
  return out;
}

std::string cCharacter(char character) {
  std::string out = "'";
  appendEscaped(out, character, '\'');
  out += '\'';
  return out;
}

std::string cComment(std::string_view text) {
  std::string out;
  out.reserve(text.size() + text.size() / 8);
  for (std::size_t at = 0; at < text.size(); ++at) {
    const char character = text[at];
    if (isDirectionOverride(text, at)) {
      appendOverrideName(out, text, at);
      at += 2;
    } else if (character == '\n' || character == '\r') {
      if (text.substr(at, 2) == "\r\n") ++at;
      endLine(out);
      out += '\n';
    } else {
      if (completes(out, character)) out += ' ';
      out += character;
    }
  }
  endLine(out);
  return out;
}

}  // namespace orv
