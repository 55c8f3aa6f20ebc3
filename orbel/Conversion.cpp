#include "orbel/Conversion.hpp"

#include <cmath>
#include <limits>
#include <utility>

#include <orbel/ClassInfo.hpp>
#include <orbel/ObjectSystem.hpp>

#include "orbel/Heterogeneous.hpp"
#include "orbel/HostErrors.hpp"

namespace orbel {
namespace {

const CharacterArray& characters(const IncomingValue& incoming) {
  const auto* array = incoming.value().get<CharacterArray>();
  if (array == nullptr) incoming.refuse();
  return *array;
}

bool isEmptyList(const Value& value) {
  const auto* cells = value.get<CellArray>();
  return value.isMissing() || (cells && cells->elements().empty());
}

std::vector<std::string> cellTexts(const IncomingValue& incoming) {
  const std::string& property = incoming.member().qualifiedName();
  const auto* cells = incoming.value().get<CellArray>();
  if (cells == nullptr) raise("MustBeCellArray", {property, incoming.value().className()});
  std::vector<std::string> result;
  result.reserve(cells->elements().size());
  for (const Value& element : cells->elements()) {
    const auto* text = element.get<CharacterArray>();
    if (text == nullptr) raise("MustBeString", {property, static_cast<double>(result.size() + 1)});
    result.push_back(text->toText());
  }
  return result;
}

Handle handleTo(HandleBase& object) {
  const Value value = object.toHostValue();
  const auto* handle = value.get<Handle>();
  return handle ? *handle : Handle(ObjectIdentity::of(object));
}

}  // namespace

Argument<std::string>::Argument(const IncomingValue& incoming) {
  const CharacterArray& array = characters(incoming);
  text_ = array.text();
  if (text_ == nullptr) {
    converted_ = array.toText();
    text_ = &converted_;
  }
}

Argument<std::u16string>::Argument(const IncomingValue& incoming)
    : text_(characters(incoming).toText16()) {}

Argument<std::uint32_t>::Argument(const IncomingValue& incoming) {
  if (const auto* number = incoming.value().get<std::uint32_t>()) {
    number_ = *number;
    return;
  }
  const auto* number = incoming.value().get<double>();
  const bool fits = number && *number >= 0 &&
                    *number <= std::numeric_limits<std::uint32_t>::max() &&
                    std::trunc(*number) == *number;
  if (!fits) incoming.refuse();
  number_ = static_cast<std::uint32_t>(*number);
}

Argument<std::vector<std::string>>::Argument(const IncomingValue& incoming) {
  if (isEmptyList(incoming.value())) return;
  const auto* strings = incoming.value().get<StringArray>();
  list_ = strings ? strings->elements() : cellTexts(incoming);
}

HandleBase& objectArgument(const IncomingValue& incoming) {
  const auto* handle = incoming.value().get<Handle>();
  if (handle && !handle->isValid()) raise("InvalidHandle", {incoming.member().qualifiedName()});
  HandleBase* object = HandleBase::fromHostValue(incoming.value(), incoming.expected());
  if (object == nullptr) incoming.refuse();
  return *object;
}

Value toObjectResult(HandleBase* object, const std::string& className) {
  return object ? object->toHostValue() : Value(ObjectArray::none(className));
}

Value toObjectArray(const std::vector<HandleBase*>& objects, const std::string& className) {
  std::vector<Handle> handles;
  handles.reserve(objects.size());
  for (HandleBase* object : objects) {
    if (object != nullptr) handles.push_back(handleTo(*object));
  }
  ObjectArray array(className, std::move(handles));
  const ClassInfo* info = ObjectSystem::instance().findClass(className);
  if (info != nullptr && info->derivesFrom(heterogeneousClassName)) array.markHeterogeneous();
  return Value(std::move(array));
}

}  // namespace orbel
