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
};

}  // namespace Varn

#endif
