#ifndef ORBEL_BINDING_HPP
#define ORBEL_BINDING_HPP

#include <cstddef>
#include <functional>
#include <initializer_list>
#include <new>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <orbel/ClassInfo.hpp>
#include <orbel/Conversion.hpp>
#include <orbel/Export.hpp>
#include <orbel/Handle.hpp>

// Turns C++ callables into members that scripts use. Class definitions use HandleClass, which is
// built on this.
namespace orbel::binding {

// Result and arguments of a callable, without the object that it is called on.
template <class R, class... A>
struct Shape {};

template <class C, class R, class... A>
Shape<R, A...> memberShape(R (C::*)(A...));
template <class C, class R, class... A>
Shape<R, A...> memberShape(R (C::*)(A...) const);
template <class F, class R, class O, class... A>
Shape<R, A...> functionObjectShape(R (F::*)(O, A...) const);
template <class R, class O, class... A>
Shape<R, A...> functionShape(R (*)(O, A...));

template <class F>
auto shapeOf() {
  if constexpr (std::is_member_function_pointer_v<F>) {
    return decltype(memberShape(std::declval<F>())){};
  } else if constexpr (std::is_pointer_v<F>) {
    return decltype(functionShape(std::declval<F>())){};
  } else {
    return decltype(functionObjectShape(&F::operator())){};
  }
}

// Throw "SignatureMismatch" when the type words do not fit the C++ types, `arguments` being those
// of the callable without the object.
ORBEL_EXPORT void checkSignature(const Member& member, const Signature& signature, TypeKind result,
                                 std::initializer_list<TypeKind> arguments);
ORBEL_EXPORT void checkSignature(const Constructor& constructor,
                                 std::initializer_list<TypeKind> arguments);

// Calls its first argument with the others. They are converted in an initialiser list, so from left
// to right: the error is that of the leftmost argument that cannot be converted.
struct InOrder {
  template <class F, class... X>
  explicit InOrder(const F& function, const X&... arguments) {
    function(arguments...);
  }
};

// Whether a result of the type R is an object, by reference.
template <class R>
constexpr bool isObjectReference =
    std::is_lvalue_reference_v<R>&& std::is_base_of_v<HandleBase, std::decay_t<R>>;

struct NoGuard {
  template <class... X>
  void operator()(const X&... /*ignored*/) const {}
};

template <class T, class F, class Guard, class R, class... A>
class BoundMethod final : public Method {
 public:
  BoundMethod(const ClassInfo& owner, std::string name, Signature signature, F function,
              Guard guard)
      : Method(owner, std::move(name), std::move(signature)),
        function_(std::move(function)),
        guard_(std::move(guard)) {
    checkSignature(*this, this->signature(), ResultFor<R>::kind, {ArgumentFor<A>::kind...});
  }

 private:
  Value call(HandleBase& object, Arguments arguments) const override {
    return callWith(static_cast<T&>(object), arguments, std::index_sequence_for<A...>());
  }

  template <std::size_t... I>
  Value callWith(T& object, [[maybe_unused]] Arguments arguments,
                 std::index_sequence<I...> /*positions*/) const {
    Value result;
    const auto run = [&](const auto&... argument) {
      guard_(std::as_const(object), argument.get()...);
      if constexpr (std::is_void_v<R>) {
        std::invoke(function_, object, argument.get()...);
      } else if constexpr (isObjectReference<R>) {
        // The call may make the object: what its handle takes is allocated before.
        const auto identity = ObjectIdentity::reserve();
        R made = std::invoke(function_, object, argument.get()...);
        identity->offerTo(made);
        result = ResultFor<R>::toValue(made, signature().result());
      } else {
        result = ResultFor<R>::toValue(std::invoke(function_, object, argument.get()...),
                                       signature().result());
      }
    };
    InOrder{run, ArgumentFor<A>(IncomingValue(arguments[I + 1], *this, I + 1,
                                              signature().arguments()[I + 1]))...};
    return result;
  }

