#ifndef ORV_TRACING_LINEUSES_HPP
#define ORV_TRACING_LINEUSES_HPP

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "python/orv/native/tracing/Deltas.hpp"
#include "python/orv/native/tracing/Trace.hpp"

namespace orv {

// How many lines of each file each line of the templates printed something on.
class LineUses {
 public:
  // The trace must outlive this object.
  explicit LineUses(const Trace& trace) : trace_(trace) {}

  // Counts the next file: the table of its ranges, and its text. Throws std::invalid_argument for a
  // table that is none or does not fit the text.
  void add(std::string_view ranges, std::string_view text);
  // The table: rows of file, template (a number of the trace's strings), line and count. At the end
  // comes a row with the count 0 for each line with something to print that printed nothing, and
  // that called nothing that did.
  std::string table() const;

 private:
  struct Use {
    std::size_t count = 0;
    std::size_t lastLine = 0;
  };
  // By template, in the upper half, and line.
  using Uses = std::unordered_map<std::uint64_t, Use>;

  // Counts what a site printed, from `line` on. Returns the line that it ends on.
  static std::size_t count(const Trace::Site& site, std::string_view text, std::size_t line,
                           Uses& uses);
  void flush(const Uses& uses);

  const Trace& trace_;
  std::int64_t file_ = 0;
  DeltaTable<4> table_;
  std::unordered_set<std::uint64_t> printed_;
};

}  // namespace orv

#endif
