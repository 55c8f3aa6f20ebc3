#ifndef VARN_VARNGENERICFILE_HPP
#define VARN_VARNGENERICFILE_HPP

#include <string>

#include <varn/Export.hpp>
#include <varn/VarnFile.hpp>

namespace Varn {

// A file with a section of every kind.
class VARN_EXPORT VarnGenericFile : public VarnFile {
 public:
  explicit VarnGenericFile(const std::string& name);
  VarnGenericFile(const VarnGenericFile&) = delete;
  VarnGenericFile& operator=(const VarnGenericFile&) = delete;
  ~VarnGenericFile() override;

  std::string getFullyQualifiedKoboTypeName() const override;

  // The section of one kind each, good as long as the file lives; the forms with the prefix are for
  // host scripts.
  FileSection& getIncludesSection() { return getFileSection(INCLUDES_SECTION); }
  const FileSection& getIncludesSection() const { return getFileSection(INCLUDES_SECTION); }
  FileSection& kobo_getIncludesSection() { return getFileSection(INCLUDES_SECTION); }
  const FileSection& kobo_getIncludesSection() const { return getFileSection(INCLUDES_SECTION); }
  FileSection& getDefinesSection() { return getFileSection(DEFINES_SECTION); }
  const FileSection& getDefinesSection() const { return getFileSection(DEFINES_SECTION); }
  FileSection& kobo_getDefinesSection() { return getFileSection(DEFINES_SECTION); }
  const FileSection& kobo_getDefinesSection() const { return getFileSection(DEFINES_SECTION); }
  FileSection& getTypedefsSection() { return getFileSection(TYPEDEFS_SECTION); }
  const FileSection& getTypedefsSection() const { return getFileSection(TYPEDEFS_SECTION); }
  FileSection& kobo_getTypedefsSection() { return getFileSection(TYPEDEFS_SECTION); }
  const FileSection& kobo_getTypedefsSection() const { return getFileSection(TYPEDEFS_SECTION); }
  FileSection& getForwardDeclarationsSection() { return getFileSection(FORWARD_DECLS_SECTION); }
  const FileSection& getForwardDeclarationsSection() const {
    return getFileSection(FORWARD_DECLS_SECTION);
  }
  FileSection& kobo_getForwardDeclarationsSection() {
    return getFileSection(FORWARD_DECLS_SECTION);
  }
  const FileSection& kobo_getForwardDeclarationsSection() const {
    return getFileSection(FORWARD_DECLS_SECTION);
  }
  FileSection& getEnumsSection() { return getFileSection(ENUMERATIONS_SECTION); }
  const FileSection& getEnumsSection() const { return getFileSection(ENUMERATIONS_SECTION); }
  FileSection& kobo_getEnumsSection() { return getFileSection(ENUMERATIONS_SECTION); }
  const FileSection& kobo_getEnumsSection() const { return getFileSection(ENUMERATIONS_SECTION); }
  FileSection& getDefinitionsSection() { return getFileSection(DEFINITIONS_SECTION); }
  const FileSection& getDefinitionsSection() const { return getFileSection(DEFINITIONS_SECTION); }
  FileSection& kobo_getDefinitionsSection() { return getFileSection(DEFINITIONS_SECTION); }
  const FileSection& kobo_getDefinitionsSection() const {
    return getFileSection(DEFINITIONS_SECTION);
  }
  FileSection& getExternDataSection() { return getFileSection(EXTERN_DATA_SECTION); }
  const FileSection& getExternDataSection() const { return getFileSection(EXTERN_DATA_SECTION); }
  FileSection& kobo_getExternDataSection() { return getFileSection(EXTERN_DATA_SECTION); }
  const FileSection& kobo_getExternDataSection() const {
    return getFileSection(EXTERN_DATA_SECTION);
  }
  FileSection& getExternFunctionsSection() { return getFileSection(EXTERN_FCNS_SECTION); }
  const FileSection& getExternFunctionsSection() const {
    return getFileSection(EXTERN_FCNS_SECTION);
  }
  FileSection& kobo_getExternFunctionsSection() { return getFileSection(EXTERN_FCNS_SECTION); }
  const FileSection& kobo_getExternFunctionsSection() const {
    return getFileSection(EXTERN_FCNS_SECTION);
  }
  FileSection& getFunctionPrototypesSection() { return getFileSection(FCN_PROTOTYPES_SECTION); }
  const FileSection& getFunctionPrototypesSection() const {
    return getFileSection(FCN_PROTOTYPES_SECTION);
  }
  FileSection& kobo_getFunctionPrototypesSection() {
    return getFileSection(FCN_PROTOTYPES_SECTION);
  }
  const FileSection& kobo_getFunctionPrototypesSection() const {
    return getFileSection(FCN_PROTOTYPES_SECTION);
  }
  FileSection& getDeclarationsSection() { return getFileSection(DECLARATIONS_SECTION); }
  const FileSection& getDeclarationsSection() const { return getFileSection(DECLARATIONS_SECTION); }
  FileSection& kobo_getDeclarationsSection() { return getFileSection(DECLARATIONS_SECTION); }
  const FileSection& kobo_getDeclarationsSection() const {
    return getFileSection(DECLARATIONS_SECTION);
  }
  FileSection& getFunctionsSection() { return getFileSection(FUNCTIONS_SECTION); }
  const FileSection& getFunctionsSection() const { return getFileSection(FUNCTIONS_SECTION); }
  FileSection& kobo_getFunctionsSection() { return getFileSection(FUNCTIONS_SECTION); }
  const FileSection& kobo_getFunctionsSection() const { return getFileSection(FUNCTIONS_SECTION); }
  FileSection& getCompilerErrorsSection() { return getFileSection(COMPILER_ERRORS_SECTION); }
  const FileSection& getCompilerErrorsSection() const {
    return getFileSection(COMPILER_ERRORS_SECTION);
  }
  FileSection& kobo_getCompilerErrorsSection() { return getFileSection(COMPILER_ERRORS_SECTION); }
  const FileSection& kobo_getCompilerErrorsSection() const {
    return getFileSection(COMPILER_ERRORS_SECTION);
  }
  FileSection& getCompilerWarningsSection() { return getFileSection(COMPILER_WARNINGS_SECTION); }
  const FileSection& getCompilerWarningsSection() const {
    return getFileSection(COMPILER_WARNINGS_SECTION);
  }
  FileSection& kobo_getCompilerWarningsSection() {
    return getFileSection(COMPILER_WARNINGS_SECTION);
  }
  const FileSection& kobo_getCompilerWarningsSection() const {
    return getFileSection(COMPILER_WARNINGS_SECTION);
  }
  FileSection& getDocumentationSection() { return getFileSection(DOCUMENTATION_SECTION); }
  const FileSection& getDocumentationSection() const {
    return getFileSection(DOCUMENTATION_SECTION);
  }
  FileSection& kobo_getDocumentationSection() { return getFileSection(DOCUMENTATION_SECTION); }
  const FileSection& kobo_getDocumentationSection() const {
    return getFileSection(DOCUMENTATION_SECTION);
  }
};

}  // namespace Varn

#endif
