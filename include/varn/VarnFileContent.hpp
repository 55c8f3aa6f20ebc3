#ifndef VARN_VARNFILECONTENT_HPP
#define VARN_VARNFILECONTENT_HPP

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <varn/Export.hpp>
#include <varn/FileSection.hpp>
#include <varn/VarnFileSectionKind.hpp>

namespace Varn {

// The sections of one file, by kind. It owns them. Which kinds there are is decided once, by the
// builder that makes the content; a kind that is not there is answered by an empty section that
// accepts text and discards it, so that generator code may address any kind of any file.
//
// The content imposes no order of writing.
class VARN_EXPORT VarnFileContent {
 public:
  // The stand-in for the kinds that a content lacks: always empty.
  class VARN_EXPORT EmptyFileSection : public FileSection {
   public:
    EmptyFileSection();
    EmptyFileSection(const EmptyFileSection& source);
    EmptyFileSection& operator=(const EmptyFileSection&) = delete;
    ~EmptyFileSection() override;

    void addContent_cstr(const char* text) override;
    void addContent(const std::string& text) override;
    // Releases `fragment` and keeps nothing of it.
    void addFragment(boost::shared_ptr<FileSectionFragment> fragment) override;
    EmptyFileSection* clone() const override;

   protected:
    // An empty text for every index.
    const std::string& getSectionFragment(unsigned int index) const override;

   private:
    std::string emptyText_;
  };

  // No sections.
  VarnFileContent();
  // The same with memory for `plainSections` that addPlainSection() will add, at most one for each
  // kind.
  explicit VarnFileContent(std::size_t plainSections);
  // Clones of the source's sections, each of its own class, sharing their fragments.
  VarnFileContent(const VarnFileContent& source);
  // Handles and references to sections stay good as long as the content lives: it is not assigned.
  VarnFileContent& operator=(const VarnFileContent&) = delete;
  virtual ~VarnFileContent();

  // The section of `kind`, or the discarding empty section. Good as long as the content lives.
  // Precondition: `kind` is 0..22.
  FileSection& getSection(VarnFileSectionKind kind);
  const FileSection& getSection(VarnFileSectionKind kind) const;

  // Whether the content has a section of `kind`; false for any value outside the kinds.
  bool hasSection(VarnFileSectionKind kind) const;

  // True if and only if no section holds a fragment. Header names listed by an includes section are
  // not fragments.
  bool isEmpty() const;

  // Empties every section; lists of includes and names of functions stay.
  void clearContents();

  // For builders: put `section`, or a new FileSection, in the slot of `kind`. A section that was
  // there is no longer reached, and lives as long as the content. Precondition: `kind` is 0..21.
  void setSection(VarnFileSectionKind kind, std::unique_ptr<FileSection> section);
  void addPlainSection(VarnFileSectionKind kind);

 private:
  friend class VarnFile;

  // The sections that are there keep their short texts in `pool`, which must outlive them.
  void usePool(TextPool& pool);

  // One slot more than there are kinds; the last is never filled.
  static constexpr std::size_t slotCount = 23;

  // Null for the kinds that are not there.
  std::array<FileSection*, slotCount> sections_{};
  // Most sections of a file are plain ones. They lie side by side and come and go together; the
  // first ones are in use.
  std::unique_ptr<FileSection[]> plainSections_;
  std::uint8_t plainSectionCount_ = 0;
  std::uint8_t usedPlainSections_ = 0;
  // The sections that came one by one.
  std::vector<std::unique_ptr<FileSection>> otherSections_;
  EmptyFileSection emptySection_;
};

}  // namespace Varn

#endif
