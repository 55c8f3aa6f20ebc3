#ifndef ORV_SECTIONNAMES_HPP
#define ORV_SECTIONNAMES_HPP

#include <array>
#include <cstdio>
#include <string>
#include <string_view>

#include <varn/VarnFileSectionKind.hpp>

#include "python/orv/native/PackagedFiles.hpp"

namespace orv {

// The names under which templates know the sections: the library's, and "ForwardDecls" for the
// forward declarations, which have no name there. In the order of the kinds.
const std::array<std::string, 22>& sectionNames();

// Throws pybind11::value_error, with the names to choose from, when `name` is none of them.
Varn::VarnFileSectionKind sectionKind(std::string_view name);

// sectionKind(), but throws pybind11::value_error also when the file lacks such a section and would
// discard what it is given.
Varn::VarnFileSectionKind sectionKindOf(const Varn::VarnFile& file, std::string_view name);

// The names of the sections that `file` has.
std::string joinedSectionNames(const Varn::VarnFile& file);

// Append, read, write and place through the bridge, by the section's kind.
void appendText(PackagedFiles& files, int index, Varn::VarnFileSectionKind kind, const char* text);
std::string sectionText(PackagedFiles& files, int index, Varn::VarnFileSectionKind kind);
void writeSection(PackagedFiles& files, int index, Varn::VarnFileSectionKind kind, FILE* stream);
void placeCustomSections(PackagedFiles& files, int index, Varn::VarnFileSectionKind kind);

}  // namespace orv

#endif
