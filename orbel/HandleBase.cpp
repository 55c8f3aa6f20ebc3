#include "orbel/HandleBase.hpp"

#include <orbel/ClassInfo.hpp>
#include <orbel/ObjectSystem.hpp>
#include <orbel/Value.hpp>

namespace orbel {

HandleBase::~HandleBase() {
  if (identity_ != nullptr) identity_->object_ = nullptr;
}

Value HandleBase::toHostValue() { return Value(Handle(ObjectIdentity::of(*this))); }

void HandleBase::prePropertySet(const std::string& /*property*/, const Value& /*value*/,
                                std::size_t /*valueSize*/) {}

void HandleBase::postPropertySet(const std::string& /*property*/, const Value& /*value*/,
                                 std::size_t /*valueSize*/) {}

bool HandleBase::isSavedWithModel() const { return false; }

void HandleBase::lock() {}

void HandleBase::unlock() {}

HandleBase* HandleBase::fromHostValue(const Value& value, const std::string& qualifiedClassName) {
  const auto* handle = value.get<Handle>();
  HandleBase* object = handle ? handle->object() : nullptr;
  if (object == nullptr || object->getFullyQualifiedKoboTypeName() == qualifiedClassName) {
    return object;
  }
  const ClassInfo* actual = handle->identity().classInfo();
  return actual != nullptr && actual->derivesFrom(qualifiedClassName) ? object : nullptr;
}

}  // namespace orbel
