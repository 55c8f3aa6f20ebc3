// The classes that host scripts see.

#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <orbel/Module.hpp>
#include <orbel/ObjectSystem.hpp>

namespace {

using orbel::ClassInfo;

// One module for the whole program: a module starts at most once in a process.
std::shared_ptr<orbel::Module>& module() {
  static auto loaded = orbel::Module::load("varn_filepackaging");
  return loaded;
}

orbel::PackageInterface& package() {
  module();
  return *orbel::ObjectSystem::instance().publicClient().getPackage(orbel::Name("Varn"));
}

std::string join(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : ", ") + word;
  return text;
}

std::string describe(const ClassInfo& info) {
  std::string text = info.qualifiedName() + " \"" + info.getDescription() + "\"";
  for (const auto& superclass : info.superclasses()) {
    text +=
        " : " + superclass.info->qualifiedName() + (superclass.isOfThisPackage ? "" : " (host)");
  }
  if (info.isAbstract()) text += " abstract";
  if (!info.exposesLibraryObjects()) text += " hides library objects";
  if (info.constructor() != nullptr) text += " new(" + join(info.constructor()->signature()) + ")";
  text += "\n";
  for (const auto& property : info.properties()) {
    text += "  " + property->name() + ": " + property->type() +
            (property->isWritable() ? "" : ", read only") + "\n";
  }
  for (const auto& method : info.methods()) {
    text += "  " + method->name() + "(" + join(method->signature().arguments()) + ") -> " +
            method->signature().result() + "\n";
  }
  return text;
}

TEST(ExposedClasses, AreThoseOfTheList) {
  std::string actual;
  for (const std::string& name : package().classNames()) {
    actual += describe(package().getClass(name));
  }
  std::ifstream list(VARN_EXPOSED_CLASSES);
  const std::string expected{std::istreambuf_iterator<char>(list), {}};
  EXPECT_EQ(expected, actual);
}

TEST(Module, ExportsWhatTheHostLooksFor) {
  EXPECT_EQ(module()->version(), VARN_EXPECTED_VERSION);
  EXPECT_THAT(module()->buildDate(), testing::MatchesRegex("[A-Z][a-z]{2} [ 1-3][0-9] [0-9]{4}"));
  EXPECT_EQ(module()->relativePath(), "bin\\win64\\varn_filepackaging.so");
  ASSERT_NE(module()->functions().entries, nullptr);
  EXPECT_EQ(module()->functions().entries[0].name, nullptr);
}

// The last one, as a module starts once.
TEST(Module, TakesItsPackageAway) {
  package();
  module().reset();
  EXPECT_EQ(nullptr,
            orbel::ObjectSystem::instance().publicClient().findPackage(orbel::Name("Varn")));
}

}  // namespace
