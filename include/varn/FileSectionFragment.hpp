#ifndef VARN_FILESECTIONFRAGMENT_HPP
#define VARN_FILESECTIONFRAGMENT_HPP

#include <cstdio>
#include <string>

#include <varn/Export.hpp>

namespace Varn {

// One piece of generated text. Sections, their copies and their clones share fragments, so the text
// of a fragment must never change while a section holds it, and giving it must not change a
// section.
class VARN_EXPORT FileSectionFragment {
 public:
  FileSectionFragment() = default;
  FileSectionFragment(const FileSectionFragment&) = default;
  FileSectionFragment& operator=(const FileSectionFragment&) = default;
  virtual ~FileSectionFragment();

  // The fragment's text, valid as long as the fragment lives.
  virtual const std::string& getContent() const = 0;

  // Writes the fragment's text to `stream`, which stays the caller's. The stream's error indicator
  // tells about failures; they are not reported here.
  virtual void writeToFile(FILE* stream) const = 0;
};

}  // namespace Varn

#endif
