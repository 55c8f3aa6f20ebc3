#ifndef ORV_PRINTING_FUNCTIONNAMES_HPP
#define ORV_PRINTING_FUNCTIONNAMES_HPP

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orv {

// The names of a file's functions, each with the number of the tag that added it first. Most files
// have a few, which are searched one by one. A file can have millions: a name costs its text and
// some 40 bytes, and growing touches memory in order.
class FunctionNames {
 public:
  // Adds a name. If it is there already, nothing changes, and the result is the tag of the first.
  std::optional<std::size_t> add(std::string_view name, std::size_t tag);
  // Begins to load the memory that add() will read: the table of a million names is in no cache.
  void prefetch(std::string_view name) const;

 private:
  struct Function {
    std::size_t end;  // of the name in names_, where that of the next one begins
    std::size_t tag;
  };
  // Of the table of hashes; `number` is one past the index of a function, or 0.
  struct Slot {
    std::uint32_t hash;
    std::uint32_t number;
  };

  std::string_view nameOf(std::size_t index) const;
  void append(std::string_view name, std::size_t tag);
  // The slot of the name, or the free one where it belongs.
  Slot& slotOf(std::uint32_t hash, std::string_view name);
  void grow();

  std::string names_;
  std::vector<Function> functions_;
  // Open addressing; a power of two, at most half of it used. Empty while the names are few.
  std::vector<Slot> slots_;
};

}  // namespace orv

#endif
