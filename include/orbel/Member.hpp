#ifndef ORBEL_MEMBER_HPP
#define ORBEL_MEMBER_HPP

#include <cstddef>
#include <string>

#include <orbel/Export.hpp>
#include <orbel/HandleBase.hpp>
#include <orbel/Value.hpp>

namespace orbel {

class ClassInfo;

// A named declaration of a class: method, property or constructor. Owned by its class.
class ORBEL_EXPORT Member {
 public:
  Member(const ClassInfo& owner, std::string name);
  Member(const Member&) = delete;
  Member& operator=(const Member&) = delete;
  virtual ~Member() = default;

  const ClassInfo& owner() const { return *owner_; }
  const std::string& name() const { return name_; }
  // "Package.Class.member".
  const std::string& qualifiedName() const { return qualifiedName_; }

  // The object that `value` refers to, which is of the owning class or derived from it. Throws
  // "WrongObjectClass" for any other value and "InvalidHandle" for a destroyed object.
  HandleBase& objectIn(const Value& value) const;

 private:
  const ClassInfo* owner_;
  std::string name_;
  std::string qualifiedName_;
};

// One value that is passed to a call, with the context that an error names.
class ORBEL_EXPORT IncomingValue {
 public:
  // `position` counts the arguments from 1, the object itself not included; 0 is the value that a
  // property is set to. `expected` is the type word. Everything is kept by reference.
  IncomingValue(const Value& value, const Member& member, std::size_t position,
                const std::string& expected)
      : value_(value), member_(member), position_(position), expected_(expected) {}

  const Value& value() const { return value_; }
  const Member& member() const { return member_; }
  const std::string& expected() const { return expected_; }

  // Throws "WrongArgumentClass" or "WrongPropertyClass".
  [[noreturn]] void refuse() const;

 private:
  const Value& value_;
  const Member& member_;
  std::size_t position_;
  const std::string& expected_;
};

}  // namespace orbel

#endif
