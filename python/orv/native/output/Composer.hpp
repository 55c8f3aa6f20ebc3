#ifndef ORV_OUTPUT_COMPOSER_HPP
#define ORV_OUTPUT_COMPOSER_HPP

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include <varn/VarnFileSectionKind.hpp>

#include "python/orv/native/PackagedFiles.hpp"

namespace orv {

// The bytes of one file as they are written to the disk.
class ComposedFile {
 public:
  struct Section {
    // The section's number; see sectionNames().
    int number;
    std::size_t size;
  };

  // Takes over `characters`, which came from malloc.
  ComposedFile(char* characters, std::size_t size, std::vector<Section> sections)
      : characters_(characters), size_(size), sections_(std::move(sections)) {}

  // Valid until the composed file is destroyed.
  std::string_view bytes() const { return {characters_.get(), size_}; }
  // The sections that have text in written order, each with its size in bytes before a newline was
  // added.
  const std::vector<Section>& sections() const { return sections_; }

 private:
  struct Free {
    void operator()(char* characters) const noexcept { std::free(characters); }
  };

  std::unique_ptr<char, Free> characters_;
  std::size_t size_;
  std::vector<Section> sections_;
};

using SectionOrder = std::vector<Varn::VarnFileSectionKind>;

// Whether a file is a header, by the end of its name (its BaseName when it has none) or, failing
// that, of its Type.
bool isHeader(const Varn::VarnFile& file);

// Composes a file: its sections in the order of headers or sources or, unless null, in `order`.
//
// A section that does not end its last line is given a newline. A header with a DefinedMacro is
// guarded by it: the guard opens before the first section that is not the banner and closes at the
// end. The blank line that an includes section begins with is left out on top of a file. With
// `blankLines`, sections are apart by a blank line at least. A text file is its one section as it
// is. Custom sections that were not placed are appended.
//
// Throws pybind11::value_error for a DefinedMacro that is no identifier and for a section with text
// that the order or a text file leaves out.
ComposedFile compose(PackagedFiles& files, int index, const SectionOrder* order, bool blankLines);

}  // namespace orv

#endif
