#include "varn/FileRepOrvBridge.hpp"

#include <cassert>
#include <utility>

#include <varn/VarnFileRepository.hpp>
#include <varn/VarnFileSectionKind.hpp>

#include "bridge/AttributeTable.hpp"
#include "host/diagnostics/Diagnostics.hpp"
#include "sections/SectionKindTable.hpp"

namespace Varn {
namespace {

// Out of line: with the code that makes a message, the callers would not be inlined.
[[noreturn, gnu::noinline]] void raiseInvalidIndex(int index) { raise(InvalidFileIndex(index)); }
[[noreturn, gnu::noinline]] void raiseInvalidAttribute(const std::string& name) {
  raise(InvalidFileAttribute(name));
}

VarnFile& fileAt(const VarnFileRepository& repository, int index) {
  const std::vector<VarnFile*>& files = repository.getFileList();
  if (index < 0 || static_cast<std::size_t>(index) >= files.size()) raiseInvalidIndex(index);
  return *files[static_cast<std::size_t>(index)];
}

VarnFileSectionKind sectionKind(const std::string& name) {
  const int kind = findSectionKindByOrvName(name);
  if (kind < 0) raiseInvalidAttribute(name);
  return static_cast<VarnFileSectionKind>(kind);
}

// The typedefs have a second name here, and only here.
VarnFileSectionKind builtinOfCustomSection(const std::string& builtinSection,
                                           const std::string& customSection) {
  if (builtinSection == "Types") return TYPEDEFS_SECTION;
  const int kind = findSectionKindByOrvName(builtinSection);
  if (kind < 0) raise(CustomContentInvalidBuiltin(customSection, builtinSection));
  return static_cast<VarnFileSectionKind>(kind);
}

}  // namespace

FileRepOrvBridge::FileRepOrvBridge(VarnFileRepository& repository) : repository_(&repository) {}

FileRepOrvBridge::FileRepOrvBridge(const FileRepOrvBridge&) = default;
FileRepOrvBridge& FileRepOrvBridge::operator=(const FileRepOrvBridge&) = default;
FileRepOrvBridge::~FileRepOrvBridge() = default;

VarnFile& FileRepOrvBridge::getFileFromIndex(int index) { return fileAt(*repository_, index); }

const char* FileRepOrvBridge::getStringAttribute(int index, const std::string& name) const {
  const VarnFile& file = fileAt(*repository_, index);
  const AttributeAccess* attribute = findAttribute(name);
  if (attribute == nullptr) return file.getFileSection(sectionKind(name)).getContent().c_str();
  if (attribute->readString == nullptr) raiseInvalidAttribute(name);
  return attribute->readString(file).c_str();
}

bool FileRepOrvBridge::getBooleanAttribute(int index, const std::string& name) const {
  const VarnFile& file = fileAt(*repository_, index);
  const AttributeAccess* attribute = findAttribute(name);
  if (attribute == nullptr || attribute->readBoolean == nullptr) raiseInvalidAttribute(name);
  return attribute->readBoolean(file);
}

const std::vector<std::string>& FileRepOrvBridge::getStringArrayAttribute(
    int index, const std::string& name) const {
  const VarnFile& file = fileAt(*repository_, index);
  const AttributeAccess* attribute = findAttribute(name);
  if (attribute == nullptr || attribute->readStringArray == nullptr) raiseInvalidAttribute(name);
  return attribute->readStringArray(file);
}

void FileRepOrvBridge::setAttribute(int index, const std::string& name, const char* value) {
  assert(value != nullptr);
  VarnFile& file = fileAt(*repository_, index);
  const AttributeAccess* attribute = findAttribute(name);
  if (attribute == nullptr || attribute->writeString == nullptr) raiseInvalidAttribute(name);
  attribute->writeString(file, value);
}

void FileRepOrvBridge::setAttribute(int index, const std::string& name, bool value) {
  VarnFile& file = fileAt(*repository_, index);
  const AttributeAccess* attribute = findAttribute(name);
  if (attribute == nullptr || attribute->writeBoolean == nullptr) raiseInvalidAttribute(name);
  attribute->writeBoolean(file, value);
}

bool FileRepOrvBridge::isStringAttribute(const std::string& name) const {
  const AttributeAccess* attribute = findAttribute(name);
  return attribute != nullptr ? attribute->readString != nullptr : isFileSectionAttribute(name);
}

bool FileRepOrvBridge::isBooleanAttribute(const std::string& name) const {
  const AttributeAccess* attribute = findAttribute(name);
  return attribute != nullptr && attribute->readBoolean != nullptr;
}

bool FileRepOrvBridge::isStringArrayAttribute(const std::string& name) const {
  const AttributeAccess* attribute = findAttribute(name);
  return attribute != nullptr && attribute->readStringArray != nullptr;
}

bool FileRepOrvBridge::isFileSectionAttribute(const std::string& name) const {
  return findSectionKindByOrvName(name) >= 0;
}

void FileRepOrvBridge::addSectionContent(int index, const std::string& sectionName,
                                         boost::shared_ptr<FileSectionFragment> fragment) {
  VarnFile& file = fileAt(*repository_, index);
  file.getFileSection(sectionKind(sectionName)).addFragment(std::move(fragment));
}

void FileRepOrvBridge::addSectionContent(int index, const std::string& sectionName,
                                         const char* text) {
  VarnFile& file = fileAt(*repository_, index);
  file.getFileSection(sectionKind(sectionName)).addContent_cstr(text);
}

void FileRepOrvBridge::addCustomSection(int index, const std::string& builtinSectionName,
                                        const std::string& customSectionName) {
  VarnFile& file = fileAt(*repository_, index);
  const auto kind = builtinOfCustomSection(builtinSectionName, customSectionName);
  const std::string name = customSectionName.substr(0, customSectionName.find('\0'));
  file.getCustomContent().addCustomSection(name, kind);
}

void FileRepOrvBridge::appendMissingTokens(int index, const std::string& sectionName) {
  VarnFile& file = fileAt(*repository_, index);
  const VarnFileSectionKind kind = sectionKind(sectionName);
  file.getCustomContent().appendMissingTokens(file.getFileSection(kind), kind);
}

void FileRepOrvBridge::clearSection(int index, const std::string& sectionName) const {
  VarnFile& file = fileAt(*repository_, index);
  file.getFileSection(sectionKind(sectionName)).clearContent();
}

void FileRepOrvBridge::writeSection(int index, const std::string& sectionName, FILE* stream) const {
  VarnFile& file = fileAt(*repository_, index);
  file.writeSectionToFile(sectionKind(sectionName), stream);
}

}  // namespace Varn
