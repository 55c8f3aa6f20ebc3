#include "orbel/ObjectSystem.hpp"

#include <utility>

#include "orbel/Heterogeneous.hpp"
#include "orbel/HostErrors.hpp"
#include "orbel/QualifiedName.hpp"

namespace orbel {

// Never destroyed: objects and handles may outlive every other static object.
ObjectSystem& ObjectSystem::instance() {
  static ObjectSystem& system = *new ObjectSystem;
  return system;
}

ObjectSystem::ObjectSystem() { addPackage(makeMixinPackage()); }

void ObjectSystem::addPackage(std::unique_ptr<PackageInfo> info) {
  auto package = std::make_shared<PackageInterface>(std::move(info));
  const std::string& name = package->name();
  order_.reserve(order_.size() + 1);
  std::string listed = name;
  if (!packages_.emplace(Name(name), package).second) raise("PackageExists", {name});
  order_.push_back(std::move(listed));
}

std::shared_ptr<PackageInterface> ObjectSystem::findPackage(const Name& name) const {
  const auto found = packages_.find(name);
  return found == packages_.end() ? nullptr : found->second;
}

const ClassInfo* ObjectSystem::findClass(const std::string& qualifiedName) const {
  const QualifiedName name = splitQualifiedName(qualifiedName);
  const auto package = findPackage(Name(name.package));
  return package ? package->findClass(name.simple) : nullptr;
}

bool ObjectSystem::hasClass(const std::string& qualifiedName) const {
  const QualifiedName name = splitQualifiedName(qualifiedName);
  const auto package = findPackage(Name(name.package));
  return package && package->hasClass(name.simple);
}

const ClassInfo* ObjectSystem::classOf(const HandleBase& object, bool madeByScript) const {
  const std::string name = object.getFullyQualifiedKoboTypeName();
  const ClassInfo* info = findClass(name);
  if (info == nullptr) return nullptr;
  if (!info->lineageDescribes(object)) raise("ClassMismatch", {name});
  if (!madeByScript && !info->exposesLibraryObjects()) raise("LibraryObjectHidden", {name});
  return info;
}

}  // namespace orbel
