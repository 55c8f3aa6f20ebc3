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

// The sections of one file, by kind. It owns them. The builder that makes the content decides which
// kinds it has; for any other kind it returns an empty section that accepts text and discards it,
// so that generator code may address any kind of any file.
//
// The content imposes no order of writing.
class VARN_EXPORT VarnFileContent {
 public:
  // Returned for the kinds that a content lacks: always empty.
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
    FileSection* clone() const override;

   protected:
    // An empty text for every index.
    const std::string& getSectionFragment(unsigned int index) const override;

   private:
    std::string emptyText_;
  };

  // No sections.
  VarnFileContent();
  // Clones of the source's sections, each of its own class, sharing their fragments.
  VarnFileContent(const VarnFileContent& source);
  // Not assigned: references to sections stay valid until the content is destroyed.
  VarnFileContent& operator=(const VarnFileContent&) = delete;
  // Destroys the sections in the order of their kinds.
  virtual ~VarnFileContent();

  // The section of `kind`, or the discarding empty section. Valid until the content is destroyed.
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

  // For builders: put `section`, or one of the class that its kind has, in the slot of `kind`. A
  // section that it replaces is unreachable from then on, and destroyed with the content.
  // Precondition: `kind` is 0..21.
  void setSection(VarnFileSectionKind kind, std::unique_ptr<FileSection> section);
  void addSection(VarnFileSectionKind kind);

 private:
  friend class detail::TextPool;

  FileSection& makeSection(std::size_t slot) const;

  // One slot more than there are kinds; the last is never filled.
  static constexpr std::size_t slotCount = 23;

  // Most files use a few of their sections: one that was added is made when it is asked for first.
  mutable std::array<std::unique_ptr<FileSection>, slotCount> sections_;
  // A bit for each kind that the content has.
  std::uint32_t kinds_ = 0;
  // Where sections are made, and their short texts; may be null.
  detail::TextPool* pool_ = nullptr;
  // Unreachable.
  std::vector<std::unique_ptr<FileSection>> replaced_;
  // Made when it is asked for first.
  mutable std::unique_ptr<EmptyFileSection> emptySection_;
};

}  // namespace Varn

#endif
