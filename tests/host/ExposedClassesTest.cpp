// What host scripts see of the library, checked as a whole against one text.

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <orbel/Diagnostics.hpp>
#include <orbel/Module.hpp>
#include <orbel/ObjectSystem.hpp>
#include <varn/varn_filepackaging.hpp>

namespace {

using orbel::CellArray;
using orbel::CharacterArray;
using orbel::ClassInfo;
using orbel::HostException;
using orbel::Value;

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
    text += "  get" + name + "Section(" + file + ") -> Varn.FileSection\n";
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

// Every getter of a file class reaches the section of its own kind.
TEST(ExposedClasses, SectionGettersReachTheirKinds) {
  const std::pair<const char*, Varn::VarnFileSectionKind> kinds[] = {
      {"Includes", Varn::INCLUDES_SECTION},
      {"Defines", Varn::DEFINES_SECTION},
      {"ForwardDeclarations", Varn::FORWARD_DECLS_SECTION},
      {"Typedefs", Varn::TYPEDEFS_SECTION},
      {"Enums", Varn::ENUMERATIONS_SECTION},
      {"Definitions", Varn::DEFINITIONS_SECTION},
      {"ExternData", Varn::EXTERN_DATA_SECTION},
      {"ExternFunctions", Varn::EXTERN_FCNS_SECTION},
      {"FunctionPrototypes", Varn::FCN_PROTOTYPES_SECTION},
      {"Declarations", Varn::DECLARATIONS_SECTION},
      {"Functions", Varn::FUNCTIONS_SECTION},
      {"CompilerErrors", Varn::COMPILER_ERRORS_SECTION},
      {"CompilerWarnings", Varn::COMPILER_WARNINGS_SECTION},
      {"Documentation", Varn::DOCUMENTATION_SECTION},
  };
  Varn::VarnFileRepository repository;
  for (Varn::VarnFile* file : std::initializer_list<Varn::VarnFile*>{
           &repository.createGenericFile("g.c"), &repository.createDataTypesFile("t.h"),
           &repository.createModuleSourceFile("m.c", {})}) {
    const std::string className = file->getFullyQualifiedKoboTypeName().substr(5);
    for (const auto& [name, kind] : kinds) {
      SCOPED_TRACE(className + " " + name);
      const std::string getter = std::string("get") + name + "Section";
      const auto* method = package().getClass(className).findMethod(getter);
      EXPECT_EQ(method != nullptr, file->hasSection(kind));
      if (method == nullptr) continue;
      const std::vector<Value> arguments = {file->toHostValue()};
      EXPECT_EQ(method->invoke(arguments), file->getFileSection(kind).toHostValue());
    }
  }
}

struct Script {
  Varn::VarnFileRepository repository;

  static Value call(orbel::HandleBase& object, const char* member, std::vector<Value> arguments) {
    arguments.insert(arguments.begin(), object.toHostValue());
    return package()
        .getClass(object.getFullyQualifiedKoboTypeName().substr(5))
        .getMethod(member)
        .invoke(arguments);
  }
  static Value text(const char* value) { return Value(CharacterArray(value)); }
};

TEST(ExposedClasses, SectionsByKindName) {
  Script s;
  Varn::VarnModuleFile& file = s.repository.createModuleHeaderFile("m.h", {1});
  EXPECT_EQ(s.call(file, "getFileSection", {s.text("TYPEDEFS_SECTION")}),
            file.getTypedefsSection().toHostValue());
  // A kind that the file lacks, and a name that is none.
  for (const char* kind : {"BANNER_SECTION", "typedefs_section"}) {
    EXPECT_EQ(s.call(file, "hasSection", {s.text(kind)}), Value(false)) << kind;
    EXPECT_EQ(s.call(file, "getFileSection", {s.text(kind)}),
              file.getFileSection(Varn::BANNER_SECTION).toHostValue())
        << kind;
  }
  Varn::FileSection& absent = file.getFileSection(Varn::BANNER_SECTION);
  s.call(absent, "addContent", {s.text("lost")});
  EXPECT_EQ(s.call(absent, "isEmpty", {}), Value(true));
}

TEST(ExposedClasses, FileListKeepsTheClassOfEachFile) {
  Script s;
  const orbel::Property& list = package().getClass("VarnFileRepository").getProperty("FileList");
  const Value empty = list.get(s.repository.toHostValue());
  ASSERT_NE(empty.get<orbel::ObjectArray>(), nullptr);
  EXPECT_EQ(empty.get<orbel::ObjectArray>()->rows(), 1U);
  EXPECT_EQ(empty.get<orbel::ObjectArray>()->columns(), 0U);

  s.call(s.repository, "createGenericFile", {s.text("a.c")});
  s.call(s.repository, "createDataTypesFile", {s.text("b.h")});
  const Value value = list.get(s.repository.toHostValue());
  const auto* files = value.get<orbel::ObjectArray>();
  ASSERT_NE(files, nullptr);
  EXPECT_EQ(files->className(), "Varn.VarnFile");
  EXPECT_TRUE(files->isHeterogeneous());
  ASSERT_EQ(files->columns(), 2U);
  EXPECT_EQ(files->elements()[1].object()->getFullyQualifiedKoboTypeName(),
            "Varn.VarnDataTypesFile");

  const Value found = s.call(s.repository, "findFileByName", {s.text("b.h")});
  EXPECT_EQ(found, Value(files->elements()[1]));
  const Value missing = s.call(s.repository, "findFileByName", {s.text("B.h")});
  EXPECT_EQ(missing, Value(orbel::ObjectArray::none("Varn.VarnFile")));
}

TEST(ExposedClasses, FunctionIndicesAreCheckedBeforeTheCall) {
  Script s;
  auto& section = dynamic_cast<Varn::FunctionsSection&>(
      s.repository.createGenericFile("a.c").getFunctionsSection());
  s.call(section, "addFunction", {s.text("f"), s.text("body")});
  section.addContent("a body without a name");
  EXPECT_EQ(s.call(section, "getFunction", {Value(std::uint32_t{2})}),
            s.text("a body without a name"));
  const std::pair<const char*, std::uint32_t> refused[] = {{"getFunction", 0},
                                                           {"getFunction", 3},
                                                           {"getFunctionName", 0},
                                                           {"getFunctionName", 2},
                                                           {"getFunctionName", 0xFFFFFFFF}};
  for (const auto& [method, index] : refused) {
    SCOPED_TRACE(std::string(method) + " " + std::to_string(index));
    try {
      s.call(section, method, {Value(index)});
      ADD_FAILURE() << "no error";
    } catch (const HostException& error) {
      EXPECT_EQ(error.identifier(), "IndexOutOfRange");
    }
  }
}

TEST(Module, ExportsWhatTheHostLooksFor) {
  EXPECT_EQ(module().version(), VARN_EXPECTED_VERSION);
  EXPECT_THAT(module().buildDate(), testing::MatchesRegex("[A-Z][a-z]{2} [ 1-3][0-9] [0-9]{4}"));
  EXPECT_EQ(module().relativePath(), "bin\\win64\\varn_filepackaging.so");
  ASSERT_NE(module().functions().entries, nullptr);
  EXPECT_EQ(module().functions().entries[0].name, nullptr);
}

}  // namespace
