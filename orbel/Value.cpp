#include "orbel/Value.hpp"

#include <type_traits>

#include <orbel/Text.hpp>

namespace orbel {
namespace {

template <class... Cases>
struct Overloaded : Cases... {
  using Cases::operator()...;
};
template <class... Cases>
Overloaded(Cases...) -> Overloaded<Cases...>;

}  // namespace

std::string CharacterArray::toText() const {
  const auto* narrow = text();
  return narrow ? *narrow : toUtf8(std::get<std::u16string>(text_));
}

std::u16string CharacterArray::toText16() const {
  const auto* narrow = text();
  return narrow ? toUtf16(*narrow) : std::get<std::u16string>(text_);
}

std::size_t CharacterArray::size() const {
  return std::visit([](const auto& text) { return text.size(); }, text_);
}

bool operator==(const CharacterArray& left, const CharacterArray& right) {
  return left.text_ == right.text_ || left.toText() == right.toText();
}

CellArray::CellArray(std::vector<Value> elements) : elements_(std::move(elements)) {}

CellArray::CellArray(const std::vector<std::string>& texts) {
  elements_.reserve(texts.size());
  for (const std::string& text : texts) elements_.emplace_back(CharacterArray(text));
}

bool operator==(const CellArray& left, const CellArray& right) {
  return left.elements_ == right.elements_;
}

std::string Value::className() const {
  return std::visit(
      Overloaded{
          [](Missing) -> std::string { return "missing"; },
          [](bool) -> std::string { return "logical"; },
          [](std::uint32_t) -> std::string { return "uint32"; },
          [](double) -> std::string { return "double"; },
          [](const CharacterArray&) -> std::string { return "char"; },
          [](const CellArray&) -> std::string { return "cell"; },
          [](const StringArray&) -> std::string { return "string"; },
          [](const Handle& handle) -> std::string {
            return handle.isValid() ? handle.object()->getFullyQualifiedKoboTypeName()
                                    : "invalid object";
          },
          [](const ObjectArray& objects) -> std::string { return objects.className(); },
      },
      content_);
}

std::size_t Value::size() const {
  return std::visit(Overloaded{
                        [](Missing) -> std::size_t { return 0; },
                        [](const CharacterArray& characters) { return characters.size(); },
                        [](const CellArray& cells) { return cells.elements().size(); },
                        [](const StringArray& strings) { return strings.elements().size(); },
                        [](const ObjectArray& objects) { return objects.elements().size(); },
                        [](const auto& /*scalar*/) -> std::size_t { return 1; },
                    },
                    content_);
}

}  // namespace orbel
