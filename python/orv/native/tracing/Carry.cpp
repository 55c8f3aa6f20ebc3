#include "python/orv/native/tracing/Carry.hpp"

#include <algorithm>
#include <iterator>
#include <map>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace orv {
namespace {

constexpr std::uint32_t unmatched = UINT32_MAX;
// So many characters in a row show that two places belong together.
constexpr std::size_t certain = 12;
// How far to look for such a place at first.
constexpr std::size_t firstWindow = 256;
// The fewest characters that a line is found by which has moved.
constexpr std::size_t shortestMoved = 4;

bool isWhite(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

// The characters of a text that are not white space, with their offsets.
struct Ink {
  explicit Ink(std::string_view text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
      if (isWhite(text[i])) continue;
      characters += text[i];
      offsets.push_back(static_cast<std::uint32_t>(i));
    }
  }
  std::string_view from(std::size_t position) const {
    return std::string_view(characters).substr(position);
  }

  std::string characters;
  std::vector<std::uint32_t> offsets;
};

// Finds for each character of `after` the one of `before` that it was.
class Matching {
 public:
  Matching(std::string_view before, std::string_view after)
      : before_(before), after_(after), old_(before), new_(after) {
    matches_.assign(new_.offsets.size(), unmatched);
    isTaken_.assign(old_.offsets.size(), false);
    matchInOrder();
    matchMovedLines();
  }

  const Ink& oldInk() const { return old_; }
  const Ink& newInk() const { return new_; }
  // By character of `after`: the position in oldInk(), or `unmatched`.
  const std::vector<std::uint32_t>& matches() const { return matches_; }

 private:
  void match(std::size_t from, std::size_t to) {
    matches_[to] = static_cast<std::uint32_t>(from);
    isTaken_[from] = true;
  }
  void matchInOrder();
  bool resume(std::size_t& from, std::size_t& to) const;
  void matchMovedLines();
  template <typename Visit>
  static void forEachLine(std::string_view text, const Ink& ink, Visit visit);

  std::string_view before_;
  std::string_view after_;
  Ink old_;
  Ink new_;
  std::vector<std::uint32_t> matches_;
  std::vector<bool> isTaken_;
};

void Matching::matchInOrder() {
  std::size_t from = 0;
  std::size_t to = 0;
  while (from < isTaken_.size() && to < matches_.size()) {
    if (old_.characters[from] == new_.characters[to]) {
      match(from++, to++);
    } else if (!resume(from, to)) {
      return;
    }
  }
}

// Moves both to the closest places that belong together.
bool Matching::resume(std::size_t& from, std::size_t& to) const {
  const std::string_view before = old_.from(from);
  const std::string_view after = new_.from(to);
  for (std::size_t window = firstWindow;; window *= 8) {
    std::unordered_map<std::string_view, std::size_t> places;
    for (std::size_t i = 0; i < window && i + certain <= before.size(); ++i) {
      places.try_emplace(before.substr(i, certain), i);
    }
    std::size_t best = SIZE_MAX;
    std::pair<std::size_t, std::size_t> found;
    for (std::size_t i = 0; i < window && i + certain <= after.size() && i < best; ++i) {
      const auto place = places.find(after.substr(i, certain));
      if (place == places.end() || place->second + i >= best) continue;
      best = place->second + i;
      found = {place->second, i};
    }
    if (best != SIZE_MAX) {
      from += found.first;
      to += found.second;
      return true;
    }
    if (window >= before.size() && window >= after.size()) return false;
  }
}

// Calls visit(first, count) for the characters of each line.
template <typename Visit>
void Matching::forEachLine(std::string_view text, const Ink& ink, Visit visit) {
  std::size_t first = 0;
  while (first < ink.offsets.size()) {
    const std::size_t newline = text.find('\n', ink.offsets[first]);
    const auto end = std::lower_bound(ink.offsets.begin(), ink.offsets.end(), newline);
    const auto last = static_cast<std::size_t>(end - ink.offsets.begin());
    visit(first, last - first);
    first = last;
  }
}

void Matching::matchMovedLines() {
  std::unordered_map<std::string_view, std::size_t> lines;
  forEachLine(before_, old_, [&](std::size_t first, std::size_t count) {
    if (count >= shortestMoved && !isTaken_[first]) {
      lines.try_emplace(old_.from(first).substr(0, count), first);
    }
  });
  forEachLine(after_, new_, [&](std::size_t first, std::size_t count) {
    const auto line = lines.find(new_.from(first).substr(0, count));
    if (line == lines.end() || matches_[first] != unmatched) return;
    for (std::size_t i = 0; i < count; ++i) match(line->second + i, first + i);
  });
}

// The origins of the characters of a text, those of its lines apart.
class LineOrigins {
 public:
  LineOrigins(Trace& trace, const Ranges& ranges, std::string_view text)
      : trace_(trace), ranges_(ranges), text_(text) {}

