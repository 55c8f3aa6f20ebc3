#include <functional>
#include <utility>

#include <boost/make_shared.hpp>
#include <gtest/gtest.h>

#include <varn/FileRepOrvBridge.hpp>
#include <varn/StringFileSectionFragment.hpp>
#include <varn/VarnFileRepository.hpp>

#include "orbel/RaisedText.hpp"
#include "support/Streams.hpp"

namespace Varn {
namespace {

using namespace std::string_literals;

const char* const stringNames[] = {"Name",        "BaseName",     "NameWithoutExtension", "Type",
                                   "Creator",     "CodeTemplate", "OutputDirectory",      "Group",
                                   "DefinedMacro"};
const char* const arrayNames[] = {"SystemsInFile", "RequiredIncludes", "UtilityIncludes"};
const std::string booleanNames[] = {"Filter",
                                    "IsEmpty",
                                    "WrittenToDisk",
                                    "Indent",
                                    "Shared",
                                    "SharedType",
                                    "DeferredIncludeCoderTypes"};

const auto someFragment = boost::make_shared<StringFileSectionFragment>("x");

// Everything that the bridge reads of a file, section texts by their names included.
std::string stateOf(const FileRepOrvBridge& bridge, int index) {
  std::string state;
  for (const char* name : stringNames) state += bridge.getStringAttribute(index, name) + "|"s;
  for (const char* name : arrayNames) {
    for (const auto& entry : bridge.getStringArrayAttribute(index, name)) state += entry + ',';
    state += '|';
  }
  for (const std::string& name : booleanNames) {
    state += bridge.getBooleanAttribute(index, name) ? '1' : '0';
  }
  for (int kind = BANNER_SECTION; kind <= USERBOTTOM_SECTION; ++kind) {
    const auto name = getOrvSectionNameFromEnum(static_cast<VarnFileSectionKind>(kind));
    if (!name.empty()) state += bridge.getStringAttribute(index, name) + "|"s;
  }
  return state;
}

TEST(FileRepOrvBridge, EachWrittenAttributeReachesItsOwnPlace) {
  VarnFileRepository repository;
  FileRepOrvBridge& bridge = repository.orvBridge();
  repository.createGenericFile("out/other.c");
  VarnFile& file = repository.createGenericFile("out/a.c");
  for (const char* name : stringNames) {
    if (std::string(name).find("Name") != 0) bridge.setAttribute(1, name, name);
  }
  for (const char* name : arrayNames) {
    for (const char* entry : {"x", "y", "x"}) bridge.setAttribute(1, name, entry);
  }
  EXPECT_EQ(
      "out/a.c|BaseName|out/a|Type|Creator|CodeTemplate|OutputDirectory|Group|DefinedMacro|"
      "x,y,|x,y,|x,y,|0100000|\n#include \"x\"\n\n#include \"y\"\n\n#include \"x\"\n"
      "\n#include \"y\"\n||||||||||||||||||||",
      stateOf(bridge, 1));
  for (const std::string& name : booleanNames) {
    for (const bool value : {true, false}) {
      bridge.setAttribute(1, name, value);
      EXPECT_EQ(value, bridge.getBooleanAttribute(1, name)) << name;
    }
  }
  bridge.setAttribute(1, "IsEmpty", true);
  bridge.setAttribute(1, "Group", "later");
  EXPECT_FALSE(file.isEmpty());
  EXPECT_EQ("Group", file.getGroup());
  EXPECT_EQ("out/other.c|other|out/other|||||||||", stateOf(bridge, 0).substr(0, 36));
}

TEST(FileRepOrvBridge, KnowsTheFamilyOfEachName) {
  VarnFileRepository repository;
  const FileRepOrvBridge& bridge = repository.orvBridge();
  std::string found;
  for (const char* name : {"Name", "Banner", "RequiredIncludes", "Filter", "Types", "", "name"}) {
    found += name;
    if (bridge.isStringAttribute(name)) found += " string";
    if (bridge.isStringArrayAttribute(name)) found += " array";
    if (bridge.isBooleanAttribute(name)) found += " boolean";
    if (bridge.isFileSectionAttribute(name)) found += " section";
    found += '|';
  }
  EXPECT_EQ("Name string|Banner string section|RequiredIncludes array|Filter boolean|Types||name|",
            found);
}

// Every operation with an index and a name, and a name that only other operations accept.
using Operation = std::function<void(FileRepOrvBridge&, int, const std::string&)>;
const std::pair<const char*, Operation> operations[] = {
    {"Filter", [](auto& b, int i, auto& name) { b.getStringAttribute(i, name); }},
    {"Name", [](auto& b, int i, auto& name) { b.getBooleanAttribute(i, name); }},
    {"Banner", [](auto& b, int i, auto& name) { b.getStringArrayAttribute(i, name); }},
    {"Name", [](auto& b, int i, auto& name) { b.setAttribute(i, name, "1"); }},
    {"Banner", [](auto& b, int i, auto& name) { b.setAttribute(i, name, "1"); }},
    {"Type", [](auto& b, int i, auto& name) { b.setAttribute(i, name, true); }},
    {"Types", [](auto& b, int i, auto& name) { b.addSectionContent(i, name, someFragment); }},
    {"Types", [](auto& b, int i, auto& name) { b.addSectionContent(i, name, "x"); }},
    {"Types", [](auto& b, int i, auto& name) { b.appendMissingTokens(i, name); }},
    {"Types", [](auto& b, int i, auto& name) { b.clearSection(i, name); }},
    {"Types", [](auto& b, int i, auto& name) { b.writeSection(i, name, nullptr); }},
};

std::string noFile(int index) {
  return "Pyx:codeGen:InvalidFileIndex: The repository has no file with the index " +
         std::to_string(index) +
         ". A file's index is its position in the file list, counted from 0.";
}

TEST(FileRepOrvBridge, RefusesAnIndexBeforeAName) {
  VarnFileRepository repository;
  FileRepOrvBridge& bridge = repository.orvBridge();
  VarnFile& file = repository.createGenericFile("a.c");
  bridge.addSectionContent(0, "Typedefs", "t;");
  const std::string before = stateOf(bridge, 0);
  for (const auto& operation : operations) {
    const auto call = [&](int index, const std::string& name) {
      return raisedText([&] { operation.second(bridge, index, name); });
    };
    for (const std::string name : {operation.first, "typedefs", "", "Typedefs "}) {
      SCOPED_TRACE(std::to_string(&operation - operations) + ": " + name);
      EXPECT_EQ(noFile(-1), call(-1, name));
      EXPECT_EQ(noFile(1), call(1, name));
      EXPECT_EQ("Pyx:codeGen:InvalidFileAttribute: \"" + name +
                    "\" is not the name of a file attribute or section that can be used here.",
                call(0, name));
      EXPECT_EQ(before, stateOf(bridge, 0));
    }
  }
  EXPECT_EQ(noFile(1), raisedText([&] { bridge.addCustomSection(1, "Nowhere", "C"); }));
  EXPECT_EQ(
      "Pyx:codeGen:CustomContentInvalidBuiltin: The custom section \"C\\0D\" cannot be attached to "
      "\"Nowhere\": there is no built-in section of that name.",
      raisedText([&] { bridge.addCustomSection(0, "Nowhere", "C\0D"s); }));
  EXPECT_FALSE(file.getCustomContent().isCustomSection("C"));
}

TEST(FileRepOrvBridge, CustomSectionsGoToTheEndOfTheirSection) {
  VarnFileRepository repository;
  FileRepOrvBridge& bridge = repository.orvBridge();
  CustomContents& custom = repository.createModuleSourceFile("a.c", {}).getCustomContent();
  const auto write = [&bridge](const char* name) {
    return bytesOf([&](FILE* stream) { bridge.writeSection(0, name, stream); });
  };
  const std::pair<const char*, const char*> declared[] = {
      {"Types", "A"}, {"Typedefs", "B"}, {"Banner", "Lost"}, {"Enums", "Kept"}};
  for (const auto& [builtin, name] : declared) {
    bridge.addCustomSection(0, builtin, name + "\0cut"s);
    custom.addContentToSection(name, name + ";"s);
  }
  bridge.addSectionContent(0, "Typedefs", "first;");
  EXPECT_EQ("first;A;B;", write("Typedefs"));
  EXPECT_EQ("first;A;B;", write("Typedefs")) << "what was appended stays, once";
  bridge.appendMissingTokens(0, "Banner");
  EXPECT_EQ("", write("Banner") + write("Enums"));
  EXPECT_NE("nothing raised", raisedText([&] { custom.getCustomSectionContent("Lost", "R"); }));
  EXPECT_EQ("Kept;", custom.getCustomSectionContent("Kept", "R"));
  bridge.clearSection(0, "Typedefs");
  EXPECT_STREQ("", bridge.getStringAttribute(0, "Typedefs"));
}

TEST(FileRepOrvBridge, CopiesAddressTheirSourcesRepository) {
  VarnFileRepository first;
  VarnFileRepository second;
  first.createGenericFile("first");
  second.createGenericFile("second");
  FileRepOrvBridge copy(first.orvBridge());
  EXPECT_STREQ("first", copy.getStringAttribute(0, "Name"));
  copy = second.orvBridge();
  EXPECT_STREQ("second", copy.getStringAttribute(0, "Name"));
  EXPECT_EQ(second.getFileList()[0], &copy.getFileFromIndex(0));
}

}  // namespace
}  // namespace Varn
