#include <boost/make_shared.hpp>
#include <gtest/gtest.h>

#include <varn/varn_filepackaging.hpp>

#include "support/Streams.hpp"

namespace Varn {
namespace {

// Writes every section that has a name, in the order of the kinds, and marks the file as written.
std::string writeFile(FileRepOrvBridge& bridge, int index) {
  std::string text = bytesOf([&](FILE* stream) {
    for (int kind = BANNER_SECTION; kind <= USERBOTTOM_SECTION; ++kind) {
      const auto name = getOrvSectionNameFromEnum(static_cast<VarnFileSectionKind>(kind));
      if (!name.empty()) bridge.writeSection(index, name, stream);
    }
  });
  bridge.setAttribute(index, "WrittenToDisk", true);
  return text;
}

void fillHeader(FileRepOrvBridge& bridge, int index) {
  bridge.setAttribute(index, "DefinedMacro", "PUMP_H");
  bridge.setAttribute(index, "RequiredIncludes", "<stdint.h>");
  bridge.setAttribute(index, "UtilityIncludes", "pump_types.h");
  bridge.setAttribute(index, "UtilityIncludes", "<math.h>");
  const std::string macro = bridge.getStringAttribute(index, "DefinedMacro");
  const std::string name = bridge.getStringAttribute(index, "Name");
  const std::string guard = "#ifndef " + macro + "\n#define " + macro + "\n";
  bridge.addSectionContent(index, "Banner", ("/* " + name + " */\n" + guard).c_str());
  bridge.addSectionContent(index, "UserBottom", ("#endif /* " + macro + " */\n").c_str());
  bridge.addCustomSection(index, "Types", "States");
  bridge.addCustomSection(index, "Typedefs", "Placed");
  bridge.addSectionContent(index, "FcnPrototypes", "int pump_step(uint8_t level);\n");
}

void fillSource(FileRepOrvBridge& bridge, int index,
                const boost::shared_ptr<FileSectionFragment>& banner) {
  bridge.addSectionContent(index, "Banner", banner);
  bridge.addSectionContent(index, "Documentation", banner);
  bridge.addSectionContent(index, "Includes", "#include \"pump.h\"\n");
  bridge.setAttribute(index, "UtilityIncludes", "pump.h");
  bridge.addSectionContent(index, "Functions", "int pump_step(uint8_t level) { return level; }\n");
  bridge.addSectionContent(index, "Functions", "wrong");
  bridge.clearSection(index, "Functions");
  bridge.addSectionContent(index, "Functions", "int pump_step(uint8_t level) { return -level; }\n");
}

TEST(WholeRun, EveryByteOfEveryFile) {
  VarnFileRepository repository;
  VarnFilePackagingManager manager(&repository);
  FileRepOrvBridge& bridge = repository.orvBridge();
  repository.addFileNameToTable("ModelHeaderFile", "pump");
  repository.createModelHeaderFile();
  repository.createModuleSourceFile("pump.c", {1});
  repository.createDataTypesFile("pump_types.h");
  const auto packaged = static_cast<int>(manager.orvBridge().getFileRecIndexForKey("mdl_src"));

  const auto banner = boost::make_shared<StringFileSectionFragment>("/* pump */\n");
  fillHeader(bridge, 0);
  fillSource(bridge, 1, banner);
  fillSource(bridge, 2, banner);
  fillSource(bridge, packaged, banner);
  CustomContents& custom = bridge.getFileFromIndex(0).getCustomContent();
  custom.addContentToSection("States", "typedef enum { OFF, ON } State;\n");
  custom.addContentToSection("Placed", "typedef int Level;\n");
  bridge.addSectionContent(0, "Typedefs", custom.getCustomSectionContent("Placed", "t").c_str());

  std::string files;
  for (int i = 0; i <= packaged; ++i) {
    files += "== " + repository.getFileList()[static_cast<std::size_t>(i)]->getNameAscii() + ' ' +
             bridge.getStringAttribute(i, "Type") + '\n' + writeFile(bridge, i);
  }
  EXPECT_EQ(
      "== pump.h SystemHeader\n"
      "/* pump.h */\n#ifndef PUMP_H\n#define PUMP_H\n"
      "\n#include <stdint.h>\n\n#include <math.h>\n\n#include \"pump_types.h\"\n"
      "typedef int Level;\ntypedef enum { OFF, ON } State;\n"
      "int pump_step(uint8_t level);\n"
      "#endif /* PUMP_H */\n"
      "== pump.c \n"
      "#include \"pump.h\"\n\n#include \"pump.h\"\n"
      "int pump_step(uint8_t level) { return -level; }\n"
      "/* pump */\n"
      "== pump_types.h \n"
      "#include \"pump.h\"\n\n#include \"pump.h\"\n"
      "==  SystemBody\n"
      "/* pump */\n"
      "#include \"pump.h\"\n\n#include \"pump.h\"\n"
      "int pump_step(uint8_t level) { return -level; }\n"
      "/* pump */\n",
      files);
  EXPECT_TRUE(bridge.getBooleanAttribute(packaged, "WrittenToDisk"));
}

}  // namespace
}  // namespace Varn
