#ifndef ORBEL_OBJECTSYSTEM_HPP
#define ORBEL_OBJECTSYSTEM_HPP

#include <map>
#include <memory>
#include <string>
#include <vector>

#include <orbel/Client.hpp>
#include <orbel/Export.hpp>
#include <orbel/Name.hpp>
#include <orbel/PackageInfo.hpp>
#include <orbel/PackageInterface.hpp>

namespace orbel {

// The packages of the process. There is one object system, which lives until the process ends.
//
// Several threads may look packages and classes up at once, also for the first time. Packages are
// added, modules loaded and closed, and packages released for a client while no other thread uses
// the object system: usually before the threads begin.
//
// It has one package of its own: "orbel.mixin" with the class "Heterogeneous", the superclass of
// classes whose object arrays may hold objects of different subclasses.
class ORBEL_EXPORT ObjectSystem {
 public:
  static ObjectSystem& instance();
  ObjectSystem(const ObjectSystem&) = delete;
  ObjectSystem& operator=(const ObjectSystem&) = delete;

  // Takes ownership. Defines nothing. Throws "PackageExists" for a name that is taken.
  void addPackage(std::unique_ptr<PackageInfo> info);

  // The package, released or not; null when there is none.
  std::shared_ptr<PackageInterface> findPackage(const Name& name) const;

  // The names of all packages, in the order in which they were added.
  const std::vector<std::string>& packageNames() const { return order_; }

  // The class of a qualified name in any package, defined; null when there is none.
  const ClassInfo* findClass(const std::string& qualifiedName) const;
  // Whether there is such a class. Defines nothing.
  bool hasClass(const std::string& qualifiedName) const;

  // The class of an object by the name that the object gives; null when there is no such class.
  // Throws "ClassMismatch" when the object's C++ type is not the class's, and "LibraryObjectHidden"
  // when the class keeps library objects from scripts and the object is none that a script made.
  const ClassInfo* classOf(const HandleBase& object, bool madeByScript) const;

  // The client of host scripts.
  Client& publicClient() { return publicClient_; }

 private:
  ObjectSystem();
  ~ObjectSystem() = default;

  std::map<Name, std::shared_ptr<PackageInterface>> packages_;
  std::vector<std::string> order_;
  Client publicClient_;
};

}  // namespace orbel

#endif
