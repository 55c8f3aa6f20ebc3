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
#include <varn/FragmentStore.hpp>

namespace Varn {

// An ordered run of text fragments: what one file holds of one kind of C text. Its bytes are the
// texts of its fragments, one after the other, with nothing added.
//
// A section is made by a content builder or as a clone, and belongs to the content or the caller
// that asked for it. It is used by one thread at a time, as are all sections of one repository.
//
// Appending takes constant time whatever the section holds, and text is put together only when
// somebody asks for it.
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

  // The whole text, put together at every call. The reference is good until the next getContent()
  // or addFragment() on this section, or its destruction.
  virtual const std::string& getContent() const;

  // Appends one fragment with the text up to its first NUL. `text` must not be null.
  virtual void addContent_cstr(const char* text);
  // The same with the characters of `text`: what follows an embedded NUL is dropped.
  virtual void addContent(const std::string& text);
  // Appends `fragment`, which must not be null, and shares it from now on.
  virtual void addFragment(boost::shared_ptr<FileSectionFragment> fragment);

  // Writes the fragments to `stream` in order: each that came as an object with its own
  // writeToFile(), and text that came as characters so that the stream hands on the same blocks as
  // with one `fwrite` for each fragment. The stream stays the caller's, who also checks it for
  // errors.
  virtual void writeToFile(FILE* stream) const;

  // A new section of the same class that shares this one's fragments. The caller owns it.
  virtual FileSection* clone() const;

  // Drops every fragment. Text that getContent() has handed out stays as it was.
  virtual void clearContent();

 protected:
  virtual unsigned int getNumberOfSectionFragments() const;
  // The text of fragment `index`, counted from 0, good as long as a section holds the fragment.
  // `index` must be below getNumberOfSectionFragments().
  virtual const std::string& getSectionFragment(unsigned int index) const;

  // The text of FileSection::getContent(), good until the section changes, and not put together
  // when it need not be.
  std::string_view getContentInPlace() const { return store_.wholeInPlace(); }

 private:
  friend class VarnFileContent;

  FragmentStore store_;
};

}  // namespace Varn

#endif
