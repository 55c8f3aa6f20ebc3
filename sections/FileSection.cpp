#include <cassert>
#include <cstring>
#include <utility>

#include <varn/FileSection.hpp>

#include "sections/FragmentStore.hpp"

namespace Varn {

FileSection::FileSection() = default;

FileSection::FileSection(const FileSection& source)
    : orbel::HandleBase(source),
      store_(source.store_ ? std::make_unique<FragmentStore>(*source.store_) : nullptr) {}

FileSection::~FileSection() = default;

std::string FileSection::getFullyQualifiedKoboTypeName() const { return "Varn.FileSection"; }

bool FileSection::isEmpty() const { return !store_ || store_->size() == 0; }

void FileSection::printToStream(std::ostream& os) const {
  if (store_) store_->print(os);
}

const std::string& FileSection::getContent() const {
  static const std::string empty;
  return store_ ? store_->whole() : empty;
}

void FileSection::addContent_cstr(const char* text) {
  assert(text != nullptr);
  store().append(text, std::strlen(text));
}

void FileSection::addContent(const std::string& text) {
  FileSection::addContent_cstr(text.c_str());
}

void FileSection::addFragment(boost::shared_ptr<FileSectionFragment> fragment) {
  assert(fragment);
  store().append(std::move(fragment));
  store().clearWhole();
}

void FileSection::writeToFile(FILE* stream) const {
  if (store_) store_->write(stream);
}

FileSection* FileSection::clone() const { return new FileSection(*this); }

void FileSection::clearContent() {
  if (store_) store_->clear();
}

unsigned int FileSection::getNumberOfSectionFragments() const {
  return store_ ? static_cast<unsigned int>(store_->size()) : 0;
}

const std::string& FileSection::getSectionFragment(unsigned int index) const {
  assert(index < getNumberOfSectionFragments());
  return store_->fragment(index).getContent();
}

FragmentStore& FileSection::store() {
  if (!store_) store_ = std::make_unique<FragmentStore>();
  return *store_;
}

}  // namespace Varn