  // Of the characters at these offsets, which grow.
  std::vector<Origin> at(const std::vector<std::uint32_t>& offsets) {
    std::vector<Origin> origins;
    origins.reserve(offsets.size());
    RangeReader reader(ranges_);
    std::size_t begin = 0;
    std::size_t end = 0;
    RangeReader::Range range{};
    std::uint32_t line = 0;
    for (const std::uint32_t offset : offsets) {
      while (end <= offset) {
        begin = end;
        range = reader.take(SIZE_MAX - end);
        end += range.size;
        line = 0;
      }
      line += static_cast<std::uint32_t>(std::count(
          text_.begin() + static_cast<std::ptrdiff_t>(begin), text_.begin() + offset, '\n'));
      begin = offset;
      origins.push_back({siteOfLine(range.origin.site, line), range.origin.link});
    }
    return origins;
  }

 private:
  // The site of a line of a text's site.
  std::uint32_t siteOfLine(std::uint32_t site, std::uint32_t line) {
    const Trace::Site whole = trace_.sites()[site];
    if (whole.kind != Trace::Kind::text) return site;
    std::uint32_t& known = trace_.lineSites()[{site, line}];
    if (known == 0) known = trace_.addSite({Trace::Kind::line, whole.file, whole.line + line});
    return known;
  }

  Trace& trace_;
  const Ranges& ranges_;
  std::string_view text_;
};

Ranges rangesOf(std::string_view text, const Matching& matching, const std::vector<Origin>& old) {
  const std::vector<std::uint32_t>& offsets = matching.newInk().offsets;
  Ranges ranges;
  std::size_t done = 0;
  for (std::size_t i = 0; i < offsets.size(); ++i) {
    const std::uint32_t match = matching.matches()[i];
    const Origin origin =
        match == unmatched ? Trace::ownOrigin(Trace::Kind::formatter) : old[match];
    const std::string_view white = text.substr(done, offsets[i] - done);
    const std::size_t newline = white.rfind('\n');
    const std::size_t ofPrevious = i == 0 ? 0 : newline == white.npos ? white.size() : newline + 1;
    ranges.append(ofPrevious, ranges.last());
    ranges.append(white.size() - ofPrevious + 1, origin);
    done = offsets[i] + 1;
  }
  ranges.append(text.size() - done, ranges.last());
  return ranges;
}

// Where the parts of a text are now: from their first character that is found again to their last.
std::vector<Span> spansOf(const TracedText& traced, std::string_view text,
                          const Matching& matching) {
  std::vector<std::uint32_t> newOffset(matching.oldInk().offsets.size(), unmatched);
  for (std::size_t i = 0; i < matching.matches().size(); ++i) {
    const std::uint32_t match = matching.matches()[i];
    if (match != unmatched) newOffset[match] = matching.newInk().offsets[i];
  }
  const std::vector<std::uint32_t>& offsets = matching.oldInk().offsets;
  std::vector<Span> spans;
  for (const Span& span : traced.spans) {
    const auto first = std::lower_bound(offsets.begin(), offsets.end(), span.begin);
    const auto last = std::lower_bound(first, offsets.end(), span.begin + span.size);
    std::size_t begin = text.size();
    std::size_t end = 0;
    for (auto at = first; at != last; ++at) {
      const std::uint32_t offset = newOffset[static_cast<std::size_t>(at - offsets.begin())];
      if (offset == unmatched) continue;
      begin = std::min<std::size_t>(begin, offset);
      end = std::max<std::size_t>(end, offset + 1);
    }
    if (end <= begin) continue;
    while (begin != 0 && isWhite(text[begin - 1]) && text[begin - 1] != '\n') --begin;
    if (end < text.size() && text[end] == '\n') ++end;
    spans.push_back({span.kind, span.name, begin, end - begin});
  }
  return spans;
}

// Copies ranges to a text with regions, and notes where offsets are now.
class RegionCarrier {
 public:
  RegionCarrier(const TracedText& traced, std::string_view before, std::string_view after)
      : before_(before), after_(after), reader_(traced.ranges) {
    for (const Span& span : traced.spans) {
      offsets_[span.begin] = 0;
      offsets_[span.begin + span.size] = 0;
    }
    next_ = offsets_.begin();
  }

