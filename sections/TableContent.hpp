#ifndef VARN_SECTIONS_TABLECONTENT_HPP
#define VARN_SECTIONS_TABLECONTENT_HPP

#include <varn/VarnFileContent.hpp>

#include "sections/SectionKindTable.hpp"

namespace Varn {

// Shared by the builders of the three file classes: the table of section kinds says which sections
// a file of each class has.

// A content without sections. The caller owns it.
VarnFileContent* newContent();

// Adds the section of `kind` if a file of `fileClass` has it. Does nothing when `content` is null.
void addSection(VarnFileContent* content, FileClass fileClass, VarnFileSectionKind kind);

}  // namespace Varn

#endif
