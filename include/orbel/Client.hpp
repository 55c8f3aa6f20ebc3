#ifndef ORBEL_CLIENT_HPP
#define ORBEL_CLIENT_HPP

#include <memory>
#include <set>
#include <string>

#include <orbel/Arguments.hpp>
#include <orbel/ClassInfo.hpp>
#include <orbel/Export.hpp>
#include <orbel/Name.hpp>
#include <orbel/PackageInterface.hpp>

namespace orbel {

// A user of the object system's packages, with its own view of which of them are in service.
// Several threads may use one client at once.
class ORBEL_EXPORT Client {
 public:
  Client() = default;
  Client(const Client&) = delete;
  Client& operator=(const Client&) = delete;
  ~Client() = default;

  // Null when there is no such package, or it was released for this client.
  std::shared_ptr<PackageInterface> findPackage(const Name& name) const;
  // The same, but throws "UnknownPackage".
  std::shared_ptr<PackageInterface> getPackage(const Name& name) const;

  // The class of a qualified name, defined. Throws "UnknownPackage" or "UnknownClass".
  const ClassInfo& getClass(const std::string& qualifiedName) const;

  // A handle to a new object, destroyed with its last handle. Throws "UnknownClass" when the
  // class's package was released for this client, "AbstractClass", "NoConstructor", or what the
  // constructor throws.
  Value construct(const ClassInfo& info, Arguments arguments) const;

 private:
  friend class PackageInterface;

  // Packages are never destroyed.
  std::set<const PackageInterface*> released_;
};

// Destroys the object that `value` refers to, now; every handle to it becomes invalid. Throws
// "WrongObjectClass" for a value that is not a handle, "InvalidHandle" for a destroyed object, and
// "NotOwnedByScript" for an object that no script made.
ORBEL_EXPORT void destroyObject(const Value& value);

}  // namespace orbel

#endif
