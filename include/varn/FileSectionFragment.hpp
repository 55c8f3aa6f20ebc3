#ifndef VARN_FILESECTIONFRAGMENT_HPP
#define VARN_FILESECTIONFRAGMENT_HPP

#include <cstdio>
#include <string>

#include <varn/Export.hpp>

namespace Varn {

// One piece of generated text. Sections, their copies and their clones share fragments, so the text
// of a fragment must not change while a section holds it, and the operations must not change a
// section.
class VARN_EXPORT FileSectionFragment {
 public:
  FileSectionFragment();
  FileSectionFragment(const FileSectionFragment&);
  FileSectionFragment& operator=(const FileSectionFragment&);
  virtual ~FileSectionFragment();

  // The fragment's text, valid until the fragment is destroyed.
  virtual const std::string& getContent() const = 0;

  // Writes the fragment's text to `stream`, which the caller owns. Failures set the stream's error
  // indicator and are not reported here.
  virtual void writeToFile(FILE* stream) const = 0;
};

}  // namespace Varn

#endif
