#ifndef ORV_SECTIONNAMES_HPP
#define ORV_SECTIONNAMES_HPP

#include <array>
#include <string>
#include <string_view>

#include <varn/VarnFile.hpp>
#include <varn/VarnFileSectionKind.hpp>

namespace orv {

// The names under which templates know the sections: the library's, and "ForwardDecls" for the
// forward declarations, which have no name there. In the order of the kinds.
const std::array<std::string, 22>& sectionNames();

// Throws pybind11::value_error, with the names to choose from, when `name` is none of them.
Varn::VarnFileSectionKind sectionKind(std::string_view name);

// Throws pybind11::value_error when `file` has no such section and would discard its text.
void requireSection(const Varn::VarnFile& file, Varn::VarnFileSectionKind kind);

}  // namespace orv

#endif