  F function_;
  Guard guard_;
};

template <class T, class F, class Guard, class R, class... A>
std::unique_ptr<const Method> makeMethod(const ClassInfo& owner, std::string name,
                                         Signature signature, F function, Guard guard,
                                         Shape<R, A...> /*shape*/) {
  return std::make_unique<BoundMethod<T, F, Guard, R, A...>>(
      owner, std::move(name), std::move(signature), std::move(function), std::move(guard));
}

struct NoSetter {};

template <class T, class Getter, class Setter, class R, class V>
class BoundProperty final : public Property {
 public:
  BoundProperty(const ClassInfo& owner, std::string name, std::string type, Getter getter,
                Setter setter)
      : Property(owner, std::move(name), std::move(type), !std::is_same_v<Setter, NoSetter>),
        getter_(std::move(getter)),
        setter_(std::move(setter)) {}

 private:
  Value read(HandleBase& object) const override {
    return ResultFor<R>::toValue(std::invoke(getter_, static_cast<T&>(object)), type());
  }

  void assign([[maybe_unused]] HandleBase& object,
              [[maybe_unused]] const Value& value) const override {
    if constexpr (!std::is_same_v<Setter, NoSetter>) {
      static_assert(ArgumentFor<V>::kind == ResultFor<R>::kind, "getter and setter differ in type");
      const ArgumentFor<V> converted(IncomingValue(value, *this, 0, type()));
      object.prePropertySet(name(), value, value.size());
      std::invoke(setter_, static_cast<T&>(object), converted.get());
      object.postPropertySet(name(), value, value.size());
    }
  }

  Getter getter_;
  Setter setter_;
};

template <class T, class Getter, class R>
std::unique_ptr<const Property> makeProperty(const ClassInfo& owner, std::string name,
                                             std::string type, Getter getter, Shape<R> /*shape*/) {
  return std::make_unique<BoundProperty<T, Getter, NoSetter, R, void>>(
      owner, std::move(name), std::move(type), std::move(getter), NoSetter());
}

template <class T, class Getter, class R, class Setter, class S, class V>
std::unique_ptr<const Property> makeProperty(const ClassInfo& owner, std::string name,
                                             Getter getter, Shape<R> /*shape*/, Setter setter,
                                             Shape<S, V> /*shape*/) {
  return std::make_unique<BoundProperty<T, Getter, Setter, R, V>>(
      owner, std::move(name), typeWord(ResultFor<R>::kind), std::move(getter), std::move(setter));
}

template <class R>
constexpr TypeKind resultKind(Shape<R> /*shape*/) {
  return ResultFor<R>::kind;
}

template <class T, class... A>
class BoundConstructor final : public Constructor {
 public:
  BoundConstructor(const ClassInfo& owner, std::vector<std::string> words)
      : Constructor(owner, std::move(words)) {
    checkSignature(*this, {ArgumentFor<A>::kind...});
  }

 private:
  HandleBase* make(ObjectStorage storage, Arguments arguments) const override {
    return makeWith(storage, arguments, std::index_sequence_for<A...>());
  }

  template <std::size_t... I>
  HandleBase* makeWith(ObjectStorage storage, [[maybe_unused]] Arguments arguments,
                       std::index_sequence<I...> /*positions*/) const {
    constexpr bool alignmentFits = alignof(T) <= alignof(std::max_align_t);
    HandleBase* object = nullptr;
    const auto run = [&](const auto&... argument) {
      if (alignmentFits && sizeof(T) <= storage.size) {
        object = ::new (storage.memory) T(argument.get()...);
      } else {
        object = new T(argument.get()...);
      }
    };
    InOrder{run, ArgumentFor<A>(IncomingValue(arguments[I], *this, I + 1, signature()[I]))...};
    return object;
  }
};

}  // namespace orbel::binding

#endif
