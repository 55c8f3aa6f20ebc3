#ifndef ORBEL_CLASSREGISTRAR_HPP
#define ORBEL_CLASSREGISTRAR_HPP

#include <memory>

#include <orbel/ClassInfo.hpp>
#include <orbel/Export.hpp>

namespace orbel {

// Takes the classes of one package.
class ORBEL_EXPORT ClassRegistrar {
 public:
  virtual ~ClassRegistrar() = default;

  // Throws "ClassExists" for a name that the package has already; the class is then released. After
  // PackageInfo::registerClasses() has returned, only while no other thread uses the package.
  virtual void addClass(std::unique_ptr<ClassInfo> info) = 0;
};

}  // namespace orbel

#endif
