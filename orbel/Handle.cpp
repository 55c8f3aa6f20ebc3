#include "orbel/Handle.hpp"

#include <orbel/ObjectSystem.hpp>

namespace orbel {

boost::intrusive_ptr<ObjectIdentity> ObjectIdentity::of(HandleBase& object) {
  if (object.identity_ != nullptr) return object.identity_;
  boost::intrusive_ptr<ObjectIdentity> identity = reserve();
  identity->attach(object);
  return identity;
}

boost::intrusive_ptr<ObjectIdentity> ObjectIdentity::reserve() { return new ObjectIdentity; }

void ObjectIdentity::offerTo(HandleBase& object) {
  if (object.identity_ == nullptr) attach(object);
}

ObjectIdentity::~ObjectIdentity() {
  if (object_ != nullptr) object_->identity_ = nullptr;
}

void ObjectIdentity::attach(HandleBase& object) {
  object_ = &object;
  object.identity_ = this;
}

const ClassInfo* ObjectIdentity::resolveClass() const {
  if (object_ != nullptr) class_ = ObjectSystem::instance().classOf(*object_, ownsObject());
  return class_;
}

}  // namespace orbel
