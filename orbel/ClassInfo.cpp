#include "orbel/ClassInfo.hpp"

#include <utility>

#include <orbel/ObjectSystem.hpp>
#include <orbel/PackageInterface.hpp>

#include "orbel/DefinitionLock.hpp"
#include "orbel/HostErrors.hpp"

namespace orbel {
namespace {

template <class Members>
auto findByName(const Members& members, const std::string& name) -> decltype(members[0].get()) {
  const auto found = std::find_if(members.begin(), members.end(),
                                  [&](const auto& member) { return member->name() == name; });
  return found == members.end() ? nullptr : found->get();
}

}  // namespace

ClassInfo::~ClassInfo() = default;

void ClassInfo::joinPackage(const PackageInterface& package) {
  package_ = &package;
  qualifiedName_ = package.name() + "." + getName();
}

bool ClassInfo::isAbstract() const { return false; }

void ClassInfo::updateInstance(HandleBase& /*object*/) const {}

bool ClassInfo::exposesLibraryObjects() const { return false; }

bool ClassInfo::describes(const HandleBase& /*object*/) const { return true; }

// The lineage lists a class before what it derives from, so the nearest declaration is found first.
const Method* ClassInfo::findMethod(const std::string& name) const {
  for (const ClassInfo* info : lineage_) {
    if (const Method* method = findByName(info->methods_, name)) return method;
  }
  return nullptr;
}

const Property* ClassInfo::findProperty(const std::string& name) const {
  for (const ClassInfo* info : lineage_) {
    if (const Property* property = findByName(info->properties_, name)) return property;
  }
  return nullptr;
}

const Method& ClassInfo::getMethod(const std::string& name) const {
  const Method* method = findMethod(name);
  if (method == nullptr) raise("UnknownMethod", {qualifiedName_, name});
  return *method;
}

const Property& ClassInfo::getProperty(const std::string& name) const {
  const Property* property = findProperty(name);
  if (property == nullptr) raise("UnknownProperty", {qualifiedName_, name});
  return *property;
}

bool ClassInfo::derivesFrom(const std::string& qualifiedName) const {
  return std::any_of(lineage_.begin(), lineage_.end(),
                     [&](const ClassInfo* info) { return info->qualifiedName_ == qualifiedName; });
}

bool ClassInfo::lineageDescribes(const HandleBase& object) const {
  return std::all_of(lineage_.begin(), lineage_.end(),
                     [&](const ClassInfo* info) { return info->describes(object); });
}

void ClassInfo::addSuperclass(const std::string& qualifiedName, bool isOfThisPackage) {
  declaredSuperclasses_.push_back({qualifiedName, isOfThisPackage});
}

void ClassInfo::addMember(std::unique_ptr<const Method> method) {
  refuseRepeatedName(method->name());
  methods_.push_back(std::move(method));
}

void ClassInfo::addMember(std::unique_ptr<const Property> property) {
  refuseRepeatedName(property->name());
  properties_.push_back(std::move(property));
}

void ClassInfo::addMember(std::unique_ptr<const Constructor> constructor) {
  if (constructor_) raise("MemberExists", {qualifiedName_, constructor->name()});
  constructor_ = std::move(constructor);
}

void ClassInfo::refuseRepeatedName(const std::string& name) const {
  if (findByName(methods_, name) || findByName(properties_, name)) {
    raise("MemberExists", {qualifiedName_, name});
  }
}

void ClassInfo::ensureDefined() {
  if (state_.load(std::memory_order_acquire) == State::defined) return;
  const DefinitionLock lock(definitionMutex());
  if (state_ == State::defined) return;
  if (state_ == State::inDefinition) raise("SuperclassCycle", {qualifiedName_});
  state_ = State::inDefinition;
  try {
    define();
    resolveSuperclasses();
    checkClassWords();
  } catch (...) {
    dropDeclarations();
    state_ = State::undefined;
    throw;
  }
  state_.store(State::defined, std::memory_order_release);
}

void ClassInfo::resolveSuperclasses() {
  lineage_.push_back(this);
  for (const DeclaredSuperclass& declared : declaredSuperclasses_) {
    const ClassInfo* info = ObjectSystem::instance().findClass(declared.qualifiedName);
    if (info == nullptr || (declared.isOfThisPackage && info->package_ != package_)) {
      raise("UnknownClass", {declared.qualifiedName});
    }
    superclasses_.push_back({info, declared.isOfThisPackage});
    for (const ClassInfo* ancestor : info->lineage_) {
      if (!derivesFrom(*ancestor)) lineage_.push_back(ancestor);
    }
  }
}

void ClassInfo::checkClassWords() const {
  const auto check = [](const Member& member, const std::string& word) {
    if (typeKind(word) == TypeKind::object && !ObjectSystem::instance().hasClass(word)) {
      raise("SignatureMismatch", {member.qualifiedName(), "there is no class \"" + word + "\""});
    }
  };
  for (const auto& method : methods_) {
    check(*method, method->signature().result());
    for (const std::string& word : method->signature().arguments()) check(*method, word);
  }
  for (const auto& property : properties_) check(*property, property->type());
}

void ClassInfo::dropDeclarations() {
  declaredSuperclasses_.clear();
  superclasses_.clear();
  methods_.clear();
  properties_.clear();
  constructor_.reset();
  lineage_.clear();
}

}  // namespace orbel
