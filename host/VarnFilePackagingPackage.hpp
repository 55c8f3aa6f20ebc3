#ifndef VARN_HOST_VARNFILEPACKAGINGPACKAGE_HPP
#define VARN_HOST_VARNFILEPACKAGINGPACKAGE_HPP

#include <string>

#include <orbel/PackageInfo.hpp>

namespace Varn {

// The package "Varn": what host scripts see of the library.
class VarnFilePackagingPackage final : public orbel::PackageInfo {
 public:
  std::string getName() const override;
  void registerClasses(orbel::ClassRegistrar& registrar) override;

 private:
  // The host's, from the time it asks for the classes.
  orbel::ClassRegistrar* registrar_ = nullptr;
};

}  // namespace Varn

#endif
