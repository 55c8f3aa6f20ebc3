#include "python/orv/native/output/OutputName.hpp"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdint>
#include <cstdio>
#include <string_view>
#include <utility>
#include <vector>

#include "python/orv/native/output/OutputErrors.hpp"

namespace orv {
namespace {

constexpr std::size_t longestName = 255;

struct Range {
  std::uint32_t first;
  std::uint32_t last;
  const char* what;
};

// Characters that a terminal or an editor acts on instead of showing them.
constexpr std::array<Range, 8> hidden = {{{0x00, 0x1f, "a control character"},
                                          {0x7f, 0x9f, "a control character"},
                                          {0x061c, 0x061c, "a bidirectional override"},
                                          {0x200e, 0x200f, "a bidirectional override"},
                                          {0x2028, 0x2028, "a line separator"},
                                          {0x2029, 0x2029, "a paragraph separator"},
                                          {0x202a, 0x202e, "a bidirectional override"},
                                          {0x2066, 0x2069, "a bidirectional override"}}};

struct Character {
  std::uint32_t code;
  std::size_t size;
};

// The character at the start of a UTF-8 text, as far as `hidden` reaches; zero for any other.
Character firstCharacter(std::string_view text) {
  const auto byte = [&](std::size_t index) -> std::uint32_t {
    return index < text.size() ? static_cast<unsigned char>(text[index]) : 0U;
  };
  if (byte(0) < 0x80) return {byte(0), 1};
  if ((byte(0) & 0xe0U) == 0xc0) return {(byte(0) & 0x1fU) << 6U | (byte(1) & 0x3fU), 2};
  if ((byte(0) & 0xf0U) == 0xe0) {
    return {(byte(0) & 0x0fU) << 12U | (byte(1) & 0x3fU) << 6U | (byte(2) & 0x3fU), 3};
  }
  return {0xffffffff, 1};
}

const Range* rangeOf(std::uint32_t code) {
  for (const Range& range : hidden) {
    if (range.first <= code && code <= range.last) return &range;
  }
  return nullptr;
}

std::string codePoint(std::uint32_t code) {
  std::array<char, 16> text{};
  static_cast<void>(std::snprintf(text.data(), text.size(), "%04X", code));
  return text.data();
}

std::string quoted(std::string_view text) {
  std::string shown = "\"";
  while (!text.empty()) {
    const Character character = firstCharacter(text);
    shown += rangeOf(character.code) == nullptr ? std::string(text.substr(0, character.size))
                                                : "\\u" + codePoint(character.code);
    text.remove_prefix(std::min(character.size, text.size()));
  }
  return shown + "\"";
}

void refuseHiddenCharacters(std::string_view part) {
  for (std::string_view rest = part; !rest.empty();) {
    const Character character = firstCharacter(rest);
    if (const Range* range = rangeOf(character.code)) {
      throw OutputRefused("the name " + quoted(part) + " holds " + "U+" +
                          codePoint(character.code) + ", " + range->what);
    }
    rest.remove_prefix(std::min(character.size, rest.size()));
  }
}

// File systems that ignore case have the same folder under both names.
bool isGitFolder(std::string_view part) {
  constexpr std::string_view git = ".git";
  if (part.size() != git.size()) return false;
  for (std::size_t i = 0; i < git.size(); ++i) {
    if (std::tolower(static_cast<unsigned char>(part[i])) != git[i]) return false;
  }
  return true;
}

void refuseReserved(const std::string& part) {
  if (isGitFolder(part)) {
    throw OutputRefused("the name " + quoted(part) + " belongs to the version control system");
  }
  if (isTemporaryName(part) || part == ".orv-state.json") {
    throw OutputRefused("the name " + quoted(part) + " is kept for the engine's own files");
  }
}

void refuseAbsolute(const std::string& path) {
  const bool hasDrive =
      path.size() > 1 && path[1] == ':' && std::isalpha(static_cast<unsigned char>(path[0])) != 0;
  if (hasDrive || (!path.empty() && path.front() == '/')) {
    throw OutputRefused("the path " + quoted(path) +
                        " is absolute; it has to be below the output folder");
  }
}

void refusePart(const std::string& part, const std::string& path) {
  if (part == "..") throw OutputRefused("the path " + quoted(path) + " climbs out of its folder");
  refuseHiddenCharacters(part);
  if (part.find('\\') != std::string::npos) {
    throw OutputRefused("the name " + quoted(part) + " holds a backslash");
  }
  if (part.size() > longestName) {
    throw OutputRefused("the name " + quoted(part) + " is longer than " +
                        std::to_string(longestName) + " bytes");
  }
  refuseReserved(part);
}

std::vector<std::string> partsOf(const std::string& path) {
  std::vector<std::string> parts;
  for (std::size_t begin = 0; begin <= path.size();) {
    const std::size_t end = std::min(path.find('/', begin), path.size());
    const std::string part = path.substr(begin, end - begin);
    if (!part.empty() && part != ".") parts.push_back(part);
    begin = end + 1;
  }
  return parts;
}

}  // namespace

bool isTemporaryName(const std::string& name) {
  constexpr std::string_view begin = ".orv-";
  constexpr std::string_view end = ".tmp";
  return name.size() >= begin.size() + end.size() && name.compare(0, begin.size(), begin) == 0 &&
         name.compare(name.size() - end.size(), end.size(), end) == 0;
}

std::string outputPath(const std::string& directory, const std::string& name) {
  refuseAbsolute(directory);
  refuseAbsolute(name);
  std::string path = directory;
  path.append("/").append(name);
  std::string joined;
  for (const std::string& part : partsOf(path)) {
    joined.append(joined.empty() ? "" : "/").append(part);
  }
  path = std::move(joined);
  for (const std::string& part : partsOf(path)) refusePart(part, path);
  if (name.empty() || name.back() == '/' || path.empty()) {
    throw OutputRefused("the file has no name");
  }
  return path;
}

}  // namespace orv
