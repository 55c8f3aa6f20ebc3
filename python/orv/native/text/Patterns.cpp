#include "python/orv/native/text/Patterns.hpp"

#include <stdexcept>

namespace orv {
namespace {

constexpr std::size_t kLongestResult = std::size_t{1} << 24;

// Templates have few patterns; one that makes them up does not fill the memory.
constexpr std::size_t kMostPatterns = 256;

re2::StringPiece piece(std::string_view text) { return {text.data(), text.size()}; }

std::vector<re2::StringPiece> groupsFor(const RE2& pattern) {
  return std::vector<re2::StringPiece>(static_cast<std::size_t>(pattern.NumberOfCapturingGroups()) +
                                       1);
}

bool find(const RE2& pattern, std::string_view text, std::size_t from,
          std::vector<re2::StringPiece>& groups) {
  return pattern.Match(piece(text), from, text.size(), RE2::UNANCHORED, groups.data(),
                       static_cast<int>(groups.size()));
}

std::size_t characterSize(std::string_view text, std::size_t at) {
  std::size_t end = at + 1;
  while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) ++end;
  return end - at;
}

void requireReplacement(const RE2& pattern, std::string_view replacement) {
  const int group = RE2::MaxSubmatch(piece(replacement));
  const int groups = pattern.NumberOfCapturingGroups();
  if (group > groups) {
    throw std::invalid_argument("the replacement has \\" + std::to_string(group) +
                                ", but the regular expression has " + std::to_string(groups) +
                                " groups");
  }
  std::string reason;
  if (!pattern.CheckRewriteString(piece(replacement), &reason)) {
    throw std::invalid_argument(
        "a backslash in the replacement is followed by neither a digit nor a backslash");
  }
}

void requireSize(const std::string& result) {
  if (result.size() > kLongestResult) {
    throw std::length_error("the text with its matches replaced is longer than 16 MiB");
  }
}

}  // namespace

std::optional<Patterns::Groups> Patterns::match(std::string_view text, const std::string& pattern) {
  const RE2& expression = compiled(pattern);
  std::vector<re2::StringPiece> found = groupsFor(expression);
  if (!find(expression, text, 0, found)) return std::nullopt;
  Groups groups;
  for (const re2::StringPiece& group : found) {
    if (group.data() == nullptr) {
      groups.emplace_back();
    } else {
      groups.emplace_back(std::string_view(group.data(), group.size()));
    }
  }
  return groups;
}

std::string Patterns::replace(std::string_view text, const std::string& pattern,
                              std::string_view replacement) {
  const RE2& expression = compiled(pattern);
  requireReplacement(expression, replacement);
  std::vector<re2::StringPiece> groups = groupsFor(expression);
  std::string result;
  std::size_t at = 0;
  while (at <= text.size() && find(expression, text, at, groups)) {
    const auto begin = static_cast<std::size_t>(groups[0].data() - text.data());
    result += text.substr(at, begin - at);
    expression.Rewrite(&result, piece(replacement), groups.data(), static_cast<int>(groups.size()));
    at = begin + groups[0].size();
    if (groups[0].empty()) {
      const std::size_t step = at < text.size() ? characterSize(text, at) : 1;
      result += text.substr(at, step > text.size() - at ? text.size() - at : step);
      at += step;
    }
    requireSize(result);
  }
  if (at < text.size()) result += text.substr(at);
  return result;
}

const RE2& Patterns::compiled(const std::string& pattern) {
  const auto known = patterns_.find(pattern);
  if (known != patterns_.end()) return *known->second;
  RE2::Options options;
  options.set_log_errors(false);
  auto expression = std::make_unique<RE2>(pattern, options);
  if (!expression->ok()) {
    throw std::invalid_argument("the regular expression is wrong: " + expression->error());
  }
  if (patterns_.size() >= kMostPatterns) patterns_.clear();
  return *patterns_.emplace(pattern, std::move(expression)).first->second;
}

}  // namespace orv
