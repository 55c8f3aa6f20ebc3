#include "python/orv/native/tracing/LineUses.hpp"

#include <algorithm>
#include <set>
#include <stdexcept>
#include <vector>

namespace orv {
namespace {

std::uint64_t keyOf(std::uint32_t file, std::uint32_t line) {
  return (static_cast<std::uint64_t>(file) << 32U) | line;
}

std::int64_t fileOf(std::uint64_t key) { return static_cast<std::int64_t>(key >> 32U); }
std::int64_t lineOf(std::uint64_t key) { return static_cast<std::int64_t>(key & 0xFFFFFFFFU); }

}  // namespace

void LineUses::add(std::string_view ranges, std::string_view text) {
  const auto columns = columnsOf(ranges, 3);
  const std::vector<Trace::Site>& sites = trace_.sites();
  Uses uses;
  std::size_t begin = 0;
  std::size_t line = 1;
  for (std::size_t i = 0; i < columns[0].size(); ++i) {
    const auto end = static_cast<std::size_t>(columns[0][i]);
    const auto site = static_cast<std::size_t>(columns[1][i]);
    if (end < begin || end > text.size() || site >= sites.size()) {
      throw std::invalid_argument("the ranges do not fit the text");
    }
    line = count(sites[site], text.substr(begin, end - begin), line, uses);
    begin = end;
  }
  flush(uses);
  ++file_;
}

std::size_t LineUses::count(const Trace::Site& site, std::string_view text, std::size_t line,
                            Uses& uses) {
  std::uint32_t at = site.line;
  while (!text.empty()) {
    if (at != 0) {
      Use& use = uses[keyOf(site.file, at)];
      use.count += use.lastLine == line ? 0 : 1;
      use.lastLine = line;
    }
    const std::size_t newline = text.find('\n');
    if (newline == text.npos) break;
    text.remove_prefix(newline + 1);
    ++line;
    if (site.kind == Trace::Kind::text) ++at;
  }
  return line;
}

void LineUses::flush(const Uses& uses) {
  std::vector<std::uint64_t> keys;
  for (const auto& [key, use] : uses) keys.push_back(key);
  std::sort(keys.begin(), keys.end());
  for (const std::uint64_t key : keys) {
    const auto count = static_cast<std::int64_t>(uses.at(key).count);
    table_.append({file_, fileOf(key), lineOf(key), count});
    printed_.insert(key);
  }
}

std::string LineUses::table() const {
  // What prints by itself, such as the call of a macro, counts as printed, too.
  std::unordered_set<std::uint64_t> entered;
  for (const Links::Link& link : trace_.links().links()) {
    const Trace::Site& site = trace_.sites()[link.site];
    entered.insert(keyOf(site.file, site.line));
  }
  std::set<std::uint64_t> unused;
  for (const Trace::Site& site : trace_.sites()) {
    if (site.kind != Trace::Kind::text && site.kind != Trace::Kind::value) continue;
    for (std::uint32_t line = site.line; line < site.line + site.lines; ++line) {
      const std::uint64_t key = keyOf(site.file, line);
      if (line != 0 && printed_.count(key) + entered.count(key) == 0) unused.insert(key);
    }
  }
  DeltaTable<4> table = table_;
  for (const std::uint64_t key : unused) table.append({0, fileOf(key), lineOf(key), 0});
  return table.text();
}

}  // namespace orv
