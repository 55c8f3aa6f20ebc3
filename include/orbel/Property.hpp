#ifndef ORBEL_PROPERTY_HPP
#define ORBEL_PROPERTY_HPP

#include <string>

#include <orbel/Export.hpp>
#include <orbel/Member.hpp>

namespace orbel {

// A property as scripts read and set it. Callers look a property up once and keep it.
class ORBEL_EXPORT Property : public Member {
 public:
  Property(const ClassInfo& owner, std::string name, std::string type, bool isWritable);

  // The type word of the value; for a list of objects the declared class of its elements.
  const std::string& type() const { return type_; }
  bool isWritable() const { return isWritable_; }

  // Throws "WrongObjectClass" or "InvalidHandle" for an unfit `object`.
  Value get(const Value& object) const;

  // Converts `value`, then sets the property between the object's two property hooks. Throws, with
  // nothing changed, "PropertyReadOnly", an error about `object` as get() does, or an error about
  // `value` ("WrongPropertyClass", "MustBeCellArray", "MustBeString").
  void set(const Value& object, const Value& value) const;

 private:
  virtual Value read(HandleBase& object) const = 0;
  virtual void assign(HandleBase& object, const Value& value) const = 0;

  std::string type_;
  bool isWritable_;
};

}  // namespace orbel

#endif
