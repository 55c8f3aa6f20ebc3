#include "orbel/HostObject.hpp"

#include <functional>

namespace orbel {

// The storage is the library object's to initialise.
// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init)
HostObject::HostObject(const Constructor& constructor, Arguments arguments) {
  attach(*constructor.construct({storage_.data(), storage_.size()}, arguments));
}

HostObject::~HostObject() { HostObject::destroyObject(); }

void HostObject::destroyObject() noexcept {
  HandleBase* doomed = object();
  if (doomed == nullptr) return;
  if (holds(*doomed)) {
    doomed->~HandleBase();
  } else {
    delete doomed;
  }
}

bool HostObject::holds(const HandleBase& object) const {
  const void* address = &object;
  const void* begin = storage_.data();
  const void* end = storage_.data() + storage_.size();
  return !std::less<>()(address, begin) && std::less<>()(address, end);
}

}  // namespace orbel
