#ifndef ORBEL_PACKAGEINFO_HPP
#define ORBEL_PACKAGEINFO_HPP

#include <string>

#include <orbel/ClassRegistrar.hpp>
#include <orbel/Export.hpp>
#include <orbel/HostMemory.hpp>

namespace orbel {

// A package of classes, made by a module and owned by the host after ObjectSystem::addPackage.
//
// The order of the virtual operations is part of the contract with modules.
class ORBEL_EXPORT PackageInfo : public HostMemory {
 public:
  virtual ~PackageInfo();
  PackageInfo(const PackageInfo&) = delete;
  PackageInfo& operator=(const PackageInfo&) = delete;

  virtual std::string getName() const = 0;

  // Empty by default.
  virtual std::string getDescription() const;

  // Adds the classes to `registrar`, which is never destroyed. The host asks once, at the
  // latest when a script first uses one of the classes. If it throws, the classes added so far
  // stay.
  virtual void registerClasses(ClassRegistrar& registrar) = 0;

 protected:
  PackageInfo() = default;
};

}  // namespace orbel

#endif
