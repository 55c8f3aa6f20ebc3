// Packages generated C text into files: text is appended to the named sections of files in memory,
// in any order, and written section by section.
//
// A repository holds the files of one run. Its bridge addresses a file by its index, and a section
// by its name:
//
//   Varn::VarnFileRepository repository;
//   repository.createGenericFile("model.c");
//   Varn::FileRepOrvBridge& bridge = repository.orvBridge();
//   bridge.addSectionContent(0, "Functions", "int step(void) { return 1; }\n");
//   bridge.writeSection(0, "Functions", stdout);
//
// Attributes of files are read and set by name, too. A list grows by one element per call:
//
//   bridge.setAttribute(0, "Creator", "pump generator");
//   bridge.setAttribute(0, "RequiredIncludes", "<stddef.h>");
//   bridge.setAttribute(0, "RequiredIncludes", "pump.h");
//   std::printf("%s made:", bridge.getStringAttribute(0, "Creator"));
//   bridge.writeSection(0, "Includes", stdout);
//
// A custom section is attached to a built-in one. Its text is retrieved by name, or else appended
// when the built-in section is written:
//
//   bridge.addCustomSection(0, "Banner", "Licence");
//   Varn::CustomContents& custom = bridge.getFileFromIndex(0).getCustomContent();
//   custom.addContentToSection("Licence", "/* Licence: none. */\n");
//   bridge.addSectionContent(0, "Banner", "/* Generated. */\n");
//   bridge.writeSection(0, "Banner", stdout);
//
// Errors are exceptions. A call that throws has changed nothing:
//
//   try {
//     bridge.setAttribute(0, "creator", "me");
//   } catch (const orbel::HostException& error) {
//     std::printf("%s: %s\n", error.identifier().c_str(), error.message());
//   }
//
// Threads: no class here locks. A repository and everything reached from it (files, contents,
// sections, fragments, custom sections, bridges, host handles), together with copies and clones of
// these, is used by one thread at a time; so is any other object. Two threads may use two
// repositories at once, also through their host classes, and all free functions.
#ifndef VARN_VARN_FILEPACKAGING_HPP
#define VARN_VARN_FILEPACKAGING_HPP

#include <orbel/Diagnostics.hpp>
#include <varn/CustomContents.hpp>
#include <varn/CustomSection.hpp>
#include <varn/Export.hpp>
#include <varn/FileAttribute.hpp>
#include <varn/FileRepErrorStatus.hpp>
#include <varn/FileRepOrvBridge.hpp>
#include <varn/FileSection.hpp>
#include <varn/FileSectionFragment.hpp>
#include <varn/FileType.hpp>
#include <varn/FunctionsSection.hpp>
#include <varn/IncludesSection.hpp>
#include <varn/StringFileSectionFragment.hpp>
#include <varn/VarnDataTypesFile.hpp>
#include <varn/VarnFile.hpp>
#include <varn/VarnFileContent.hpp>
#include <varn/VarnFileContentBuilder.hpp>
#include <varn/VarnFileContentCreator.hpp>
#include <varn/VarnFileNameTable.hpp>
#include <varn/VarnFilePackagingManager.hpp>
#include <varn/VarnFilePackagingOrvBridge.hpp>
#include <varn/VarnFileRepository.hpp>
#include <varn/VarnFileSectionKind.hpp>
#include <varn/VarnGenericFile.hpp>
#include <varn/VarnModuleFile.hpp>
#include <varn/VarnModuleFileContentBuilder.hpp>
#include <varn/VarnSDataTypesFileContentBuilder.hpp>
#include <varn/VarnSGenericFileContentBuilder.hpp>
#include <varn/getSysName.hpp>

#endif
