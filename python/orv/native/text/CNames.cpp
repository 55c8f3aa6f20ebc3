#include "python/orv/native/text/CNames.hpp"

#include <algorithm>
#include <iterator>
#include <vector>

namespace orv {
namespace {

// In the order of their bytes.
constexpr std::string_view kKeywords[] = {
    "_Alignas",
    "_Alignof",
    "_Atomic",
    "_BitInt",
    "_Bool",
    "_Complex",
    "_Decimal128",
    "_Decimal32",
    "_Decimal64",
    "_Generic",
    "_Imaginary",
    "_Noreturn",
    "_Static_assert",
    "_Thread_local",
    "alignas",
    "alignof",
    "and",
    "and_eq",
    "asm",
    "auto",
    "bitand",
    "bitor",
    "bool",
    "break",
    "case",
    "catch",
    "char",
    "char16_t",
    "char32_t",
    "char8_t",
    "class",
    "co_await",
    "co_return",
    "co_yield",
    "compl",
    "concept",
    "const",
    "const_cast",
    "consteval",
    "constexpr",
    "constinit",
    "continue",
    "decltype",
    "default",
    "delete",
    "do",
    "double",
    "dynamic_cast",
    "else",
    "enum",
    "explicit",
    "export",
    "extern",
    "false",
    "float",
    "for",
    "friend",
    "goto",
    "if",
    "inline",
    "int",
    "long",
    "mutable",
    "namespace",
    "new",
    "noexcept",
    "not",
    "not_eq",
    "nullptr",
    "operator",
    "or",
    "or_eq",
    "private",
    "protected",
    "public",
    "register",
    "reinterpret_cast",
    "requires",
    "restrict",
    "return",
    "short",
    "signed",
    "sizeof",
    "static",
    "static_assert",
    "static_cast",
    "struct",
    "switch",
    "template",
    "this",
    "thread_local",
    "throw",
    "true",
    "try",
    "typedef",
    "typeid",
    "typename",
    "typeof",
    "typeof_unqual",
    "union",
    "unsigned",
    "using",
    "virtual",
    "void",
    "volatile",
    "wchar_t",
    "while",
    "xor",
    "xor_eq",
};

bool isUpper(char c) { return c >= 'A' && c <= 'Z'; }
bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isAscii(char c) { return static_cast<unsigned char>(c) < 0x80; }
bool isLower(char c) { return (c >= 'a' && c <= 'z') || !isAscii(c); }
bool isWordPart(char c) { return isUpper(c) || isLower(c) || isDigit(c); }

char upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }
char lower(char c) { return isUpper(c) ? static_cast<char>(c - 'A' + 'a') : c; }

bool beginsWord(std::string_view text, std::size_t at) {
  if (at == 0 || !isWordPart(text[at - 1])) return true;
  if (!isUpper(text[at])) return false;
  return !isUpper(text[at - 1]) || (at + 1 < text.size() && isLower(text[at + 1]));
}

std::vector<std::string_view> wordsOf(std::string_view text) {
  std::vector<std::string_view> words;
  std::size_t at = 0;
  while (at < text.size()) {
    const std::size_t begin = at;
    if (!isWordPart(text[at++])) continue;
    while (at < text.size() && isWordPart(text[at]) && !beginsWord(text, at)) ++at;
    words.push_back(text.substr(begin, at - begin));
  }
  return words;
}

void appendWord(std::string& out, std::string_view word, NameStyle style) {
  const bool capital = style == NameStyle::kPascal || (style == NameStyle::kCamel && !out.empty());
  for (std::size_t at = 0; at < word.size(); ++at) {
    const bool raise = style == NameStyle::kUpperSnake || (capital && at == 0);
    out += raise ? upper(word[at]) : lower(word[at]);
  }
}

}  // namespace

std::string restyled(std::string_view text, NameStyle style) {
  const bool separated = style == NameStyle::kSnake || style == NameStyle::kUpperSnake;
  std::string out;
  out.reserve(text.size() + text.size() / 4);
  for (const std::string_view word : wordsOf(text)) {
    // Digits of neighbouring words would read as one number.
    const bool digitsMeet = !out.empty() && isDigit(out.back()) && isDigit(word.front());
    if ((separated && !out.empty()) || digitsMeet) out += '_';
    appendWord(out, word, style);
  }
  return out;
}

std::string cIdentifier(std::string_view text) {
  std::string out;
  out.reserve(text.size() + 1);
  if (!text.empty() && isDigit(text.front())) out += '_';
  for (const char character : text) {
    const bool continuesCharacter = (static_cast<unsigned char>(character) & 0xC0U) == 0x80U;
    if (continuesCharacter) continue;
    out += isAscii(character) && isWordPart(character) ? character : '_';
  }
  if (std::binary_search(std::begin(kKeywords), std::end(kKeywords), out)) out += '_';
  return out;
}

}  // namespace orv
