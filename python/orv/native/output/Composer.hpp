#ifndef ORV_OUTPUT_COMPOSER_HPP
#define ORV_OUTPUT_COMPOSER_HPP

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <varn/VarnFileSectionKind.hpp>

#include "python/orv/native/PackagedFiles.hpp"
#include "python/orv/native/output/Guard.hpp"
#include "python/orv/native/tracing/Trace.hpp"

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
  ComposedFile(char* characters, std::size_t size, std::vector<Section> sections, Guard guard,
               TracedText traced)
      : characters_(characters),
        size_(size),
        sections_(std::move(sections)),
        guard_(std::move(guard)),
        traced_(std::move(traced)) {}

  // Valid until the composed file is destroyed.
  std::string_view bytes() const { return {characters_.get(), size_}; }
  // The sections that have text in written order, each with its size in bytes before a newline was
  // added.
  const std::vector<Section>& sections() const { return sections_; }
  const Guard& guard() const { return guard_; }
  // Where the bytes come from; nothing unless the run is traced.
  const TracedText& traced() const { return traced_; }

 private:
  struct Free {
    void operator()(char* characters) const noexcept { std::free(characters); }
  };

  std::unique_ptr<char, Free> characters_;
  std::size_t size_;
  std::vector<Section> sections_;
  Guard guard_;
  TracedText traced_;
};

using SectionOrder = std::vector<Varn::VarnFileSectionKind>;

// How a file is composed.
struct Composition {
  // Of headers or of sources when there is none.
  std::optional<SectionOrder> order;
  // Whether sections are apart by a blank line at least.
  bool blankLines = false;
  // Whether a header gets a guard: by its DefinedMacro, or else by `guardForm` unless that is empty
  // (see Guard::ofForm), with the file's path below the output folder.
  bool guarded = true;
  std::string guardForm;
  std::string path;
  // Whether the declarations of a header have C linkage in C++.
  bool externC = false;
};

// Whether a file is a header, by the end of its name (its BaseName when it has none) or, failing
// that, of its Type.
bool isHeader(const Varn::VarnFile& file);

// Composes a file. A section that does not end its last line is given a newline. The guard opens
// before the first section that is not the banner and closes at the end; `extern "C"` opens behind
// the includes. The blank line that an includes section begins with is left out on top of a file. A
// text file is its one section as it is. Custom sections that were not placed are appended.
//
// Throws pybind11::value_error for a guard that is no identifier, a DefinedMacro without guard, C
// linkage of what is no header, and for a section with text that the order or a text file leaves
// out.
ComposedFile compose(PackagedFiles& files, int index, const Composition& composition);

}  // namespace orv

#endif
