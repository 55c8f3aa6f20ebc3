#ifndef VARN_SECTIONS_TABLECONTENT_HPP
#define VARN_SECTIONS_TABLECONTENT_HPP

#include <varn/VarnFileContent.hpp>

#include "sections/SectionKindTable.hpp"

namespace Varn {

// Shared by the builders of the three file classes: the table of section kinds says which section
// a file of each class has of each kind.

// A content without sections, with memory for the plain sections of `fileClass`. The caller owns
// it.
VarnFileContent* newContent(FileClass fileClass);

// Adds the section of `kind` that a file of `fileClass` has. Does nothing when `content` is null.
void addSection(VarnFileContent* content, FileClass fileClass, VarnFileSectionKind kind);

}  // namespace Varn

#endif
