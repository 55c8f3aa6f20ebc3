#include <varn/CustomSection.hpp>

namespace Varn {

CustomSection::CustomSection(const std::string& name, VarnFileSectionKind builtin)
    : name_(name), builtinSection_(builtin), required_(builtin != DOCUMENTATION_SECTION) {}

CustomSection::CustomSection(const CustomSection& source) = default;
CustomSection::~CustomSection() = default;

std::string CustomSection::getSectionToken() const { return name_ + "_InUse"; }

CustomSection* CustomSection::clone() const { return new CustomSection(*this); }

}  // namespace Varn
