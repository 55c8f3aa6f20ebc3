#include "varn/CustomSection.hpp"

namespace Varn {

CustomSection::CustomSection(const std::string& name, VarnFileSectionKind builtin)
    : name_(name), builtinSection_(builtin), required_(builtin != DOCUMENTATION_SECTION) {}

CustomSection::CustomSection(const CustomSection& source) = default;
CustomSection::~CustomSection() = default;

VarnFileSectionKind CustomSection::getBuiltinSection() { return builtinSection_; }

bool CustomSection::isRequired() const { return required_; }

bool CustomSection::isRetrieved() const { return retrieved_; }
void CustomSection::setIsRetrieved() { retrieved_ = true; }

std::string CustomSection::getSectionToken() { return name_ + "_InUse"; }

FileSection* CustomSection::clone() const { return new CustomSection(*this); }

}  // namespace Varn
