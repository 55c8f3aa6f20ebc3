#include "varn/detail/UniqueNames.hpp"

namespace Varn::detail {

void UniqueNames::add(const std::string& name) {
  const auto [position, isNew] = known_.insert(name);
  if (!isNew) return;
  try {
    list_.push_back(*position);
  } catch (...) {
    known_.erase(position);
    throw;
  }
}

void UniqueNames::assign(const std::vector<std::string>& names) {
  UniqueNames replacement;
  replacement.list_ = names;
  replacement.known_.insert(names.begin(), names.end());
  swap(replacement);
}

void UniqueNames::swap(UniqueNames& other) noexcept {
  list_.swap(other.list_);
  known_.swap(other.known_);
}

}  // namespace Varn::detail
