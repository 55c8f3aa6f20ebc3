#ifndef VARN_VARNDATATYPESFILE_HPP
#define VARN_VARNDATATYPESFILE_HPP

#include <string>

#include <varn/Export.hpp>
#include <varn/VarnFile.hpp>

namespace Varn {

// A header of data types: includes, defines and typedefs.
class VARN_EXPORT VarnDataTypesFile : public VarnFile {
 public:
  explicit VarnDataTypesFile(const std::string& name);
  VarnDataTypesFile(const VarnDataTypesFile&) = delete;
  VarnDataTypesFile& operator=(const VarnDataTypesFile&) = delete;
  ~VarnDataTypesFile() override;

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
};

}  // namespace Varn

#endif
