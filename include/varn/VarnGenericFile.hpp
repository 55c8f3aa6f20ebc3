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

  // The section of one kind each, valid until the file is destroyed; the forms with the prefix are
  // for host scripts.
  FileSection& getIncludesSection();
  const FileSection& getIncludesSection() const;
  FileSection& kobo_getIncludesSection();
  const FileSection& kobo_getIncludesSection() const;
  FileSection& getDefinesSection();
  const FileSection& getDefinesSection() const;
  FileSection& kobo_getDefinesSection();
  const FileSection& kobo_getDefinesSection() const;
  FileSection& getTypedefsSection();
  const FileSection& getTypedefsSection() const;
  FileSection& kobo_getTypedefsSection();
  const FileSection& kobo_getTypedefsSection() const;
  FileSection& getForwardDeclarationsSection();
  const FileSection& getForwardDeclarationsSection() const;
  FileSection& kobo_getForwardDeclarationsSection();
  const FileSection& kobo_getForwardDeclarationsSection() const;
  FileSection& getEnumsSection();
  const FileSection& getEnumsSection() const;
  FileSection& kobo_getEnumsSection();
  const FileSection& kobo_getEnumsSection() const;
  FileSection& getDefinitionsSection();
  const FileSection& getDefinitionsSection() const;
  FileSection& kobo_getDefinitionsSection();
  const FileSection& kobo_getDefinitionsSection() const;
  FileSection& getExternDataSection();
  const FileSection& getExternDataSection() const;
  FileSection& kobo_getExternDataSection();
  const FileSection& kobo_getExternDataSection() const;
  FileSection& getExternFunctionsSection();
  const FileSection& getExternFunctionsSection() const;
  FileSection& kobo_getExternFunctionsSection();
  const FileSection& kobo_getExternFunctionsSection() const;
  FileSection& getFunctionPrototypesSection();
  const FileSection& getFunctionPrototypesSection() const;
  FileSection& kobo_getFunctionPrototypesSection();
  const FileSection& kobo_getFunctionPrototypesSection() const;
  FileSection& getDeclarationsSection();
  const FileSection& getDeclarationsSection() const;
  FileSection& kobo_getDeclarationsSection();
  const FileSection& kobo_getDeclarationsSection() const;
  FileSection& getFunctionsSection();
  const FileSection& getFunctionsSection() const;
  FileSection& kobo_getFunctionsSection();
  const FileSection& kobo_getFunctionsSection() const;
  FileSection& getCompilerErrorsSection();
  const FileSection& getCompilerErrorsSection() const;
  FileSection& kobo_getCompilerErrorsSection();
  const FileSection& kobo_getCompilerErrorsSection() const;
  FileSection& getCompilerWarningsSection();
  const FileSection& getCompilerWarningsSection() const;
  FileSection& kobo_getCompilerWarningsSection();
  const FileSection& kobo_getCompilerWarningsSection() const;
  FileSection& getDocumentationSection();
  const FileSection& getDocumentationSection() const;
  FileSection& kobo_getDocumentationSection();
  const FileSection& kobo_getDocumentationSection() const;
};

}  // namespace Varn

#endif
