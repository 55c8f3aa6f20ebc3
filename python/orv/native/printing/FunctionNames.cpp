#include "python/orv/native/printing/FunctionNames.hpp"

#include <functional>
#include <utility>

namespace orv {

namespace {

// More names are found by their hash.
constexpr std::size_t mostSearched = 8;

std::uint32_t hashOf(std::string_view name) {
  return static_cast<std::uint32_t>(std::hash<std::string_view>()(name));
}

}  // namespace

std::optional<std::size_t> FunctionNames::add(std::string_view name, std::size_t tag) {
  if (functions_.size() < mostSearched) {
    for (std::size_t i = 0; i < functions_.size(); ++i) {
      if (nameOf(i) == name) return functions_[i].tag;
    }
    append(name, tag);
    return std::nullopt;
  }
  if (2 * functions_.size() >= slots_.size()) grow();
  const std::uint32_t hash = hashOf(name);
  Slot& slot = slotOf(hash, name);
  if (slot.number != 0) return functions_[slot.number - 1].tag;
  append(name, tag);
  slot = {hash, static_cast<std::uint32_t>(functions_.size())};
  return std::nullopt;
}

void FunctionNames::prefetch(std::string_view name) const {
  if (slots_.empty()) return;
  __builtin_prefetch(&slots_[hashOf(name) & (slots_.size() - 1)]);
}

void FunctionNames::append(std::string_view name, std::size_t tag) {
  names_.append(name);
  functions_.push_back({names_.size(), tag});
}

std::string_view FunctionNames::nameOf(std::size_t index) const {
  const std::size_t begin = index == 0 ? 0 : functions_[index - 1].end;
  return std::string_view(names_).substr(begin, functions_[index].end - begin);
}

FunctionNames::Slot& FunctionNames::slotOf(std::uint32_t hash, std::string_view name) {
  const std::size_t mask = slots_.size() - 1;
  std::size_t at = hash & mask;
  while (slots_[at].number != 0 &&
         (slots_[at].hash != hash || nameOf(slots_[at].number - 1) != name)) {
    at = (at + 1) & mask;
  }
  return slots_[at];
}

void FunctionNames::grow() {
  if (slots_.empty()) {
    slots_.resize(4 * mostSearched);
    for (std::uint32_t i = 0; i < functions_.size(); ++i) {
      const std::uint32_t hash = hashOf(nameOf(i));
      slotOf(hash, nameOf(i)) = {hash, i + 1};
    }
    return;
  }
  const std::size_t size = 2 * slots_.size();
  const std::vector<Slot> old = std::exchange(slots_, std::vector<Slot>(size));
  for (const Slot& slot : old) {
    if (slot.number == 0) continue;
    std::size_t at = slot.hash & (size - 1);
    while (slots_[at].number != 0) at = (at + 1) & (size - 1);
    slots_[at] = slot;
  }
}

}  // namespace orv
