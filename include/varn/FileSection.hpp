#ifndef VARN_FILESECTION_HPP
#define VARN_FILESECTION_HPP

#include <cstdio>
#include <iosfwd>
#include <string>
#include <string_view>

#include <boost/shared_ptr.hpp>

#include <orbel/HandleBase.hpp>
#include <varn/Export.hpp>
#include <varn/FileSectionFragment.hpp>
#include <varn/detail/FragmentStore.hpp>

namespace Varn {

// An ordered run of text fragments: what one file holds of one kind of C text. Its bytes are the
// texts of its fragments, one after the other, with nothing added.
//
// A section is made by a content builder or as a clone, and is owned by that content or by the
// caller of clone().
//
// Appending takes constant time whatever the section holds; text is concatenated only on request.
class VARN_EXPORT FileSection : public orbel::HandleBase {
 public:
  FileSection();
  // Shares the source's fragments; what is added to either one later is its own.
  FileSection(const FileSection& source);
  // A section's place in its file is its identity: it is copied as a new section, never
  // overwritten.
  FileSection& operator=(const FileSection&) = delete;
  ~FileSection() override;

  std::string getFullyQualifiedKoboTypeName() const override;

  // True if and only if the section has no fragments. A fragment with an empty text counts.
  virtual bool isEmpty() const;

  // Writes the fragments' texts to `os` as they are, whatever formatting `os` is set to.
  virtual void printToStream(std::ostream& os) const;

  // The whole text, concatenated at every call. The reference is valid until the next getContent()
  // or addFragment() on this section, or its destruction.
  virtual const std::string& getContent() const;

  // Appends one fragment with the text up to its first NUL. `text` must not be null.
  virtual void addContent_cstr(const char* text);
  // The same with the characters of `text`: what follows an embedded NUL is dropped.
  virtual void addContent(const std::string& text);
  // Appends `fragment`, which must not be null, and shares it from now on.
  virtual void addFragment(boost::shared_ptr<FileSectionFragment> fragment);

  // Writes the fragments to `stream` in order: objects with their own writeToFile(), text with the
  // same write sizes as one `fwrite` per fragment. The caller owns the stream and checks it for
  // errors. A section without text does not touch the stream, which may then be null.
  virtual void writeToFile(FILE* stream) const;

  // A new section of the same class that shares this one's fragments. The caller owns it.
  virtual FileSection* clone() const;

  // Drops every fragment. Text that getContent() has returned stays valid.
  virtual void clearContent();

 protected:
  virtual unsigned int getNumberOfSectionFragments() const;
  // The text of fragment `index`, counted from 0, valid while a section holds the fragment.
  // `index` must be below getNumberOfSectionFragments().
  virtual const std::string& getSectionFragment(unsigned int index) const;

  // The text of FileSection::getContent(), valid until the section changes. Copies nothing when the
  // text is contiguous.
  std::string_view getContentInPlace() const;

 private:
  friend class detail::TextPool;

  detail::FragmentStore store_;
};

}  // namespace Varn

#endif
