#ifndef ORV_SECTIONACCESS_HPP
#define ORV_SECTIONACCESS_HPP

#include <string>

#include <varn/VarnFileSectionKind.hpp>

#include "python/orv/native/PackagedFiles.hpp"

namespace orv {

// Operations on the sections of a file, by the library's bridge. The forward declarations, which
// have no name there, are reached through the file instead. All throw the library's diagnostic for
// an unknown file.

// Appends `text`, which has no NUL, as one fragment. A large one is not copied: it becomes the
// fragment's, and `text` is empty.
void addSectionText(PackagedFiles& files, int file, Varn::VarnFileSectionKind kind,
                    std::string& text);

// Attaches the custom section `name`, without NUL, to a section.
void declareCustomSection(PackagedFiles& files, int file, Varn::VarnFileSectionKind kind,
                          const std::string& name);

// Appends to each section that the file has the custom sections attached to it that are not placed.
void placeCustomSections(PackagedFiles& files, int file);

}  // namespace orv

#endif
