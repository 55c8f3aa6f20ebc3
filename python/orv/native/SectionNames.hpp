#ifndef ORV_SECTIONNAMES_HPP
#define ORV_SECTIONNAMES_HPP

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include <varn/VarnFile.hpp>
#include <varn/VarnFileSectionKind.hpp>

#include "python/orv/native/PackagedFiles.hpp"

namespace orv {

// The number of "Text", the section of text files, and the kind under which they hold it.
constexpr int textSection = 22;
constexpr Varn::VarnFileSectionKind textKind = Varn::USERTOP_SECTION;

// The names under which templates know the sections: the library's in the order of the kinds, with
// "ForwardDecls" for the forward declarations, which have no name there; then "Text". A section's
// number is the position of its name.
const std::array<std::string, 23>& sectionNames();

// The number of the section that a file holds under `kind`.
int sectionNumber(const PackagedFiles& files, int file, Varn::VarnFileSectionKind kind);

// Throws pybind11::value_error, with the names to choose from, when `name` is none of them.
int sectionNumber(std::string_view name);

// The kind under which a file holds a section; nothing when the file has no such section and would
// discard its text.
std::optional<Varn::VarnFileSectionKind> findSection(PackagedFiles& files, int file, int section);

// findSection(), but throws pybind11::value_error, with the names to choose from, when there is
// nothing.
Varn::VarnFileSectionKind requireSection(PackagedFiles& files, int file, int section);

}  // namespace orv

#endif
