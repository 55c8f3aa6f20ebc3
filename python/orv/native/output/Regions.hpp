#ifndef ORV_OUTPUT_REGIONS_HPP
#define ORV_OUTPUT_REGIONS_HPP

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace orv {

// A user region: text in a generated file that a person may write. It lies between two lines, its
// markers, which hold its identifier.
struct Region {
  std::string id;
  // That of the beginning marker, counted from 1.
  std::size_t line = 0;
  // Where the text begins, after the line of one marker, and ends, before the line of the other.
  std::size_t begin = 0;
  std::size_t end = 0;

  std::string_view textIn(std::string_view file) const { return file.substr(begin, end - begin); }
};

// Markers that do not come in pairs. The text says what is wrong in a line of a file.
class RegionDamage : public std::runtime_error {
 public:
  RegionDamage(std::size_t line, const std::string& what) : std::runtime_error(what), line_(line) {}

  std::size_t line() const { return line_; }

 private:
  std::size_t line_;
};

// How the lines are written that begin and end a region.
class Markers {
 public:
  // `pattern` is the line that begins a region, " ... " and the line that ends it, each with one
  // "{id}" in it. Throws std::invalid_argument for a pattern whose lines could not be found again.
  explicit Markers(std::string pattern);

  const std::string& pattern() const { return pattern_; }

  // The two lines, without a newline. Throw std::invalid_argument for an identifier that could not
  // be read from them.
  std::string beginning(const std::string& id) const;
  std::string ending(const std::string& id) const;

  // The regions of a text in order. A marker is alone on its line; blanks around it do not matter.
  // Throws RegionDamage for a marker without its other, regions in each other and an identifier
  // that comes twice. Linear in the text.
  std::vector<Region> find(std::string_view text) const;

 private:
  struct Edge {
    std::string before;
    std::string after;

    std::string_view idIn(std::string_view line) const;
  };
  struct Marker {
    std::string_view id;
    bool begins;
    std::size_t line;
    std::size_t next;
  };

  static Edge edgeOf(std::string_view line);
  // The edge that a line is, or null. One may look like a part of the other: the longer one counts.
  const Edge* edgeIn(std::string_view line) const;
  std::string lineOf(const Edge& edge, const std::string& id) const;
  std::optional<Marker> next(std::string_view text, std::size_t from) const;

  std::string pattern_;
  Edge begin_;
  Edge end_;
  // What both lines begin with; may be empty.
  std::string common_;
};

// The hash of a text without that of its regions, which is the same whatever a person writes there.
std::string frameHash(std::string_view text, const std::vector<Region>& regions);

// `text` with other texts in some of its regions, by their identifiers. With `returns`, the line
// ends of all other text become CR LF.
using RegionTexts = std::unordered_map<std::string_view, std::string_view>;
std::string withRegions(std::string_view text, const std::vector<Region>& regions,
                        const RegionTexts& texts, bool returns);

// Whether the lines of a text that has regions end with CR LF.
bool endsLinesWithReturn(std::string_view text, const std::vector<Region>& regions);

}  // namespace orv

#endif
