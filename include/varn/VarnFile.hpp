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
#include <varn/UniqueNames.hpp>
#include <varn/VarnFileContent.hpp>
#include <varn/VarnFileContentBuilder.hpp>
#include <varn/VarnFileSectionKind.hpp>

namespace Varn {

// A generated source or header file held in memory: its name in several forms, the attributes that
// describe it, the systems whose code it holds, its sections and its custom sections.
//
// Files are made and owned by a VarnFileRepository and live as long as it does. Strings are 8-bit
// text of any bytes; the attributes' meaning is the template engine's.
class VARN_EXPORT VarnFile : public orbel::HandleBase {
 public:
  // A file called `name` with the sections that `builder` makes. Throws std::invalid_argument when
  // `builder` is null or makes no content.
  VarnFile(const std::string& name, std::unique_ptr<VarnFileContentBuilder> builder);
  // A file is known by its place in its repository: it is neither copied nor moved.
  VarnFile(const VarnFile&) = delete;
  VarnFile& operator=(const VarnFile&) = delete;
  ~VarnFile() override;

  std::string getFullyQualifiedKoboTypeName() const override;

  // The name forms, fixed when the file is made. References are good as long as the file lives.
  const std::u16string& getName() const { return name_; }
  const std::string& getNameAscii() const { return nameAscii_; }
  // The name up to its last ".", folders included: "lib.x/model" gives "lib".
  const std::string& getNameWithoutExtension() const { return nameWithoutExtension_; }

  // The last path component without its last extension ("out/model.c" gives "model"), until it is
  // set to something else.
  const std::string& getBaseName() const { return baseName_; }
  void setBaseName(const std::string& baseName) { baseName_ = baseName; }

  const std::string& getType() const { return type_; }
  void setType(const std::string& type) { type_ = type; }
  const std::string& getCreator() const { return creator_; }
  void setCreator(const std::string& creator) { creator_ = creator; }
  const std::string& getCodeTemplate() const { return codeTemplate_; }
  void setCodeTemplate(const std::string& codeTemplate) { codeTemplate_ = codeTemplate; }
  const std::string& getOutputDirectory() const { return outputDirectory_; }
  void setOutputDirectory(const std::string& directory) { outputDirectory_ = directory; }
  const std::string& getGroup() const { return group_; }
  void setGroup(const std::string& group) { group_ = group; }
  const std::string& getDefinedMacro() const { return definedMacro_; }
  void setDefinedMacro(const std::string& macro) { definedMacro_ = macro; }

  // The systems whose code the file holds. Adding one that is there does nothing; a list that is
  // set as a whole is taken as it is.
  const std::vector<std::string>& getSystemsInFile() const { return systems_.list(); }
  void setSystemsInFile(const std::vector<std::string>& systems) { systems_.assign(systems); }
  void addSystemToFile(const std::string& system) { systems_.add(system); }

  bool getFiltered() const { return filtered_; }
  void setFiltered(bool filtered) { filtered_ = filtered; }
  bool isWrittenToDisk() const { return writtenToDisk_; }
  void setIsWrittenToDisk(bool written) { writtenToDisk_ = written; }
  bool getIndent() const { return indent_; }
  void setIndent(bool indent) { indent_ = indent; }
  bool isShared() const { return shared_; }
  void setIsShared(bool shared) { shared_ = shared; }
  bool getSharedType() const { return sharedType_; }
  void setSharedType(bool sharedType) { sharedType_ = sharedType; }
  bool getDeferredIncludeCoderTypes() const { return deferredIncludeCoderTypes_; }
  void setDeferredIncludeCoderTypes(bool deferred) { deferredIncludeCoderTypes_ = deferred; }

  // False once setIsNotEmpty() was called; else whether the content is empty.
  bool isEmpty() const;
  void setIsNotEmpty() { notEmpty_ = true; }
  // Empties the sections and forgets setIsNotEmpty(). Attributes, systems and custom sections stay.
  void clearContents();

  // The section of `kind`; for a kind that the file lacks, a section that discards what it is
  // given. Good as long as the file lives. Precondition: `kind` is 0..22.
  FileSection& getFileSection(VarnFileSectionKind kind);
  const FileSection& getFileSection(VarnFileSectionKind kind) const;
  // The same for host scripts.
  FileSection& kobo_getFileSection(VarnFileSectionKind kind) { return getFileSection(kind); }
  bool hasSection(VarnFileSectionKind kind) const;

  // The file's custom sections, good as long as the file lives.
  CustomContents& getCustomContent() { return customContents_; }

  // Appends to the section of `kind` the custom sections that nobody has placed, then writes it to
  // `stream`, which stays the caller's. A kind that the file lacks writes nothing.
  void writeSectionToFile(VarnFileSectionKind kind, FILE* stream);

 private:
  friend class VarnFileRepository;

  // The file's sections keep their short texts in `pool`, which must outlive the file.
  void usePool(TextPool& pool) { content_->usePool(pool); }

  std::unique_ptr<VarnFileContent> content_;
  std::u16string name_;
  std::string nameAscii_;
  std::string baseName_;
  std::string nameWithoutExtension_;
  std::string type_;
  std::string creator_;
  UniqueNames systems_;
  bool filtered_ = false;
  bool writtenToDisk_ = false;
  bool indent_ = false;
  bool shared_ = false;
  bool sharedType_ = false;
  bool deferredIncludeCoderTypes_ = false;
  std::string codeTemplate_;
  std::string outputDirectory_;
  std::string group_;
  std::string definedMacro_;
  bool notEmpty_ = false;
  CustomContents customContents_;
};

}  // namespace Varn

#endif
