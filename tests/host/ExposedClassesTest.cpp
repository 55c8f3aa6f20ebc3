// What host scripts see of the library, checked as a whole against one text.

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <orbel/Module.hpp>
#include <orbel/ObjectSystem.hpp>

namespace {

using orbel::ClassInfo;

// One module for the whole program: a module starts at most once in a process.
orbel::Module& module() {
  static const auto loaded = orbel::Module::load("varn_filepackaging");
  return *loaded;
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

std::string sectionGetters(const std::string& file, const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) {
    text.append("  get").append(name).append("Section(").append(file);
    text += ") -> Varn.FileSection\n";
  }
  return text;
}

TEST(ExposedClasses, AreExactlyThese) {
  std::string actual;
  for (const std::string& name : package().classNames()) {
    actual += describe(package().getClass(name));
  }
  EXPECT_EQ(
      actual,
      "Varn.FileSection \"Base file section\" : orbel.mixin.Heterogeneous (host)\n"
      "  isEmpty(Varn.FileSection) -> logical scalar\n"
      "  getContent(Varn.FileSection) -> char\n"
      "  addContent(Varn.FileSection, char) -> void\n"
      "Varn.FunctionsSection \"FunctionsSection\" : Varn.FileSection new()\n"
      "  addFunction(Varn.FunctionsSection, char, char) -> void\n"
      "  getNumberOfFunctions(Varn.FunctionsSection) -> uint32 scalar\n"
      "  getFunction(Varn.FunctionsSection, uint32 scalar) -> char\n"
      "  getFunctionName(Varn.FunctionsSection, uint32 scalar) -> char\n"
      "Varn.IncludesSection \"Includes section\" : Varn.FileSection new()\n"
      "  RequiredIncludes: cell\n"
      "  UtilityIncludes: cell\n"
      "  addInclude(Varn.IncludesSection, char, logical scalar) -> void\n"
      "Varn.VarnFile \"Basic File Object\" : orbel.mixin.Heterogeneous (host) abstract\n"
      "  Name: char vector, read only\n"
      "  BaseName: char vector, read only\n"
      "  NameWithoutExtension: char vector, read only\n"
      "  Type: char vector\n"
      "  Creator: char vector\n"
      "  SystemsInFile: cell\n"
      "  Filtered: logical scalar\n"
      "  IsEmpty: logical scalar, read only\n"
      "  WrittenToDisk: logical scalar\n"
      "  Indent: logical scalar\n"
      "  Shared: logical scalar\n"
      "  SharedType: logical scalar\n"
      "  DeferredIncludeCoderTypes: logical scalar\n"
      "  CodeTemplate: char vector\n"
      "  OutputDirectory: char vector\n"
      "  Group: char vector\n"
      "  DefinedMacro: char vector, read only\n"
      "  getFileSection(Varn.VarnFile, char vector) -> Varn.FileSection\n"
      "  hasSection(Varn.VarnFile, char vector) -> logical scalar\n"
      "Varn.VarnModuleFile \"File section object\" : Varn.VarnFile new(char)\n" +
          sectionGetters(
              "Varn.VarnModuleFile",
              {"Includes", "Typedefs", "ExternFunctions", "ExternData", "FunctionPrototypes",
               "Declarations", "Defines", "Functions", "ForwardDeclarations", "Documentation"}) +
          "Varn.VarnDataTypesFile \"Data types file object\" : Varn.VarnFile new(char)\n" +
          sectionGetters("Varn.VarnDataTypesFile", {"Includes", "Typedefs", "Defines"}) +
          "Varn.VarnGenericFile \"Generic file object\" : Varn.VarnFile new(char)\n" +
          sectionGetters(
              "Varn.VarnGenericFile",
              {"Includes", "Defines", "ForwardDeclarations", "Typedefs", "Enums", "Definitions",
               "ExternData", "ExternFunctions", "FunctionPrototypes", "Declarations", "Functions",
               "CompilerErrors", "CompilerWarnings", "Documentation"}) +
          "Varn.VarnFileRepository \"File Repository Object\" : orbel.mixin.Heterogeneous (host) "
          "new()\n"
          "  FileList: Varn.VarnFile, read only\n"
          "  createDataTypesFile(Varn.VarnFileRepository, char) -> Varn.VarnDataTypesFile\n"
          "  createGenericFile(Varn.VarnFileRepository, char) -> Varn.VarnGenericFile\n"
          "  findFileByName(Varn.VarnFileRepository, char) -> Varn.VarnFile\n");
}

TEST(Module, ExportsWhatTheHostLooksFor) {
  EXPECT_EQ(module().version(), VARN_EXPECTED_VERSION);
  EXPECT_THAT(module().buildDate(), testing::MatchesRegex("[A-Z][a-z]{2} [ 1-3][0-9] [0-9]{4}"));
  EXPECT_EQ(module().relativePath(), "bin\\win64\\varn_filepackaging.so");
  ASSERT_NE(module().functions().entries, nullptr);
  EXPECT_EQ(module().functions().entries[0].name, nullptr);
}

}  // namespace
