#include "varn/VarnFileContent.hpp"

#include <algorithm>
#include <cassert>
#include <memory>
#include <utility>

#include "sections/NewSection.hpp"
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

VarnFileContent::VarnFileContent(const VarnFileContent& source) : kinds_(source.kinds_) {
  for (std::size_t slot = 0; slot < slotCount; ++slot) {
    if (source.sections_[slot]) sections_[slot].reset(source.sections_[slot]->clone());
  }
}

VarnFileContent::~VarnFileContent() {
  for (auto& section : sections_) section.reset();
}

FileSection& VarnFileContent::getSection(VarnFileSectionKind kind) {
  return const_cast<FileSection&>(std::as_const(*this).getSection(kind));
}

const FileSection& VarnFileContent::getSection(VarnFileSectionKind kind) const {
  const auto slot = static_cast<std::size_t>(static_cast<unsigned int>(kind));
  assert(slot < slotCount);
  return sections_[slot] ? *sections_[slot] : makeSection(slot);
}

// Not inlined, so that getSection() is short enough to be.
[[gnu::noinline]] FileSection& VarnFileContent::makeSection(std::size_t slot) const {
  if ((kinds_ >> slot & 1U) == 0) {
    if (!emptySection_) emptySection_ = std::make_unique<EmptyFileSection>();
    return *emptySection_;
  }
  sections_[slot] = newSection(sectionKindTable[slot].sectionClass, pool_);
  return *sections_[slot];
}

bool VarnFileContent::hasSection(VarnFileSectionKind kind) const {
  const auto slot = static_cast<unsigned int>(kind);
  return slot < slotCount && (kinds_ >> slot & 1U) != 0;
}

bool VarnFileContent::isEmpty() const {
  return std::all_of(sections_.begin(), sections_.end(),
                     [](const auto& section) { return !section || section->isEmpty(); });
}

void VarnFileContent::clearContents() {
  for (const auto& section : sections_) {
    if (section && !section->isEmpty()) section->clearContent();
  }
}

void VarnFileContent::setSection(VarnFileSectionKind kind, std::unique_ptr<FileSection> section) {
  addSection(kind);
  sections_[static_cast<std::size_t>(kind)] = std::move(section);
}

void VarnFileContent::addSection(VarnFileSectionKind kind) {
  assert(static_cast<unsigned int>(kind) < sectionKindCount);
  auto& slot = sections_[static_cast<std::size_t>(kind)];
  if (slot) replaced_.push_back(std::move(slot));
  kinds_ |= 1U << static_cast<unsigned int>(kind);
}

}  // namespace Varn
