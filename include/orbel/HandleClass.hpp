#ifndef ORBEL_HANDLECLASS_HPP
#define ORBEL_HANDLECLASS_HPP

#include <initializer_list>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>

#include <orbel/Binding.hpp>
#include <orbel/ClassInfo.hpp>

namespace orbel {

// The definition of a host class whose objects are of the C++ type T, which derives from
// HandleBase.
//
//   class Counter final : public orbel::HandleClass<::Counter> {
//    public:
//     using HandleClass::HandleClass;
//     void define() override {
//       addSuperclass("orbel.mixin.Heterogeneous", false);
//       addProperty("Label", &::Counter::label, &::Counter::setLabel);
//       addMethod("add", {"uint32 scalar", "Sample.Counter", "uint32 scalar"}, &::Counter::add);
//       addConstructor<std::string>({"char"});
//     }
//   };
//
// Wherever a member function is bound, a function or a lambda that takes the object as its first
// parameter will do. Conversions follow from the C++ types (Conversion.hpp).
template <class T>
class HandleClass : public ClassInfo {
  static_assert(std::is_base_of_v<HandleBase, T>,
                "scripts hold objects that derive from HandleBase");

 public:
  HandleClass(std::string name, std::string description)
      : name_(std::move(name)), description_(std::move(description)) {}

  const std::string& getName() const override { return name_; }
  const std::string& getDescription() const override { return description_; }
  bool describes(const HandleBase& object) const override {
    return dynamic_cast<const T*>(&object) != nullptr;
  }

 protected:
  // A method with its signature in type words: the result, this class, then the arguments. Throws
  // "SignatureMismatch" when the words do not fit the C++ types. `guard`, if any, is called with
  // the object (const) and the converted arguments before `function` is; it refuses the call by
  // raising.
  template <class F, class Guard = binding::NoGuard>
  void addMethod(std::string name, Signature signature, F function, Guard guard = Guard()) {
    addMember(binding::makeMethod<T>(*this, std::move(name), std::move(signature),
                                     std::move(function), std::move(guard), binding::shapeOf<F>()));
  }

  // A property that scripts can only read.
  template <class Getter>
  void addProperty(std::string name, Getter getter) {
    const auto shape = binding::shapeOf<Getter>();
    addMember(binding::makeProperty<T>(*this, std::move(name), typeWord(binding::resultKind(shape)),
                                       std::move(getter), shape));
  }

  // A property that scripts can read and set.
  template <class Getter, class Setter>
  void addProperty(std::string name, Getter getter, Setter setter) {
    addMember(binding::makeProperty<T>(*this, std::move(name), std::move(getter),
                                       binding::shapeOf<Getter>(), std::move(setter),
                                       binding::shapeOf<Setter>()));
  }

  // A read-only property that is an object (reference or pointer) or a list of objects (vector of
  // pointers) of the class `className`.
  template <class Getter>
  void addObjectProperty(std::string name, std::string className, Getter getter) {
    const auto shape = binding::shapeOf<Getter>();
    static_assert(binding::resultKind(decltype(shape)()) == TypeKind::object);
    addMember(binding::makeProperty<T>(*this, std::move(name), std::move(className),
                                       std::move(getter), shape));
  }

  // The constructor T(A...), with the type words of its arguments.
  template <class... A>
  void addConstructor(std::vector<std::string> words) {
    addMember(std::make_unique<const binding::BoundConstructor<T, A...>>(*this, std::move(words)));
  }

 private:
  std::string name_;
  std::string description_;
};

// Picks the overload of a member function that changes the object.
template <class C, class R, class... A>
constexpr auto nonConst(R (C::*member)(A...)) {
  return member;
}

}  // namespace orbel

#endif
