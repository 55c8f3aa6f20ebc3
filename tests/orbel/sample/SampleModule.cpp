#include <orbel/FunctionTable.hpp>
#include <orbel/ObjectSystem.hpp>

#include "Sample.hpp"

namespace {

orbel::Value living(orbel::Arguments /*arguments*/) {
  return orbel::Value(static_cast<std::uint32_t>(sample::Item::alive));
}

orbel::Value echo(orbel::Arguments arguments) { return arguments[0]; }

}  // namespace

// NOLINTBEGIN(readability-identifier-naming): the host looks these names up
extern "C" {
ORBEL_EXPORT extern const char* const orbel_sample_version;
ORBEL_EXPORT extern const char* const orbel_sample_build_date;
ORBEL_EXPORT extern const char* const orbel_sample_relative_path;
const char* const orbel_sample_version = "1.2.3.4";
const char* const orbel_sample_build_date = "Jan 02 2003";
const char* const orbel_sample_relative_path = "bin/orbel_sample.so";

ORBEL_EXPORT void OrbelInitialize_orbel_sample() {
  orbel::ObjectSystem::instance().addPackage(std::make_unique<sample::Package>());
}

ORBEL_EXPORT void OrbelTerminate_orbel_sample() {
  orbel::ObjectSystem& system = orbel::ObjectSystem::instance();
  system.findPackage(orbel::Name("Sample"))->releaseForClient(system.publicClient());
}

ORBEL_EXPORT const orbel::FunctionTable* QueryOrbelFcnTable_orbel_sample() {
  static const orbel::FunctionEntry entries[] = {
      {"living", living}, {"echo", echo}, {nullptr, nullptr}};
  static const orbel::FunctionTable table{entries};
  return &table;
}

// A box that the library keeps, for clients that hold objects in C++.
ORBEL_EXPORT orbel::HandleBase* makeLibraryBox() { return new sample::Box("kept by the library"); }
ORBEL_EXPORT void deleteLibraryBox(orbel::HandleBase* box) { delete box; }
}
// NOLINTEND(readability-identifier-naming)
