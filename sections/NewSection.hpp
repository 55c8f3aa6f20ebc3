#ifndef VARN_SECTIONS_NEWSECTION_HPP
#define VARN_SECTIONS_NEWSECTION_HPP

#include <memory>

#include <varn/FileSection.hpp>

#include "sections/SectionKindTable.hpp"

namespace Varn {

namespace detail {
class TextPool;
}

// An empty section. It and its short texts are in the memory of `pool`, which must outlive it; on
// the heap when `pool` is null.
std::unique_ptr<FileSection> newSection(SectionClass sectionClass, detail::TextPool* pool);

}  // namespace Varn

#endif
