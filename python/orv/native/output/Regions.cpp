#include "python/orv/native/output/Regions.hpp"

#include <algorithm>
#include <cstring>
#include <utility>

#include "python/orv/native/output/TextHash.hpp"

namespace orv {
namespace {

constexpr std::string_view placeholder = "{id}";
constexpr std::string_view separator = " ... ";
constexpr std::string_view blanks = " \t\r\n";

bool startsWith(std::string_view text, std::string_view start) {
  return text.substr(0, start.size()) == start;
}

bool endsWith(std::string_view text, std::string_view end) {
  return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

std::string_view trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

bool isControl(char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7F'; }

std::string quoted(std::string_view id) { return '"' + std::string(id) + '"'; }

std::size_t findText(std::string_view text, std::string_view wanted, std::size_t from) {
  const void* found = memmem(text.data() + from, text.size() - from, wanted.data(), wanted.size());
  if (found == nullptr) return std::string_view::npos;
  return static_cast<std::size_t>(static_cast<const char*>(found) - text.data());
}

// Where the line of `at` begins if only blanks are before it, and no position otherwise.
std::size_t beginOfLine(std::string_view text, std::size_t at) {
  while (at > 0 && (text[at - 1] == ' ' || text[at - 1] == '\t')) --at;
  return at == 0 || text[at - 1] == '\n' ? at : std::string_view::npos;
}

void appendWithReturns(std::string& result, std::string_view text, bool returns) {
  if (!returns) {
    result += text;
    return;
  }
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\n' && (i == 0 ? !endsWith(result, "\r") : text[i - 1] != '\r')) result += '\r';
    result += text[i];
  }
}

// Counts the lines of a text up to positions that only grow.
class LineCounter {
 public:
  explicit LineCounter(std::string_view text) : text_(text) {}

  std::size_t lineOf(std::size_t position) {
    line_ += static_cast<std::size_t>(
        std::count(text_.begin() + static_cast<std::ptrdiff_t>(at_),
                   text_.begin() + static_cast<std::ptrdiff_t>(position), '\n'));
    at_ = position;
    return line_;
  }

 private:
  std::string_view text_;
  std::size_t at_ = 0;
  std::size_t line_ = 1;
};

// Pairs the markers of a text.
class RegionBuilder {
 public:
  void begin(std::string_view id, std::size_t line, std::size_t position) {
    if (isOpen_) {
      fail(line, id, " begins inside of " + open());
    }
    const auto [other, isNew] = lines_.emplace(id, line);
    if (!isNew) fail(line, id, " is there already, in line " + std::to_string(other->second));
    regions_.push_back({std::string(id), line, position, position});
    isOpen_ = true;
  }

  void end(std::string_view id, std::size_t line, std::size_t position) {
    if (!isOpen_) fail(line, id, " ends without a beginning");
    if (regions_.back().id != id) fail(line, id, " ends inside of " + open());
    regions_.back().end = position;
    isOpen_ = false;
  }

  std::vector<Region> finish() {
    if (isOpen_) fail(regions_.back().line, regions_.back().id, " has no end");
    return std::move(regions_);
  }

 private:
  std::string open() const {
    const Region& region = regions_.back();
    return quoted(region.id) + ", which begins in line " + std::to_string(region.line);
  }
  [[noreturn]] static void fail(std::size_t line, std::string_view id, const std::string& what) {
    throw RegionDamage(line, "the user region " + quoted(id) + what);
  }

  std::vector<Region> regions_;
  std::unordered_map<std::string_view, std::size_t> lines_;
  bool isOpen_ = false;
};

}  // namespace

std::string_view Markers::Edge::idIn(std::string_view line) const {
  if (line.size() <= before.size() + after.size()) return {};
  if (!startsWith(line, before) || !endsWith(line, after)) return {};
  const std::string_view id =
      trimmed(line.substr(before.size(), line.size() - before.size() - after.size()));
  const std::string_view closing = trimmed(after);
  const bool holdsClosing = !closing.empty() && id.find(closing) != std::string_view::npos;
  return holdsClosing || std::any_of(id.begin(), id.end(), isControl) ? std::string_view() : id;
}

Markers::Markers(std::string pattern) : pattern_(std::move(pattern)) {
  const std::size_t middle = pattern_.find(separator);
  if (middle == std::string::npos || pattern_.find(separator, middle + 1) != std::string::npos ||
      std::any_of(pattern_.begin(), pattern_.end(), isControl)) {
    throw std::invalid_argument(
        "expected the lines that begin and end a region, with \" ... \" between them, such as"
        " \"// BEGIN {id} ... // END {id}\", got " +
        quoted(pattern_));
  }
  begin_ = edgeOf(std::string_view(pattern_).substr(0, middle));
  end_ = edgeOf(std::string_view(pattern_).substr(middle + separator.size()));
  if (begin_.before == end_.before && begin_.after == end_.after) {
    throw std::invalid_argument("the lines of " + quoted(pattern_) + " cannot be told apart");
  }
  const auto differ = std::mismatch(begin_.before.begin(), begin_.before.end(), end_.before.begin(),
                                    end_.before.end());
  common_.assign(begin_.before.begin(), differ.first);
}

Markers::Edge Markers::edgeOf(std::string_view line) {
  line = trimmed(line);
  const std::size_t at = line.find(placeholder);
  if (at == std::string_view::npos || at == 0 || line.find(placeholder, at + 1) != line.npos) {
    throw std::invalid_argument("expected text with one {id} after it, got " + quoted(line));
  }
  return {std::string(line.substr(0, at)), std::string(line.substr(at + placeholder.size()))};
}

const Markers::Edge* Markers::edgeIn(std::string_view line) const {
  const bool endsLonger =
      end_.before.size() + end_.after.size() > begin_.before.size() + begin_.after.size();
  const Edge& longer = endsLonger ? end_ : begin_;
  const Edge& shorter = endsLonger ? begin_ : end_;
  if (!longer.idIn(line).empty()) return &longer;
  return shorter.idIn(line).empty() ? nullptr : &shorter;
}

std::string Markers::lineOf(const Edge& edge, const std::string& id) const {
  std::string line = edge.before + id + edge.after;
  if (edgeIn(line) != &edge || edge.idIn(line) != id) {
    throw std::invalid_argument("expected an identifier that fits into the line " +
                                quoted(edge.before + std::string(placeholder) + edge.after) +
                                ", got " + quoted(id));
  }
  return line;
}

std::string Markers::beginning(const std::string& id) const { return lineOf(begin_, id); }

std::string Markers::ending(const std::string& id) const { return lineOf(end_, id); }

std::optional<Markers::Marker> Markers::next(std::string_view text, std::size_t from) const {
  while (from < text.size()) {
    std::size_t line = from;
    if (!common_.empty()) {
      const std::size_t at = findText(text, common_, from);
      if (at == std::string_view::npos) return std::nullopt;
      line = beginOfLine(text, at);
      if (line == std::string_view::npos) {
        from = at + 1;
        continue;
      }
    }
    const std::size_t newline = text.find('\n', line);
    const std::size_t end = newline == std::string_view::npos ? text.size() : newline + 1;
    const std::string_view written = trimmed(text.substr(line, end - line));
    if (const Edge* edge = edgeIn(written)) {
      return Marker{edge->idIn(written), edge == &begin_, line, end};
    }
    from = end;
  }
  return std::nullopt;
}

std::vector<Region> Markers::find(std::string_view text) const {
  RegionBuilder builder;
  LineCounter counter(text);
  std::size_t from = 0;
  while (const std::optional<Marker> marker = next(text, from)) {
    const std::size_t line = counter.lineOf(marker->line);
    if (marker->begins) {
      builder.begin(marker->id, line, marker->next);
    } else {
      builder.end(marker->id, line, marker->line);
    }
    from = marker->next;
  }
  return builder.finish();
}

std::string frameHash(std::string_view text, const std::vector<Region>& regions) {
  TextHash hash;
  std::size_t done = 0;
  for (const Region& region : regions) {
    hash.add(text.substr(done, region.begin - done));
    done = region.end;
  }
  hash.add(text.substr(done));
  return hash.digest();
}

std::string withRegions(std::string_view text, const std::vector<Region>& regions,
                        const RegionTexts& texts, bool returns) {
  std::string result;
  result.reserve(text.size());
  std::size_t done = 0;
  for (const Region& region : regions) {
    const auto found = texts.find(region.id);
    if (found == texts.end()) continue;
    appendWithReturns(result, text.substr(done, region.begin - done), returns);
    result += found->second;
    done = region.end;
  }
  appendWithReturns(result, text.substr(done), returns);
  return result;
}

bool endsLinesWithReturn(std::string_view text, const std::vector<Region>& regions) {
  if (regions.empty()) return false;
  const std::size_t newline = regions.front().begin - 1;
  return newline > 0 && text[newline - 1] == '\r';
}

}  // namespace orv
