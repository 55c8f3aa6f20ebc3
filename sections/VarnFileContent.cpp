#include <cassert>
#include <utility>

#include <varn/VarnFileContent.hpp>

#include "sections/SectionKindTable.hpp"

namespace Varn {

VarnFileContent::EmptyFileSection::EmptyFileSection() = default;
// The copy's text is its own: empty, like every empty section's.
VarnFileContent::EmptyFileSection::EmptyFileSection(const EmptyFileSection& source) = default;
VarnFileContent::EmptyFileSection::~EmptyFileSection() = default;

void VarnFileContent::EmptyFileSection::addContent_cstr(const char* /*text*/) {}
void VarnFileContent::EmptyFileSection::addContent(const std::string& /*text*/) {}
void VarnFileContent::EmptyFileSection::addFragment(
    boost::shared_ptr<FileSectionFragment> /*fragment*/) {}

VarnFileContent::EmptyFileSection* VarnFileContent::EmptyFileSection::clone() const {
  return new EmptyFileSection(*this);
}

const std::string& VarnFileContent::EmptyFileSection::getSectionFragment(
    unsigned int /*index*/) const {
  return emptyText_;
}

VarnFileContent::VarnFileContent() = default;

VarnFileContent::VarnFileContent(const VarnFileContent& source) {
  for (std::size_t slot = 0; slot < slotCount; ++slot) {
    if (source.sections_[slot]) sections_[slot].reset(source.sections_[slot]->clone());
  }
}

VarnFileContent::~VarnFileContent() = default;

FileSection& VarnFileContent::getSection(VarnFileSectionKind kind) {
  assert(static_cast<unsigned int>(kind) < slotCount);
  FileSection* section = sections_[static_cast<std::size_t>(kind)].get();
  return section != nullptr ? *section : emptySection_;
}

const FileSection& VarnFileContent::getSection(VarnFileSectionKind kind) const {
  assert(static_cast<unsigned int>(kind) < slotCount);
  const FileSection* section = sections_[static_cast<std::size_t>(kind)].get();
  return section != nullptr ? *section : emptySection_;
}

bool VarnFileContent::hasSection(VarnFileSectionKind kind) const {
  const auto slot = static_cast<std::size_t>(static_cast<unsigned int>(kind));
  return slot < slotCount && sections_[slot] != nullptr;
}

bool VarnFileContent::isEmpty() const {
  for (const auto& section : sections_) {
    if (section && !section->isEmpty()) return false;
  }
  return true;
}

void VarnFileContent::clearContents() {
  for (const auto& section : sections_) {
    if (section && !section->isEmpty()) section->clearContent();
  }
}

void VarnFileContent::setSection(VarnFileSectionKind kind, std::unique_ptr<FileSection> section) {
  assert(static_cast<unsigned int>(kind) < sectionKindCount);
  sections_[static_cast<std::size_t>(kind)] = std::move(section);
}

}  // namespace Varn
