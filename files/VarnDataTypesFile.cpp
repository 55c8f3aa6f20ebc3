#include "varn/VarnDataTypesFile.hpp"

#include <memory>

#include <varn/VarnSDataTypesFileContentBuilder.hpp>

namespace Varn {

VarnDataTypesFile::VarnDataTypesFile(const std::string& name)
    : VarnFile(name, std::make_unique<VarnSDataTypesFileContentBuilder>()) {}

VarnDataTypesFile::~VarnDataTypesFile() = default;

std::string VarnDataTypesFile::getFullyQualifiedKoboTypeName() const {
  return "Varn.VarnDataTypesFile";
}

FileSection& VarnDataTypesFile::getIncludesSection() { return getFileSection(INCLUDES_SECTION); }
const FileSection& VarnDataTypesFile::getIncludesSection() const {
  return getFileSection(INCLUDES_SECTION);
}
FileSection& VarnDataTypesFile::kobo_getIncludesSection() {
  return getFileSection(INCLUDES_SECTION);
}
const FileSection& VarnDataTypesFile::kobo_getIncludesSection() const {
  return getFileSection(INCLUDES_SECTION);
}
FileSection& VarnDataTypesFile::getDefinesSection() { return getFileSection(DEFINES_SECTION); }
const FileSection& VarnDataTypesFile::getDefinesSection() const {
  return getFileSection(DEFINES_SECTION);
}
FileSection& VarnDataTypesFile::kobo_getDefinesSection() { return getFileSection(DEFINES_SECTION); }
const FileSection& VarnDataTypesFile::kobo_getDefinesSection() const {
  return getFileSection(DEFINES_SECTION);
}
FileSection& VarnDataTypesFile::getTypedefsSection() { return getFileSection(TYPEDEFS_SECTION); }
const FileSection& VarnDataTypesFile::getTypedefsSection() const {
  return getFileSection(TYPEDEFS_SECTION);
}
FileSection& VarnDataTypesFile::kobo_getTypedefsSection() {
  return getFileSection(TYPEDEFS_SECTION);
}
const FileSection& VarnDataTypesFile::kobo_getTypedefsSection() const {
  return getFileSection(TYPEDEFS_SECTION);
}

}  // namespace Varn
