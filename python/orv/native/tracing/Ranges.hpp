#ifndef ORV_TRACING_RANGES_HPP
#define ORV_TRACING_RANGES_HPP

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace orv {

// Who printed a piece of text: numbers of a trace's sites and links. Zero is "not known" and
// "none".
struct Origin {
  std::uint32_t site = 0;
  std::uint32_t link = 0;

  bool operator==(const Origin& other) const { return site == other.site && link == other.link; }
  bool operator!=(const Origin& other) const { return !(*this == other); }
};

// The origins of a text from its beginning on: sizes in bytes, in order. Neighbours of the same
// origin are one range. Kept as the text of a DeltaTable: the end of each range, its site and link.
class Ranges {
 public:
  void append(std::size_t size, Origin origin) {
    if (size == 0) return;
    if (origin != last_ && size_ != written_) flush();
    last_ = origin;
    size_ += size;
  }
  void append(const Ranges& other);
  void clear();

  // The origin of the last range.
  Origin last() const { return last_; }
  // The number of bytes that the ranges cover.
  std::size_t size() const { return size_; }
  // The table.
  std::string text() const;

 private:
  friend class RangeReader;

  void flush();

  // Of all ranges but the last one, which begins at `written_`.
  std::string flushed_;
  std::size_t written_ = 0;
  Origin flushedOrigin_;
  std::size_t size_ = 0;
  Origin last_;
};

// Hands out ranges in order. The ranges must not change meanwhile.
class RangeReader {
 public:
  struct Range {
    std::size_t size;
    Origin origin;
  };

  explicit RangeReader(const Ranges& ranges) : ranges_(ranges), rest_(ranges.flushed_) {}

  // Whether what is taken next begins a range.
  bool isAtBeginning() const { return left_ == 0; }
  // The next range, or so much of it as `most`, at least 1. What the ranges do not cover is not
  // known.
  Range take(std::size_t most);
  // Appends the ranges of the next `size` bytes.
  void copy(std::size_t size, Ranges& to);
  // Appends the ranges of `after`, which is the next bytes, `before`, with something put in front
  // of some lines: that belongs to what it is in front of.
  void copyIndented(std::string_view before, std::string_view after, Ranges& to);

 private:
  void next();

  const Ranges& ranges_;
  std::string_view rest_;
  // The end of the current range, its origin, and what of it is left.
  std::size_t end_ = 0;
  Origin origin_;
  std::size_t left_ = 0;
};

}  // namespace orv

#endif
