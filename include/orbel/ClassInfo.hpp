#ifndef ORBEL_CLASSINFO_HPP
#define ORBEL_CLASSINFO_HPP

#include <algorithm>
#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include <orbel/Constructor.hpp>
#include <orbel/Export.hpp>
#include <orbel/HostMemory.hpp>
#include <orbel/Method.hpp>
#include <orbel/Property.hpp>

namespace orbel {

class PackageInterface;

// The definition of a host class. A module makes one for each class and passes ownership with
// ClassRegistrar::addClass; the host never destroys it. Modules derive from HandleClass,
// which binds a C++ class.
//
// Several threads may use a class at once, also for the first time: one of them defines it while
// the others wait. A class that is defined never changes.
//
// The order of the virtual operations is part of the contract with modules.
class ORBEL_EXPORT ClassInfo : public HostMemory {
 public:
  virtual ~ClassInfo();
  ClassInfo(const ClassInfo&) = delete;
  ClassInfo& operator=(const ClassInfo&) = delete;

  // The simple name, without the package.
  virtual const std::string& getName() const = 0;
  virtual const std::string& getDescription() const = 0;

  // Called once, when the class is added to `package`: qualifies the name. An override forwards to
  // its base.
  virtual void joinPackage(const PackageInterface& package);

  // Declares superclasses, properties, methods and constructor. The host calls it when the class is
  // first needed and never again after it succeeded; when it throws, the declarations are dropped
  // and the class stays undefined. No other class is defined meanwhile, but for those that this one
  // needs: a definition must not wait for another thread.
  virtual void define() = 0;

  // Whether only subclasses have objects. False by default.
  virtual bool isAbstract() const;

  // Called for each object that a script makes, before the script gets it. Does nothing by default.
  virtual void updateInstance(HandleBase& object) const;

  // Whether scripts may hold objects of this class that the library made and keeps, besides those
  // that scripts made. False by default.
  virtual bool exposesLibraryObjects() const;

  // Whether the C++ type of `object` is the one that the members of this class are bound to. True
  // by default.
  virtual bool describes(const HandleBase& object) const;

  // The operations below require a class that was found through a package or a client, which
  // defines it.

  struct Superclass {
    const ClassInfo* info;
    bool isOfThisPackage;
  };

  // "Package.Class".
  const std::string& qualifiedName() const { return qualifiedName_; }
  const PackageInterface& package() const { return *package_; }
  // In the order of their declaration, as all lists here; inherited members are not included.
  const std::vector<Superclass>& superclasses() const { return superclasses_; }
  const std::vector<std::unique_ptr<const Method>>& methods() const { return methods_; }
  const std::vector<std::unique_ptr<const Property>>& properties() const { return properties_; }
  // Null when scripts cannot make objects of this class.
  const Constructor* constructor() const { return constructor_.get(); }

  // The method or property, inherited ones included; null when there is none.
  const Method* findMethod(const std::string& name) const;
  const Property* findProperty(const std::string& name) const;
  // The same, but throw "UnknownMethod" or "UnknownProperty".
  const Method& getMethod(const std::string& name) const;
  const Property& getProperty(const std::string& name) const;

  // Whether this class is `other` or derives from it.
  bool derivesFrom(const ClassInfo& other) const {
    return std::find(lineage_.begin(), lineage_.end(), &other) != lineage_.end();
  }
  bool derivesFrom(const std::string& qualifiedName) const;

  // Whether describes() holds for this class and everything it derives from.
  bool lineageDescribes(const HandleBase& object) const;

 protected:
  ClassInfo() = default;

  // For define(). Each throws "MemberExists" for a name declared before in this class.

  // `isOfThisPackage`: the superclass is looked up in this class's own package only. An unknown
  // superclass throws "UnknownClass" once the declarations are complete.
  void addSuperclass(const std::string& qualifiedName, bool isOfThisPackage);
  void addMember(std::unique_ptr<const Method> method);
  void addMember(std::unique_ptr<const Property> property);
  void addMember(std::unique_ptr<const Constructor> constructor);

 private:
  friend class PackageInterface;

  enum class State { undefined, inDefinition, defined };
  struct DeclaredSuperclass {
    std::string qualifiedName;
    bool isOfThisPackage;
  };

  void ensureDefined();
  void resolveSuperclasses();
  void checkClassWords() const;
  void dropDeclarations();
  void refuseRepeatedName(const std::string& name) const;

  std::string qualifiedName_;
  const PackageInterface* package_ = nullptr;
  std::atomic<State> state_ = State::undefined;
  std::vector<DeclaredSuperclass> declaredSuperclasses_;
  std::vector<Superclass> superclasses_;
  std::vector<std::unique_ptr<const Method>> methods_;
  std::vector<std::unique_ptr<const Property>> properties_;
  std::unique_ptr<const Constructor> constructor_;
  std::vector<const ClassInfo*> lineage_;
};

}  // namespace orbel

#endif
