#include "varn/VarnGenericFile.hpp"

#include <memory>

#include <varn/VarnSGenericFileContentBuilder.hpp>

namespace Varn {

VarnGenericFile::VarnGenericFile(const std::string& name)
    : VarnFile(name, std::make_unique<VarnSGenericFileContentBuilder>()) {}

VarnGenericFile::~VarnGenericFile() = default;

std::string VarnGenericFile::getFullyQualifiedKoboTypeName() const {
  return "Varn.VarnGenericFile";
}

FileSection& VarnGenericFile::getIncludesSection() { return getFileSection(INCLUDES_SECTION); }
const FileSection& VarnGenericFile::getIncludesSection() const {
  return getFileSection(INCLUDES_SECTION);
}
FileSection& VarnGenericFile::kobo_getIncludesSection() { return getFileSection(INCLUDES_SECTION); }
const FileSection& VarnGenericFile::kobo_getIncludesSection() const {
  return getFileSection(INCLUDES_SECTION);
}
FileSection& VarnGenericFile::getDefinesSection() { return getFileSection(DEFINES_SECTION); }
const FileSection& VarnGenericFile::getDefinesSection() const {
  return getFileSection(DEFINES_SECTION);
}
FileSection& VarnGenericFile::kobo_getDefinesSection() { return getFileSection(DEFINES_SECTION); }
const FileSection& VarnGenericFile::kobo_getDefinesSection() const {
  return getFileSection(DEFINES_SECTION);
}
FileSection& VarnGenericFile::getTypedefsSection() { return getFileSection(TYPEDEFS_SECTION); }
const FileSection& VarnGenericFile::getTypedefsSection() const {
  return getFileSection(TYPEDEFS_SECTION);
}
FileSection& VarnGenericFile::kobo_getTypedefsSection() { return getFileSection(TYPEDEFS_SECTION); }
const FileSection& VarnGenericFile::kobo_getTypedefsSection() const {
  return getFileSection(TYPEDEFS_SECTION);
}
FileSection& VarnGenericFile::getForwardDeclarationsSection() {
  return getFileSection(FORWARD_DECLS_SECTION);
}
const FileSection& VarnGenericFile::getForwardDeclarationsSection() const {
  return getFileSection(FORWARD_DECLS_SECTION);
}
FileSection& VarnGenericFile::kobo_getForwardDeclarationsSection() {
  return getFileSection(FORWARD_DECLS_SECTION);
}
const FileSection& VarnGenericFile::kobo_getForwardDeclarationsSection() const {
  return getFileSection(FORWARD_DECLS_SECTION);
}
FileSection& VarnGenericFile::getEnumsSection() { return getFileSection(ENUMERATIONS_SECTION); }
const FileSection& VarnGenericFile::getEnumsSection() const {
  return getFileSection(ENUMERATIONS_SECTION);
}
FileSection& VarnGenericFile::kobo_getEnumsSection() {
  return getFileSection(ENUMERATIONS_SECTION);
}
const FileSection& VarnGenericFile::kobo_getEnumsSection() const {
  return getFileSection(ENUMERATIONS_SECTION);
}
FileSection& VarnGenericFile::getDefinitionsSection() {
  return getFileSection(DEFINITIONS_SECTION);
}
const FileSection& VarnGenericFile::getDefinitionsSection() const {
  return getFileSection(DEFINITIONS_SECTION);
}
FileSection& VarnGenericFile::kobo_getDefinitionsSection() {
  return getFileSection(DEFINITIONS_SECTION);
}
const FileSection& VarnGenericFile::kobo_getDefinitionsSection() const {
  return getFileSection(DEFINITIONS_SECTION);
}
FileSection& VarnGenericFile::getExternDataSection() { return getFileSection(EXTERN_DATA_SECTION); }
const FileSection& VarnGenericFile::getExternDataSection() const {
  return getFileSection(EXTERN_DATA_SECTION);
}
FileSection& VarnGenericFile::kobo_getExternDataSection() {
  return getFileSection(EXTERN_DATA_SECTION);
}
const FileSection& VarnGenericFile::kobo_getExternDataSection() const {
  return getFileSection(EXTERN_DATA_SECTION);
}
FileSection& VarnGenericFile::getExternFunctionsSection() {
  return getFileSection(EXTERN_FCNS_SECTION);
}
const FileSection& VarnGenericFile::getExternFunctionsSection() const {
  return getFileSection(EXTERN_FCNS_SECTION);
}
FileSection& VarnGenericFile::kobo_getExternFunctionsSection() {
  return getFileSection(EXTERN_FCNS_SECTION);
}
const FileSection& VarnGenericFile::kobo_getExternFunctionsSection() const {
  return getFileSection(EXTERN_FCNS_SECTION);
}
FileSection& VarnGenericFile::getFunctionPrototypesSection() {
  return getFileSection(FCN_PROTOTYPES_SECTION);
}
const FileSection& VarnGenericFile::getFunctionPrototypesSection() const {
  return getFileSection(FCN_PROTOTYPES_SECTION);
}
FileSection& VarnGenericFile::kobo_getFunctionPrototypesSection() {
  return getFileSection(FCN_PROTOTYPES_SECTION);
}
const FileSection& VarnGenericFile::kobo_getFunctionPrototypesSection() const {
  return getFileSection(FCN_PROTOTYPES_SECTION);
}
FileSection& VarnGenericFile::getDeclarationsSection() {
  return getFileSection(DECLARATIONS_SECTION);
}
const FileSection& VarnGenericFile::getDeclarationsSection() const {
  return getFileSection(DECLARATIONS_SECTION);
}
FileSection& VarnGenericFile::kobo_getDeclarationsSection() {
  return getFileSection(DECLARATIONS_SECTION);
}
const FileSection& VarnGenericFile::kobo_getDeclarationsSection() const {
  return getFileSection(DECLARATIONS_SECTION);
}
FileSection& VarnGenericFile::getFunctionsSection() { return getFileSection(FUNCTIONS_SECTION); }
const FileSection& VarnGenericFile::getFunctionsSection() const {
  return getFileSection(FUNCTIONS_SECTION);
}
FileSection& VarnGenericFile::kobo_getFunctionsSection() {
  return getFileSection(FUNCTIONS_SECTION);
}
const FileSection& VarnGenericFile::kobo_getFunctionsSection() const {
  return getFileSection(FUNCTIONS_SECTION);
}
FileSection& VarnGenericFile::getCompilerErrorsSection() {
  return getFileSection(COMPILER_ERRORS_SECTION);
}
const FileSection& VarnGenericFile::getCompilerErrorsSection() const {
  return getFileSection(COMPILER_ERRORS_SECTION);
}
FileSection& VarnGenericFile::kobo_getCompilerErrorsSection() {
  return getFileSection(COMPILER_ERRORS_SECTION);
}
const FileSection& VarnGenericFile::kobo_getCompilerErrorsSection() const {
  return getFileSection(COMPILER_ERRORS_SECTION);
}
FileSection& VarnGenericFile::getCompilerWarningsSection() {
  return getFileSection(COMPILER_WARNINGS_SECTION);
}
const FileSection& VarnGenericFile::getCompilerWarningsSection() const {
  return getFileSection(COMPILER_WARNINGS_SECTION);
}
FileSection& VarnGenericFile::kobo_getCompilerWarningsSection() {
  return getFileSection(COMPILER_WARNINGS_SECTION);
}
const FileSection& VarnGenericFile::kobo_getCompilerWarningsSection() const {
  return getFileSection(COMPILER_WARNINGS_SECTION);
}
FileSection& VarnGenericFile::getDocumentationSection() {
  return getFileSection(DOCUMENTATION_SECTION);
}
const FileSection& VarnGenericFile::getDocumentationSection() const {
  return getFileSection(DOCUMENTATION_SECTION);
}
FileSection& VarnGenericFile::kobo_getDocumentationSection() {
  return getFileSection(DOCUMENTATION_SECTION);
}
const FileSection& VarnGenericFile::kobo_getDocumentationSection() const {
  return getFileSection(DOCUMENTATION_SECTION);
}

}  // namespace Varn
