#ifndef ORBEL_CONVERSION_HPP
#define ORBEL_CONVERSION_HPP

#include <cstdint>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <orbel/Export.hpp>
#include <orbel/HandleBase.hpp>
#include <orbel/Member.hpp>
#include <orbel/Signature.hpp>
#include <orbel/Value.hpp>

namespace orbel {

// Conversions between C++ types and script values. A type without a specialisation here cannot be
// bound.
//
// Argument<A> holds the converted value for the length of a call; its constructor throws the host's
// error for a value that does not fit. Result<R> makes the host value of what a call returned.
// `kind` is the type that a declared signature must show.
template <class A>
class Argument;
template <class R>
struct Result;

// Text made from 8-bit text is not copied.
template <>
class ORBEL_EXPORT Argument<std::string> {
 public:
  static constexpr TypeKind kind = TypeKind::text;
  explicit Argument(const IncomingValue& incoming);
  Argument(const Argument&) = delete;
  Argument& operator=(const Argument&) = delete;
  ~Argument() = default;
  const std::string& get() const { return *text_; }

 private:
  std::string converted_;
  const std::string* text_;
};

template <>
class ORBEL_EXPORT Argument<std::u16string> {
 public:
  static constexpr TypeKind kind = TypeKind::text;
  explicit Argument(const IncomingValue& incoming);
  const std::u16string& get() const { return text_; }

 private:
  std::u16string text_;
};

template <>
class Argument<bool> {
 public:
  static constexpr TypeKind kind = TypeKind::logical;
  explicit Argument(const IncomingValue& incoming) : logical_(incoming.value().get<bool>()) {
    if (logical_ == nullptr) incoming.refuse();
  }
  bool get() const { return *logical_; }

 private:
  const bool* logical_;
};

// A double that is a whole number in range is taken too.
template <>
class ORBEL_EXPORT Argument<std::uint32_t> {
 public:
  static constexpr TypeKind kind = TypeKind::uint32;
  explicit Argument(const IncomingValue& incoming);
  std::uint32_t get() const { return number_; }

 private:
  std::uint32_t number_;
};

// A missing value or an empty cell array gives an empty list, a string array its elements. Any
// other value must be a cell array ("MustBeCellArray") of character arrays ("MustBeString", with
// the number of the offending element, counted from 1).
template <>
class ORBEL_EXPORT Argument<std::vector<std::string>> {
 public:
  static constexpr TypeKind kind = TypeKind::stringList;
  explicit Argument(const IncomingValue& incoming);
  const std::vector<std::string>& get() const { return list_; }

 private:
  std::vector<std::string> list_;
};

// The object that the value refers to when its class is the expected one, else the error.
ORBEL_EXPORT HandleBase& objectArgument(const IncomingValue& incoming);

template <class T>
class Argument<T&> {
  static_assert(std::is_base_of_v<HandleBase, T>,
                "only objects of handle classes pass by reference");

 public:
  static constexpr TypeKind kind = TypeKind::object;
  explicit Argument(const IncomingValue& incoming)
      : object_(dynamic_cast<T*>(&objectArgument(incoming))) {
    if (object_ == nullptr) incoming.refuse();
  }
  T& get() const { return *object_; }

 private:
  T* object_;
};

// Which Argument a parameter of the type P takes.
template <class P>
using ArgumentFor = Argument<
    std::conditional_t<std::is_base_of_v<HandleBase, std::decay_t<P>>, P, std::decay_t<P>>>;

template <>
struct Result<void> {
  static constexpr TypeKind kind = TypeKind::nothing;
};

template <>
struct Result<std::string> {
  static constexpr TypeKind kind = TypeKind::text;
  static Value toValue(std::string text, const std::string& /*word*/) {
    return Value(CharacterArray(std::move(text)));
  }
};

template <>
struct Result<std::u16string> {
  static constexpr TypeKind kind = TypeKind::text;
  static Value toValue(std::u16string text, const std::string& /*word*/) {
    return Value(CharacterArray(std::move(text)));
  }
};

template <>
struct Result<bool> {
  static constexpr TypeKind kind = TypeKind::logical;
  static Value toValue(bool logical, const std::string& /*word*/) { return Value(logical); }
};

template <>
struct Result<std::uint32_t> {
  static constexpr TypeKind kind = TypeKind::uint32;
  static Value toValue(std::uint32_t number, const std::string& /*word*/) { return Value(number); }
};

template <>
struct Result<std::vector<std::string>> {
  static constexpr TypeKind kind = TypeKind::stringList;
  static Value toValue(const std::vector<std::string>& list, const std::string& /*word*/) {
    return Value(CellArray(list));
  }
};

// A handle to `object`, or the empty result of the class `className` when there is none.
ORBEL_EXPORT Value toObjectResult(HandleBase* object, const std::string& className);

template <class T>
struct Result<T*> {
  static constexpr TypeKind kind = TypeKind::object;
  static Value toValue(T* object, const std::string& className) {
    return toObjectResult(object, className);
  }
};

template <class T>
struct Result<T&> {
  static constexpr TypeKind kind = TypeKind::object;
  static Value toValue(T& object, const std::string& className) {
    return toObjectResult(&object, className);
  }
};

// A 1-by-N array of the declared class `className`, marked heterogeneous when that class is.
// Null elements are left out.
ORBEL_EXPORT Value toObjectArray(const std::vector<HandleBase*>& objects,
                                 const std::string& className);

template <class T>
struct Result<std::vector<T*>> {
  static constexpr TypeKind kind = TypeKind::object;
  static Value toValue(const std::vector<T*>& objects, const std::string& className) {
    return toObjectArray({objects.begin(), objects.end()}, className);
  }
};

// Which Result a call that returns an R makes.
template <class R>
using ResultFor =
    Result<std::conditional_t<std::is_base_of_v<HandleBase, std::decay_t<R>>, R, std::decay_t<R>>>;

}  // namespace orbel

#endif
