#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <orbel/Module.hpp>
#include <orbel/ObjectSystem.hpp>

#include "RaisedText.hpp"

namespace {

using orbel::Module;
using testing::ElementsAre;
using testing::StartsWith;

TEST(Module, RunsFromLoadingToClosing) {
  orbel::ObjectSystem& system = orbel::ObjectSystem::instance();
  EXPECT_EQ(system.findPackage(orbel::Name("Sample")), nullptr);
  const auto module = Module::load(ORBEL_SAMPLE_MODULE);
  EXPECT_EQ(Module::load(ORBEL_SAMPLE_MODULE), module);
  EXPECT_EQ(module->name(), "orbel_sample");
  EXPECT_STREQ(module->functions().entries[0].name, "living");
  EXPECT_THAT(module->packageNames(), ElementsAre("Sample"));
  orbel::Client& client = system.publicClient();
  const orbel::Value item = client.construct(client.getClass("Sample.Item"), {});
  module->close();
  EXPECT_EQ(client.findPackage(orbel::Name("Sample")), nullptr);
  EXPECT_EQ(item.className(), "Sample.Item");
  EXPECT_EQ(raisedText([] { Module::load(ORBEL_SAMPLE_MODULE); }),
            "Orbel:ModuleSpent: The module \"orbel_sample\" was started before, and a module "
            "starts once in a process.");
}

TEST(Module, SaysWhatIsMissing) {
  EXPECT_EQ(raisedText([] { Module::load(ORBEL_PARTIAL_MODULE); }),
            "Orbel:ModuleIncomplete: The file \"" ORBEL_PARTIAL_MODULE
            "\" is not a module: it does not export OrbelTerminate_orbel_partial, "
            "QueryOrbelFcnTable_orbel_partial (it gives no table), orbel_partial_version, "
            "orbel_partial_build_date, orbel_partial_relative_path.");
  const std::pair<std::string, std::string> rows[] = {
      {ORBEL_NO_LIBRARY, "ModuleTest.cpp\" cannot be loaded: "},
      {"no_such_module", "no_such_module\" cannot be loaded: "},
      {"/no/such/libx.so", "x\" cannot be loaded: "},
      {std::string("a\0b", 3), "a\\0b\" cannot be loaded: the name contains a NUL."},
      {"", "\" cannot be loaded: "},
      {"/", "\" cannot be loaded: "},
  };
  for (const auto& [file, error] : rows) {
    EXPECT_THAT(raisedText([&, &file = file] { Module::load(file); }),
                StartsWith("Orbel:ModuleNotLoaded: The module \"" + error));
  }
}

}  // namespace
