#include <utility>

#include <varn/UniqueNames.hpp>

namespace Varn {

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
  list_.swap(replacement.list_);
  known_.swap(replacement.known_);
}

}  // namespace Varn