  // Text that stays, up to an offset; a newline may have become a longer line end.
  void copyUpTo(std::size_t end) {
    while (done_ != end) {
      note(done_);
      const bool isLonger = before_[done_] == '\n' && after_[ranges_.size()] == '\r';
      const Origin origin = reader_.take(1).origin;
      ranges_.append(isLonger ? 2 : 1, origin);
      ++done_;
      if (endsWithDirective()) copyNumber();
    }
  }
  // Text up to an offset that others have written.
  void replaceUpTo(std::size_t end, std::size_t size) {
    note(done_);
    ranges_.append(size, Trace::ownOrigin(Trace::Kind::region));
    Ranges dropped;
    reader_.copy(end - done_, dropped);
    done_ = end;
  }
  std::size_t size() const { return ranges_.size(); }

  TracedText finish(const std::vector<Span>& spans, std::vector<Span> regions) {
    copyUpTo(before_.size());
    note(done_);
    TracedText text{std::move(ranges_), {}};
    for (const Span& span : spans) {
      const std::size_t begin = offsets_[span.begin];
      text.spans.push_back({span.kind, span.name, begin, offsets_[span.begin + span.size] - begin});
    }
    std::move(regions.begin(), regions.end(), std::back_inserter(text.spans));
    return text;
  }

 private:
  // Whether what is done ends with the beginning of a line that numbers the next one.
  bool endsWithDirective() const {
    constexpr std::string_view directive = "\n#line ";
    const std::string_view done = before_.substr(0, done_);
    if (done.size() < directive.size()) return done == directive.substr(1);
    return done.substr(done.size() - directive.size()) == directive;
  }
  // The number may have changed.
  void copyNumber() {
    const auto digits = [](std::string_view text, std::size_t from) {
      const std::size_t end = text.find_first_not_of("0123456789", from);
      return (end == text.npos ? text.size() : end) - from;
    };
    const std::size_t size = digits(before_, done_);
    Ranges number;
    reader_.copy(size, number);
    ranges_.append(digits(after_, ranges_.size()), number.last());
    done_ += size;
  }
  void note(std::size_t offset) {
    for (; next_ != offsets_.end() && next_->first <= offset; ++next_) next_->second = size();
  }

  std::string_view before_;
  std::string_view after_;
  RangeReader reader_;
  Ranges ranges_;
  std::size_t done_ = 0;
  std::map<std::size_t, std::size_t> offsets_;
  std::map<std::size_t, std::size_t>::iterator next_;
};

}  // namespace

TracedText withRegions(const TracedText& traced, std::string_view before, std::string_view after,
                       const std::vector<Region>& regions, const RegionTexts& texts) {
  if (regions.empty() && before.size() == after.size()) return traced;
  RegionCarrier carrier(traced, before, after);
  std::vector<Span> spans;
  for (const Region& region : regions) {
    carrier.copyUpTo(region.begin);
    const std::size_t begin = carrier.size();
    const auto text = texts.find(region.id);
    if (text == texts.end()) {
      carrier.copyUpTo(region.end);
    } else {
      carrier.replaceUpTo(region.end, text->second.size());
    }
    spans.push_back({Span::Kind::region, region.id, begin, carrier.size() - begin});
  }
  return carrier.finish(traced.spans, std::move(spans));
}

TracedText carriedOver(Trace& trace, const TracedText& traced, std::string_view before,
                       std::string_view after) {
  const Matching matching(before, after);
  LineOrigins lines(trace, traced.ranges, before);
  const std::vector<Origin> origins = lines.at(matching.oldInk().offsets);
  return {rangesOf(after, matching, origins), spansOf(traced, after, matching)};
}

}  // namespace orv
