#include "python/orv/native/tracing/Ranges.hpp"

#include <algorithm>

#include "python/orv/native/tracing/Deltas.hpp"

namespace orv {
namespace {

std::int64_t difference(std::size_t value, std::size_t before) {
  return static_cast<std::int64_t>(value) - static_cast<std::int64_t>(before);
}

void appendRow(std::string& text, std::size_t size, Origin origin, Origin before) {
  appendNumbers<3>(text, {static_cast<std::int64_t>(size), difference(origin.site, before.site),
                          difference(origin.link, before.link)});
}

std::size_t lineSize(std::string_view text) {
  const std::size_t newline = text.find('\n');
  return newline == text.npos ? text.size() : newline + 1;
}

}  // namespace

void Ranges::flush() {
  appendRow(flushed_, size_ - written_, last_, flushedOrigin_);
  flushedOrigin_ = last_;
  written_ = size_;
}

void Ranges::clear() {
  flushed_.clear();
  written_ = size_ = 0;
  flushedOrigin_ = last_ = {};
}

std::string Ranges::text() const {
  std::string text = flushed_;
  if (size_ != written_) appendRow(text, size_ - written_, last_, flushedOrigin_);
  return text;
}

void Ranges::append(const Ranges& other) {
  if (!other.flushed_.empty()) {
    // Its first row is the difference from nothing, all others are the same here.
    std::string_view rest = other.flushed_;
    const auto size = static_cast<std::size_t>(takeNumber(rest));
    const auto site = static_cast<std::uint32_t>(takeNumber(rest));
    const auto link = static_cast<std::uint32_t>(takeNumber(rest));
    append(size, {site, link});
    flush();
    flushed_ += rest;
    size_ += other.written_ - size;
    written_ = size_;
    flushedOrigin_ = last_ = other.flushedOrigin_;
  }
  append(other.size_ - other.written_, other.last_);
}

void RangeReader::next() {
  if (!rest_.empty()) {
    left_ = static_cast<std::size_t>(takeNumber(rest_));
    origin_.site = static_cast<std::uint32_t>(origin_.site + takeNumber(rest_));
    origin_.link = static_cast<std::uint32_t>(origin_.link + takeNumber(rest_));
  } else {
    left_ = ranges_.size_ - end_;
    origin_ = ranges_.last_;
  }
  end_ += left_;
}

RangeReader::Range RangeReader::take(std::size_t most) {
  if (left_ == 0) next();
  if (left_ == 0) return {most, {}};
  const std::size_t size = std::min(most, left_);
  left_ -= size;
  return {size, origin_};
}

void RangeReader::copy(std::size_t size, Ranges& to) {
  while (size != 0) {
    const Range range = take(size);
    to.append(range.size, range.origin);
    size -= range.size;
  }
}

void RangeReader::copyIndented(std::string_view before, std::string_view after, Ranges& to) {
  while (!before.empty()) {
    const std::size_t size = lineSize(before);
    const std::size_t indented = lineSize(after);
    const Range first = take(size);
    to.append(first.size + indented - size, first.origin);
    copy(size - first.size, to);
    before.remove_prefix(size);
    after.remove_prefix(indented);
  }
}

}  // namespace orv
