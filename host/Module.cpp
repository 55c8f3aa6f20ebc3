#include <memory>

#include <orbel/FunctionTable.hpp>
#include <orbel/ObjectSystem.hpp>
#include <varn/Export.hpp>

#include "host/VarnFilePackagingPackage.hpp"

// The exports that the host expects of the module `varn_filepackaging`.
extern "C" {

VARN_EXPORT extern const char* const varn_filepackaging_version;
VARN_EXPORT extern const char* const varn_filepackaging_build_date;
VARN_EXPORT extern const char* const varn_filepackaging_relative_path;

// Four decimal fields: major, minor, patch and build.
const char* const varn_filepackaging_version = VARN_VERSION;
// The compiler takes SOURCE_DATE_EPOCH (reproducible-builds.org) for the date, where it is set.
const char* const varn_filepackaging_build_date = __DATE__;
// From the root of the host's installation.
const char* const varn_filepackaging_relative_path =
    "bin\\win64\\varn_filepackaging" VARN_MODULE_SUFFIX;

// Adds the package "Varn" to the host, at the first call.
VARN_EXPORT void OrbelInitialize_varn_filepackaging() {
  static bool initialised = false;
  if (initialised) return;
  initialised = true;
  orbel::ObjectSystem::instance().addPackage(std::make_unique<Varn::VarnFilePackagingPackage>());
}

// Withdraws the package from the host's scripts, at the first call.
VARN_EXPORT void OrbelTerminate_varn_filepackaging() {
  static bool terminated = false;
  if (terminated) return;
  terminated = true;
  orbel::ObjectSystem& host = orbel::ObjectSystem::instance();
  if (const auto package = host.findPackage(orbel::Name("Varn"))) {
    package->releaseForClient(host.publicClient());
  }
}

// The library offers its classes only: no free-standing functions.
VARN_EXPORT const orbel::FunctionTable* QueryOrbelFcnTable_varn_filepackaging() {
  static const orbel::FunctionEntry entries[] = {{nullptr, nullptr}};
  static const orbel::FunctionTable table = {entries};
  return &table;
}

}  // extern "C"
