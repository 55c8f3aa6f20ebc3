#ifndef ORBEL_VALUE_HPP
#define ORBEL_VALUE_HPP

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <variant>

#include <orbel/CellArray.hpp>
#include <orbel/CharacterArray.hpp>
#include <orbel/Export.hpp>
#include <orbel/Handle.hpp>
#include <orbel/ObjectArray.hpp>
#include <orbel/StringArray.hpp>

namespace orbel {

// No value: an omitted argument, or the result of a method without one.
struct Missing {
  friend bool operator==(Missing, Missing) { return true; }
};

// A value that passes between a script and an object. A value owns its content; a handle in it does
// not own the object that it refers to, unless a script made that object.
class ORBEL_EXPORT Value {
 public:
  using Content = std::variant<Missing, bool, std::uint32_t, double, CharacterArray, CellArray,
                               StringArray, Handle, ObjectArray>;

  Value() = default;
  explicit Value(bool logical) : content_(logical) {}
  explicit Value(std::uint32_t number) : content_(number) {}
  explicit Value(double number) : content_(number) {}
  explicit Value(CharacterArray characters) : content_(std::move(characters)) {}
  explicit Value(CellArray cells) : content_(std::move(cells)) {}
  explicit Value(StringArray strings) : content_(std::move(strings)) {}
  explicit Value(Handle handle) : content_(std::move(handle)) {}
  explicit Value(ObjectArray objects) : content_(std::move(objects)) {}
  // Anything else, such as a pointer, would silently turn into a logical.
  template <class Other>
  explicit Value(Other) = delete;

  // The content when it is of the class `Kind`, else null. Valid until the value changes.
  template <class Kind>
  const Kind* get() const {
    return std::get_if<Kind>(&content_);
  }
  bool isMissing() const { return get<Missing>() != nullptr; }
  const Content& content() const { return content_; }

  // "missing", "logical", "uint32", "double", "char", "cell", "string", or the qualified class name
  // of the object or objects; a destroyed object has the class "invalid object".
  std::string className() const;

  // The number of elements: 1 for a single number, logical or object, 0 for a missing value.
  std::size_t size() const;

  friend bool operator==(const Value& left, const Value& right) {
    return left.content_ == right.content_;
  }
  friend bool operator!=(const Value& left, const Value& right) { return !(left == right); }

 private:
  Content content_;
};

}  // namespace orbel

#endif
