#include "python/orv/native/models/DistinctTexts.hpp"

#include <functional>
#include <stdexcept>

namespace orv {

std::uint32_t DistinctTexts::add(std::string_view text) {
  if (2 * ends_.size() >= slots_.size()) grow();
  if (last_ < ends_.size() && (*this)[last_] == text) return last_;
  std::uint32_t& slot = slotOf(text);
  if (slot == 0) {
    if (text.size() > UINT32_MAX - bytes_.size()) throw std::length_error("more than 4 GiB");
    bytes_.append(text);
    ends_.push_back(static_cast<std::uint32_t>(bytes_.size()));
    slot = static_cast<std::uint32_t>(ends_.size());
  }
  return last_ = slot - 1;
}

std::uint32_t& DistinctTexts::slotOf(std::string_view text) {
  const std::size_t mask = slots_.size() - 1;
  std::size_t slot = std::hash<std::string_view>()(text) & mask;
  while (slots_[slot] != 0 && (*this)[slots_[slot] - 1] != text) slot = (slot + 1) & mask;
  return slots_[slot];
}

void DistinctTexts::grow() {
  slots_.assign(slots_.empty() ? 64 : 2 * slots_.size(), 0);
  for (std::uint32_t number = 0; number < ends_.size(); ++number) {
    slotOf((*this)[number]) = number + 1;
  }
}

void DistinctTexts::finish() { slots_ = {}; }

}  // namespace orv
