#ifndef VARN_VARNMODULEFILE_HPP
#define VARN_VARNMODULEFILE_HPP

#include <string>

#include <varn/Export.hpp>
#include <varn/VarnFile.hpp>

namespace Varn {

// A header or source file of some modules of the model; the repository finds it by module index.
class VARN_EXPORT VarnModuleFile : public VarnFile {
 public:
  // A name that holds a NUL is cut there.
  explicit VarnModuleFile(const std::string& name);
  VarnModuleFile(const VarnModuleFile&) = delete;
  VarnModuleFile& operator=(const VarnModuleFile&) = delete;
  ~VarnModuleFile() override;

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
  FileSection& getDocumentationSection();
  const FileSection& getDocumentationSection() const;
  FileSection& kobo_getDocumentationSection();
  const FileSection& kobo_getDocumentationSection() const;
};

}  // namespace Varn

#endif
