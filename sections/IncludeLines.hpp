#ifndef VARN_SECTIONS_INCLUDELINES_HPP
#define VARN_SECTIONS_INCLUDELINES_HPP

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Varn {

// An entry of an include list in its written form: as given when it starts with an angle bracket,
// in quotes otherwise.
struct IncludeForm {
  explicit IncludeForm(const std::string& listEntry)
      : entry(listEntry), isSystem(!entry.empty() && entry.front() == '<') {}

  // Appends the entry's line, a newline before and after it.
  void appendLineTo(std::string& text) const;

  std::string_view entry;
  bool isSystem;
};

// The include lines of a text: those that have a newline before and after them. It answers in
// constant time whether the line of an entry is among them, and refers to the text that it was made
// from.
class IncludeLines {
 public:
  explicit IncludeLines(std::string_view text);

  bool contains(const IncludeForm& form) const;

 private:
  struct Slot {
    std::string_view entry;
    bool isSystem = false;
    bool isTaken = false;
  };

  void insert(std::string_view entry, bool isSystem);
  // The slot that holds the entry, or the free one where it belongs.
  std::size_t slotOf(std::string_view entry, bool isSystem) const;

  std::string_view text_;
  // Open addressing; a power of two in size, and at most half taken.
  std::vector<Slot> slots_;
};

}  // namespace Varn

#endif
