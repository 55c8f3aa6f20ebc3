// Every public header of the library.
#ifndef VARN_VARN_FILEPACKAGING_HPP
#define VARN_VARN_FILEPACKAGING_HPP

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
#include <varn/TableFileContentBuilder.hpp>
#include <varn/UniqueNames.hpp>
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
