#include "orbel/PackageInterface.hpp"

#include <utility>

#include <orbel/Client.hpp>

#include "orbel/DefinitionLock.hpp"
#include "orbel/HostErrors.hpp"

namespace orbel {

PackageInfo::~PackageInfo() = default;

std::string PackageInfo::getDescription() const { return {}; }

PackageInterface::PackageInterface(std::unique_ptr<PackageInfo> info)
    : info_(std::move(info)), name_(info_->getName()) {}

PackageInterface::~PackageInterface() = default;

std::vector<std::string> PackageInterface::classNames() {
  ensureRegistered();
  std::vector<std::string> names;
  names.reserve(classes_.size());
  for (const auto& info : classes_) names.push_back(info->getName());
  return names;
}

const ClassInfo* PackageInterface::findClass(const std::string& name) {
  ensureRegistered();
  const auto found = classesByName_.find(name);
  if (found == classesByName_.end()) return nullptr;
  found->second->ensureDefined();
  return found->second;
}

const ClassInfo& PackageInterface::getClass(const std::string& name) {
  const ClassInfo* info = findClass(name);
  if (info == nullptr) raise("UnknownClass", {name_ + "." + name});
  return *info;
}

void PackageInterface::releaseForClient(Client& client) const { client.released_.insert(this); }

bool PackageInterface::isAvailableTo(const Client& client) const {
  return client.released_.count(this) == 0;
}

bool PackageInterface::hasClass(const std::string& name) {
  ensureRegistered();
  return classesByName_.count(name) != 0;
}

void PackageInterface::addClass(std::unique_ptr<ClassInfo> info) {
  classes_.reserve(classes_.size() + 1);
  info->joinPackage(*this);
  if (!classesByName_.emplace(info->getName(), info.get()).second) {
    raise("ClassExists", {name_, info->getName()});
  }
  classes_.push_back(std::move(info));
}

// A registration that fails is not repeated: the classes that it added stay.
void PackageInterface::ensureRegistered() {
  if (registered_.load(std::memory_order_acquire)) return;
  const DefinitionLock lock(definitionMutex());
  if (registrationBegun_) return;
  registrationBegun_ = true;
  try {
    info_->registerClasses(*this);
  } catch (...) {
    registered_.store(true, std::memory_order_release);
    throw;
  }
  registered_.store(true, std::memory_order_release);
}

}  // namespace orbel
