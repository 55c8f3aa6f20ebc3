#include "host/VarnFilePackagingPackage.hpp"

#include <memory>
#include <utility>

#include "host/mi/FileSection.hpp"
#include "host/mi/FunctionsSection.hpp"
#include "host/mi/IncludesSection.hpp"
#include "host/mi/VarnDataTypesFile.hpp"
#include "host/mi/VarnFile.hpp"
#include "host/mi/VarnFileRepository.hpp"
#include "host/mi/VarnGenericFile.hpp"
#include "host/mi/VarnModuleFile.hpp"

namespace Varn {

std::string VarnFilePackagingPackage::getName() const { return "Varn"; }

void VarnFilePackagingPackage::registerClasses(orbel::ClassRegistrar& registrar) {
  registrar_ = &registrar;
  const auto add = [this](std::unique_ptr<orbel::ClassInfo> info) {
    registrar_->addClass(std::move(info));
  };
  add(std::make_unique<mi::FileSection>("FileSection", "Base file section"));
  add(std::make_unique<mi::FunctionsSection>("FunctionsSection", "FunctionsSection"));
  add(std::make_unique<mi::IncludesSection>("IncludesSection", "Includes section"));
  add(std::make_unique<mi::VarnFile>("VarnFile", "Basic File Object"));
  add(std::make_unique<mi::VarnModuleFile>("VarnModuleFile", "File section object"));
  add(std::make_unique<mi::VarnDataTypesFile>("VarnDataTypesFile", "Data types file object"));
  add(std::make_unique<mi::VarnGenericFile>("VarnGenericFile", "Generic file object"));
  add(std::make_unique<mi::VarnFileRepository>("VarnFileRepository", "File Repository Object"));
}

}  // namespace Varn
