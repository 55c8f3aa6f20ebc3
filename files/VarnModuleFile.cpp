#include "varn/VarnModuleFile.hpp"

#include <memory>

#include <varn/VarnModuleFileContentBuilder.hpp>

namespace Varn {

VarnModuleFile::VarnModuleFile(const std::string& name)
    : VarnFile(name.substr(0, name.find('\0')), std::make_unique<VarnModuleFileContentBuilder>()) {}

VarnModuleFile::~VarnModuleFile() = default;

std::string VarnModuleFile::getFullyQualifiedKoboTypeName() const { return "Varn.VarnModuleFile"; }

FileSection& VarnModuleFile::getIncludesSection() { return getFileSection(INCLUDES_SECTION); }
const FileSection& VarnModuleFile::getIncludesSection() const {
  return getFileSection(INCLUDES_SECTION);
}
FileSection& VarnModuleFile::kobo_getIncludesSection() { return getFileSection(INCLUDES_SECTION); }
const FileSection& VarnModuleFile::kobo_getIncludesSection() const {
  return getFileSection(INCLUDES_SECTION);
}
FileSection& VarnModuleFile::getDefinesSection() { return getFileSection(DEFINES_SECTION); }
const FileSection& VarnModuleFile::getDefinesSection() const {
  return getFileSection(DEFINES_SECTION);
}
FileSection& VarnModuleFile::kobo_getDefinesSection() { return getFileSection(DEFINES_SECTION); }
const FileSection& VarnModuleFile::kobo_getDefinesSection() const {
  return getFileSection(DEFINES_SECTION);
}
FileSection& VarnModuleFile::getTypedefsSection() { return getFileSection(TYPEDEFS_SECTION); }
const FileSection& VarnModuleFile::getTypedefsSection() const {
  return getFileSection(TYPEDEFS_SECTION);
}
FileSection& VarnModuleFile::kobo_getTypedefsSection() { return getFileSection(TYPEDEFS_SECTION); }
const FileSection& VarnModuleFile::kobo_getTypedefsSection() const {
  return getFileSection(TYPEDEFS_SECTION);
}
FileSection& VarnModuleFile::getForwardDeclarationsSection() {
  return getFileSection(FORWARD_DECLS_SECTION);
}
const FileSection& VarnModuleFile::getForwardDeclarationsSection() const {
  return getFileSection(FORWARD_DECLS_SECTION);
}
FileSection& VarnModuleFile::kobo_getForwardDeclarationsSection() {
  return getFileSection(FORWARD_DECLS_SECTION);
}
const FileSection& VarnModuleFile::kobo_getForwardDeclarationsSection() const {
  return getFileSection(FORWARD_DECLS_SECTION);
}
FileSection& VarnModuleFile::getExternDataSection() { return getFileSection(EXTERN_DATA_SECTION); }
const FileSection& VarnModuleFile::getExternDataSection() const {
  return getFileSection(EXTERN_DATA_SECTION);
}
FileSection& VarnModuleFile::kobo_getExternDataSection() {
  return getFileSection(EXTERN_DATA_SECTION);
}
const FileSection& VarnModuleFile::kobo_getExternDataSection() const {
  return getFileSection(EXTERN_DATA_SECTION);
}
FileSection& VarnModuleFile::getExternFunctionsSection() {
  return getFileSection(EXTERN_FCNS_SECTION);
}
const FileSection& VarnModuleFile::getExternFunctionsSection() const {
  return getFileSection(EXTERN_FCNS_SECTION);
}
FileSection& VarnModuleFile::kobo_getExternFunctionsSection() {
  return getFileSection(EXTERN_FCNS_SECTION);
}
const FileSection& VarnModuleFile::kobo_getExternFunctionsSection() const {
  return getFileSection(EXTERN_FCNS_SECTION);
}
FileSection& VarnModuleFile::getFunctionPrototypesSection() {
  return getFileSection(FCN_PROTOTYPES_SECTION);
}
const FileSection& VarnModuleFile::getFunctionPrototypesSection() const {
  return getFileSection(FCN_PROTOTYPES_SECTION);
}
FileSection& VarnModuleFile::kobo_getFunctionPrototypesSection() {
  return getFileSection(FCN_PROTOTYPES_SECTION);
}
const FileSection& VarnModuleFile::kobo_getFunctionPrototypesSection() const {
  return getFileSection(FCN_PROTOTYPES_SECTION);
}
FileSection& VarnModuleFile::getDeclarationsSection() {
  return getFileSection(DECLARATIONS_SECTION);
}
const FileSection& VarnModuleFile::getDeclarationsSection() const {
  return getFileSection(DECLARATIONS_SECTION);
}
FileSection& VarnModuleFile::kobo_getDeclarationsSection() {
  return getFileSection(DECLARATIONS_SECTION);
}
const FileSection& VarnModuleFile::kobo_getDeclarationsSection() const {
  return getFileSection(DECLARATIONS_SECTION);
}
FileSection& VarnModuleFile::getFunctionsSection() { return getFileSection(FUNCTIONS_SECTION); }
const FileSection& VarnModuleFile::getFunctionsSection() const {
  return getFileSection(FUNCTIONS_SECTION);
}
FileSection& VarnModuleFile::kobo_getFunctionsSection() {
  return getFileSection(FUNCTIONS_SECTION);
}
const FileSection& VarnModuleFile::kobo_getFunctionsSection() const {
  return getFileSection(FUNCTIONS_SECTION);
}
FileSection& VarnModuleFile::getDocumentationSection() {
  return getFileSection(DOCUMENTATION_SECTION);
}
const FileSection& VarnModuleFile::getDocumentationSection() const {
  return getFileSection(DOCUMENTATION_SECTION);
}
FileSection& VarnModuleFile::kobo_getDocumentationSection() {
  return getFileSection(DOCUMENTATION_SECTION);
}
const FileSection& VarnModuleFile::kobo_getDocumentationSection() const {
  return getFileSection(DOCUMENTATION_SECTION);
}

}  // namespace Varn
