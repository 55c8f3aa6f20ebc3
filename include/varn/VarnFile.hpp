#ifndef VARN_VARNFILE_HPP
#define VARN_VARNFILE_HPP

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include <orbel/HandleBase.hpp>
#include <varn/CustomContents.hpp>
#include <varn/Export.hpp>
#include <varn/FileSection.hpp>
#include <varn/VarnFileContent.hpp>
#include <varn/VarnFileContentBuilder.hpp>
#include <varn/VarnFileSectionKind.hpp>

namespace Varn {

class VarnFileRepository;

// A generated source or header file held in memory: its name in several forms, the attributes that
// describe it, the systems whose code it holds, its sections and its custom sections.
//
// A VarnFileRepository makes and owns files. Strings are 8-bit text of any bytes; the meaning of
// the attributes is up to the template engine.
class VARN_EXPORT VarnFile : public orbel::HandleBase {
 public:
  // A file called `name` with the sections that `builder` makes. Throws std::invalid_argument when
  // `builder` is null or makes no content.
  VarnFile(const std::string& name, std::unique_ptr<VarnFileContentBuilder> builder);
  // The repository and handles refer to this object: it is neither copied nor moved.
  VarnFile(const VarnFile&) = delete;
  VarnFile& operator=(const VarnFile&) = delete;
  ~VarnFile() override;

  std::string getFullyQualifiedKoboTypeName() const override;

  // The name forms, fixed when the file is made. References are valid until the file is destroyed.
  const std::u16string& getName() const;
  const std::string& getNameAscii() const;
  // The name up to its last ".", folders included: "lib.x/model" gives "lib".
  const std::string& getNameWithoutExtension() const;

  // The last path component without its last extension ("out/model.c" gives "model"), until it is
  // set to something else.
  const std::string& getBaseName() const;
  void setBaseName(const std::string& baseName);

  // A reference to an attribute is valid until the attribute is set.
  const std::string& getType() const;
  void setType(const std::string& type);
  const std::string& getCreator() const;
  void setCreator(const std::string& creator);
  const std::string& getCodeTemplate() const;
  void setCodeTemplate(const std::string& codeTemplate);
  const std::string& getOutputDirectory() const;
  void setOutputDirectory(const std::string& directory);
  const std::string& getGroup() const;
  void setGroup(const std::string& group);
  const std::string& getDefinedMacro() const;
  void setDefinedMacro(const std::string& macro);

  // The systems whose code the file holds. Adding a present one does nothing; an assigned list is
  // kept as given. A reference to the list is valid until the list is changed.
  const std::vector<std::string>& getSystemsInFile() const;
  void setSystemsInFile(const std::vector<std::string>& systems);
  void addSystemToFile(const std::string& system);

  bool getFiltered() const;
  void setFiltered(bool filtered);
  bool isWrittenToDisk() const;
  void setIsWrittenToDisk(bool written);
  bool getIndent() const;
  void setIndent(bool indent);
  bool isShared() const;
  void setIsShared(bool shared);
  bool getSharedType() const;
  void setSharedType(bool sharedType);
  bool getDeferredIncludeCoderTypes() const;
  void setDeferredIncludeCoderTypes(bool deferred);

  // False after setIsNotEmpty(); else whether the content is empty.
  bool isEmpty() const;
  void setIsNotEmpty();
  // Empties the sections and resets setIsNotEmpty(). Attributes, systems and custom sections stay.
  void clearContents();

  // The section of `kind`; for a kind that the file lacks, a section that discards text. Valid
  // until the file is destroyed. Precondition: `kind` is 0..22.
  FileSection& getFileSection(VarnFileSectionKind kind);
  const FileSection& getFileSection(VarnFileSectionKind kind) const;
  // The same for host scripts.
  FileSection& kobo_getFileSection(VarnFileSectionKind kind);
  bool hasSection(VarnFileSectionKind kind) const;

  // The file's custom sections, valid until the file is destroyed.
  CustomContents& getCustomContent();

  // Appends the required custom sections that were not retrieved to the section of `kind`, then
  // writes it to `stream`, which the caller owns. A kind that the file lacks writes nothing.
  void writeSectionToFile(VarnFileSectionKind kind, FILE* stream);

 private:
  friend class VarnFileRepository;

  // Data that few files need, kept out of line.
  struct Attributes;

  // As they are read: empty ones when none was set.
  const Attributes& attributes() const;
  Attributes& ownAttributes();

  std::unique_ptr<VarnFileContent> content_;
  std::string nameAscii_;
  std::string baseName_;
  std::string nameWithoutExtension_;
  // Those that the library sets itself are here: a short text is set without allocating.
  std::string type_;
  std::string creator_;
  std::string group_;
  std::string definedMacro_;
  std::unique_ptr<Attributes> attributes_;
  // Made when it is asked for first.
  mutable std::unique_ptr<std::u16string> name_;
  bool filtered_ = false;
  bool writtenToDisk_ = false;
  bool indent_ = false;
  bool shared_ = false;
  bool sharedType_ = false;
  bool deferredIncludeCoderTypes_ = false;
  bool notEmpty_ = false;
  CustomContents customContents_;
};

}  // namespace Varn

#endif
