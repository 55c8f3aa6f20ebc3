#include "orbel/Client.hpp"

#include <orbel/ObjectSystem.hpp>

#include "orbel/HostErrors.hpp"
#include "orbel/HostObject.hpp"
#include "orbel/QualifiedName.hpp"

namespace orbel {

std::shared_ptr<PackageInterface> Client::findPackage(const Name& name) const {
  auto package = ObjectSystem::instance().findPackage(name);
  return package && package->isAvailableTo(*this) ? package : nullptr;
}

std::shared_ptr<PackageInterface> Client::getPackage(const Name& name) const {
  auto package = findPackage(name);
  if (!package) raise("UnknownPackage", {name.text()});
  return package;
}

const ClassInfo& Client::getClass(const std::string& qualifiedName) const {
  const QualifiedName name = splitQualifiedName(qualifiedName);
  return getPackage(Name(name.package))->getClass(name.simple);
}

Value Client::construct(const ClassInfo& info, Arguments arguments) const {
  if (!info.package().isAvailableTo(*this)) raise("UnknownClass", {info.qualifiedName()});
  if (info.isAbstract()) raise("AbstractClass", {info.qualifiedName()});
  if (info.constructor() == nullptr) raise("NoConstructor", {info.qualifiedName()});
  const boost::intrusive_ptr<ObjectIdentity> made(new HostObject(*info.constructor(), arguments));
  info.updateInstance(*made->object());
  return Value(Handle(made));
}

void destroyObject(const Value& value) {
  const auto* handle = value.get<Handle>();
  if (handle == nullptr) {
    raise("WrongObjectClass", {"destroyObject", "any handle class", value.className()});
  }
  if (!handle->isValid()) raise("InvalidHandle", {"destroyObject"});
  if (!handle->identity().ownsObject()) raise("NotOwnedByScript", {value.className()});
  handle->identity().destroyObject();
}

}  // namespace orbel
