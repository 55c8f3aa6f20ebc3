#include "varn/FileSection.hpp"

#include <cassert>
#include <cstring>
#include <utility>

namespace Varn {

FileSection::FileSection() = default;

FileSection::FileSection(const FileSection& source) = default;

FileSection::~FileSection() = default;

std::string FileSection::getFullyQualifiedKoboTypeName() const { return "Varn.FileSection"; }

bool FileSection::isEmpty() const { return store_.size() == 0; }

void FileSection::printToStream(std::ostream& os) const { store_.print(os); }

const std::string& FileSection::getContent() const { return store_.whole(); }

void FileSection::addContent_cstr(const char* text) {
  assert(text != nullptr);
  store_.append(text, std::strlen(text));
}

void FileSection::addContent(const std::string& text) {
  FileSection::addContent_cstr(text.c_str());
}

void FileSection::addFragment(boost::shared_ptr<FileSectionFragment> fragment) {
  assert(fragment);
  store_.append(std::move(fragment));
}

void FileSection::writeToFile(FILE* stream) const { store_.write(stream); }

FileSection* FileSection::clone() const { return new FileSection(*this); }

void FileSection::clearContent() { store_.clear(); }

std::string_view FileSection::getContentInPlace() const { return store_.wholeInPlace(); }

unsigned int FileSection::getNumberOfSectionFragments() const {
  return static_cast<unsigned int>(store_.size());
}

const std::string& FileSection::getSectionFragment(unsigned int index) const {
  assert(index < getNumberOfSectionFragments());
  return store_.fragment(index).getContent();
}

}  // namespace Varn
