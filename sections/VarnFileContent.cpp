#include "varn/VarnFileContent.hpp"

#include <cassert>
#include <functional>
#include <memory>
#include <new>
#include <utility>

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

FileSection* VarnFileContent::EmptyFileSection::clone() const {
  return new EmptyFileSection(*this);
}

const std::string& VarnFileContent::EmptyFileSection::getSectionFragment(
    unsigned int /*index*/) const {
  return emptyText_;
}

VarnFileContent::VarnFileContent() = default;

// Delegates, so that the destructor runs when a constructor below throws.
VarnFileContent::VarnFileContent(std::size_t plainSections) : VarnFileContent() {
  assert(plainSections <= sectionKindCount);
  plainSections_ = std::allocator<FileSection>().allocate(plainSections);
  plainCapacity_ = static_cast<std::uint8_t>(plainSections);
}

VarnFileContent::VarnFileContent(const VarnFileContent& source) : VarnFileContent() {
  for (const SectionKindRow& row : sectionKindTable) {
    if (!source.hasSection(row.kind)) continue;
    setSection(row.kind, std::unique_ptr<FileSection>(source.getSection(row.kind).clone()));
  }
}

VarnFileContent::~VarnFileContent() {
  for (FileSection*& section : sections_) destroy(std::exchange(section, nullptr));
  for (FileSection* section : replaced_) destroy(section);
  if (plainSections_ != nullptr) {
    std::allocator<FileSection>().deallocate(plainSections_, plainCapacity_);
  }
}

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

void VarnFileContent::setSection(VarnFileSectionKind kind, std::unique_ptr<FileSection> section) {
  assert(static_cast<unsigned int>(kind) < sectionKindCount);
  FileSection*& slot = sections_[static_cast<std::size_t>(kind)];
  if (slot != nullptr) replaced_.push_back(slot);
  slot = section.release();
}

void VarnFileContent::addPlainSection(VarnFileSectionKind kind) {
  assert(static_cast<unsigned int>(kind) < sectionKindCount);
  if (plainCount_ == plainCapacity_) {
    setSection(kind, std::make_unique<FileSection>());
    return;
  }
  FileSection*& slot = sections_[static_cast<std::size_t>(kind)];
  if (slot != nullptr) replaced_.push_back(slot);
  slot = ::new (plainSections_ + plainCount_) FileSection;
  ++plainCount_;
}

bool VarnFileContent::isPlain(const FileSection* section) const {
  const std::less<> before;
  return !before(section, plainSections_) && before(section, plainSections_ + plainCount_);
}

void VarnFileContent::destroy(FileSection* section) noexcept {
  if (isPlain(section)) {
    section->FileSection::~FileSection();
  } else {
    delete section;
  }
}

}  // namespace Varn
