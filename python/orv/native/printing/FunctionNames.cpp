#include "python/orv/native/printing/FunctionNames.hpp"

#include <functional>
#include <utility>

namespace orv {

std::optional<std::size_t> FunctionNames::add(std::string_view name, std::size_t tag) {
  if (2 * functions_.size() >= slots_.size()) grow();
  const auto hash = static_cast<std::uint32_t>(std::hash<std::string_view>()(name));
  Slot& slot = slotOf(hash, name);
  if (slot.number != 0) return functions_[slot.number - 1].tag;
  names_.append(name);
  functions_.push_back({names_.size(), tag});
  slot = {hash, static_cast<std::uint32_t>(functions_.size())};
  return std::nullopt;
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
  constexpr std::size_t fewest = 16;
  const std::size_t size = slots_.empty() ? fewest : 2 * slots_.size();
  const std::vector<Slot> old = std::exchange(slots_, std::vector<Slot>(size));
  for (const Slot& slot : old) {
    if (slot.number == 0) continue;
    std::size_t at = slot.hash & (size - 1);
    while (slots_[at].number != 0) at = (at + 1) & (size - 1);
    slots_[at] = slot;
  }
}

}  // namespace orv
