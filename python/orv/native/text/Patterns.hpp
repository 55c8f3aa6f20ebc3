#ifndef ORV_TEXT_PATTERNS_HPP
#define ORV_TEXT_PATTERNS_HPP

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <re2/re2.h>

namespace orv {

// Regular expressions, each compiled once. A search takes time linear in the text, whatever the
// pattern. Throws std::invalid_argument with the reason for a pattern or replacement that is wrong.
// Not for several threads at once.
class Patterns {
 public:
  // A group's text; none for a group that took no part.
  using Groups = std::vector<std::optional<std::string_view>>;

  Patterns() = default;
  ~Patterns() = default;
  Patterns(const Patterns&) = delete;
  Patterns& operator=(const Patterns&) = delete;

  // The first match in `text` and its groups, as parts of `text`; none when there is no match.
  std::optional<Groups> match(std::string_view text, const std::string& pattern);

  // `text` with every match replaced; "\1" to "\9" in `replacement` are groups, "\0" is the match.
  // Throws std::length_error when the result would be longer than 16 MiB.
  std::string replace(std::string_view text, const std::string& pattern,
                      std::string_view replacement);

 private:
  const RE2& compiled(const std::string& pattern);

  std::unordered_map<std::string, std::unique_ptr<RE2>> patterns_;
};

}  // namespace orv

#endif
