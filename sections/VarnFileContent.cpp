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

VarnFileContent::VarnFileContent(std::size_t plainSections)
    : plainSectionCount_(static_cast<std::uint8_t>(plainSections)) {
  assert(plainSections <= sectionKindCount);
  plainSections_ = std::make_unique<FileSection[]>(plainSections);
}

VarnFileContent::VarnFileContent(const VarnFileContent& source) {
  for (const SectionKindRow& row : sectionKindTable) {
    if (!source.hasSection(row.kind)) continue;
    setSection(row.kind, std::unique_ptr<FileSection>(source.getSection(row.kind).clone()));
  }
}

VarnFileContent::~VarnFileContent() = default;

FileSection& VarnFileContent::getSection(VarnFileSectionKind kind) {
  assert(static_cast<unsigned int>(kind) < slotCount);
  FileSection* section = sections_[static_cast<std::size_t>(kind)];
  return section != nullptr ? *section : emptySection_;
}

const FileSection& VarnFileContent::getSection(VarnFileSectionKind kind) const {
  assert(static_cast<unsigned int>(kind) < slotCount);
  const FileSection* section = sections_[static_cast<std::size_t>(kind)];
  return section != nullptr ? *section : emptySection_;
}

bool VarnFileContent::hasSection(VarnFileSectionKind kind) const {
  const auto slot = static_cast<std::size_t>(static_cast<unsigned int>(kind));
  return slot < slotCount && sections_[slot] != nullptr;
}

bool VarnFileContent::isEmpty() const {
  for (const FileSection* section : sections_) {
    if (section != nullptr && !section->isEmpty()) return false;
  }
  return true;
}

void VarnFileContent::clearContents() {
  for (FileSection* section : sections_) {
    if (section != nullptr && !section->isEmpty()) section->clearContent();
  }
}

void VarnFileContent::usePool(TextPool& pool) {
  for (FileSection* section : sections_) {
    if (section != nullptr) section->store_.usePool(pool);
  }
}

void VarnFileContent::setSection(VarnFileSectionKind kind, std::unique_ptr<FileSection> section) {
  assert(static_cast<unsigned int>(kind) < sectionKindCount);
  otherSections_.push_back(std::move(section));
  sections_[static_cast<std::size_t>(kind)] = otherSections_.back().get();
}

void VarnFileContent::addPlainSection(VarnFileSectionKind kind) {
  assert(static_cast<unsigned int>(kind) < sectionKindCount);
  if (usedPlainSections_ == plainSectionCount_) {
    setSection(kind, std::make_unique<FileSection>());
  } else {
    sections_[static_cast<std::size_t>(kind)] = &plainSections_[usedPlainSections_++];
  }
}

}  // namespace Varn
