#ifndef ORBEL_HANDLEBASE_HPP
#define ORBEL_HANDLEBASE_HPP

#include <cstddef>
#include <string>

#include <orbel/Export.hpp>

namespace orbel {

class ObjectIdentity;
class Value;

// Base of every object that host scripts can hold. A script never owns the object through it: it
// holds a host handle, which refers to the object and becomes invalid when the object is destroyed.
//
// An object that was never shown to a script carries one null pointer and nothing else.
//
// The order of the virtual operations is part of the contract with the host.
class ORBEL_EXPORT HandleBase {
 public:
  // Makes every handle to this object invalid.
  virtual ~HandleBase();

  // The class name that scripts see, qualified with its package: "Package.Class".
  virtual std::string getFullyQualifiedKoboTypeName() const = 0;

  // A host handle to this object; equal for equal objects.
  virtual Value toHostValue();

  // Called by the host around a script's assignment to a property. `valueSize` is the number of
  // elements of `value`. The defaults do nothing.
  virtual void prePropertySet(const std::string& property, const Value& value,
                              std::size_t valueSize);
  virtual void postPropertySet(const std::string& property, const Value& value,
                               std::size_t valueSize);

  // Whether the host stores the object together with the model it belongs to. False by default.
  virtual bool isSavedWithModel() const;

  // Called by the host around operations during which the object must not change. The defaults do
  // nothing: an object is used by one thread at a time.
  virtual void lock();
  virtual void unlock();

  // The object that `value` refers to, or null when `value` is no valid handle to an object of the
  // class `qualifiedClassName` or of a class derived from it. Nothing is transferred.
  static HandleBase* fromHostValue(const Value& value, const std::string& qualifiedClassName);

 protected:
  HandleBase() = default;
  // A copy is another object: no handle to the source refers to it.
  HandleBase(const HandleBase& /*source*/) : HandleBase() {}
  HandleBase& operator=(const HandleBase&) = delete;

 private:
  friend class ObjectIdentity;

  ObjectIdentity* identity_ = nullptr;
};

}  // namespace orbel

#endif
