#ifndef ORBEL_HANDLE_HPP
#define ORBEL_HANDLE_HPP

#include <utility>

#include <boost/smart_ptr/intrusive_ptr.hpp>
#include <boost/smart_ptr/intrusive_ref_counter.hpp>

#include <orbel/Export.hpp>
#include <orbel/HandleBase.hpp>

namespace orbel {

class ClassInfo;

// Shared by all handles to one object: the address of the object until it is destroyed. It is made
// when the object is first shown to a script and destroyed with the last handle.
class ORBEL_EXPORT ObjectIdentity
    : public boost::intrusive_ref_counter<ObjectIdentity, boost::thread_unsafe_counter> {
 public:
  // The identity of `object`, made now if it has none yet.
  static boost::intrusive_ptr<ObjectIdentity> of(HandleBase& object);

  // An identity for an object to come, so that showing that object does not allocate any more.
  static boost::intrusive_ptr<ObjectIdentity> reserve();
  // Makes this the identity of `object`, unless the object has one.
  void offerTo(HandleBase& object);

  ObjectIdentity(const ObjectIdentity&) = delete;
  ObjectIdentity& operator=(const ObjectIdentity&) = delete;
  virtual ~ObjectIdentity();

  // Null once the object is destroyed.
  HandleBase* object() const { return object_; }

  // The class of the living object, looked up by the name that the object gives; null before
  // HandleBase::getFullyQualifiedKoboTypeName() names a class that the object system knows. The
  // first successful look-up is kept.
  const ClassInfo* classInfo() const { return class_ != nullptr ? class_ : resolveClass(); }

  // Whether a script made the object, which is then destroyed with its last handle at the latest.
  virtual bool ownsObject() const { return false; }

  // Destroys the object if it is owned here and was not destroyed before.
  virtual void destroyObject() noexcept {}

 protected:
  ObjectIdentity() = default;
  void attach(HandleBase& object);

 private:
  friend class HandleBase;

  const ClassInfo* resolveClass() const;

  HandleBase* object_ = nullptr;
  mutable const ClassInfo* class_ = nullptr;
};

// A host handle: refers to an object without owning it, unless the object was made by a script.
// Copies are cheap and equal. Handles are used by one thread at a time.
class Handle {
 public:
  explicit Handle(boost::intrusive_ptr<ObjectIdentity> identity) : identity_(std::move(identity)) {}

  // Null once the object is destroyed.
  HandleBase* object() const { return identity_->object(); }
  bool isValid() const { return object() != nullptr; }
  ObjectIdentity& identity() const { return *identity_; }

  friend bool operator==(const Handle& left, const Handle& right) {
    return left.identity_ == right.identity_;
  }
  friend bool operator!=(const Handle& left, const Handle& right) { return !(left == right); }

 private:
  boost::intrusive_ptr<ObjectIdentity> identity_;
};

}  // namespace orbel

#endif
