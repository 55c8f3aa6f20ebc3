#include "orbel/Member.hpp"

#include <utility>

#include <orbel/ClassInfo.hpp>
#include <orbel/Constructor.hpp>
#include <orbel/Method.hpp>
#include <orbel/Property.hpp>

#include "orbel/HostErrors.hpp"

namespace orbel {
namespace {

void checkCount(const Member& member, std::size_t expected, std::size_t given) {
  if (given != expected) {
    raise("WrongArgumentCount",
          {member.qualifiedName(), static_cast<double>(expected), static_cast<double>(given)});
  }
}

}  // namespace

Member::Member(const ClassInfo& owner, std::string name)
    : owner_(&owner), name_(std::move(name)), qualifiedName_(owner.qualifiedName() + "." + name_) {}

HandleBase& Member::objectIn(const Value& value) const {
  const auto* handle = value.get<Handle>();
  HandleBase* object = handle ? handle->object() : nullptr;
  if (handle && object == nullptr) raise("InvalidHandle", {qualifiedName_});
  const ClassInfo* actual = handle ? handle->identity().classInfo() : nullptr;
  if (actual == nullptr || !actual->derivesFrom(*owner_)) {
    raise("WrongObjectClass", {qualifiedName_, owner_->qualifiedName(), value.className()});
  }
  return *object;
}

void IncomingValue::refuse() const {
  const std::string given = value_.className();
  if (position_ == 0) raise("WrongPropertyClass", {member_.qualifiedName(), expected_, given});
  raise("WrongArgumentClass",
        {member_.qualifiedName(), static_cast<double>(position_), expected_, given});
}

Method::Method(const ClassInfo& owner, std::string name, Signature signature)
    : Member(owner, std::move(name)), signature_(std::move(signature)) {}

Value Method::invoke(Arguments arguments) const {
  HandleBase& object = objectIn(arguments.size() == 0 ? Value() : arguments[0]);
  checkCount(*this, signature_.arguments().size() - 1, arguments.size() - 1);
  return call(object, arguments);
}

Property::Property(const ClassInfo& owner, std::string name, std::string type, bool isWritable)
    : Member(owner, std::move(name)), type_(std::move(type)), isWritable_(isWritable) {}

Value Property::get(const Value& object) const { return read(objectIn(object)); }

void Property::set(const Value& object, const Value& value) const {
  HandleBase& target = objectIn(object);
  if (!isWritable_) raise("PropertyReadOnly", {qualifiedName()});
  assign(target, value);
}

Constructor::Constructor(const ClassInfo& owner, std::vector<std::string> signature)
    : Member(owner, owner.getName()), signature_(std::move(signature)) {}

HandleBase* Constructor::construct(ObjectStorage storage, Arguments arguments) const {
  checkCount(*this, signature_.size(), arguments.size());
  return make(storage, arguments);
}

}  // namespace orbel
