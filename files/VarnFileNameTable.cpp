#include "varn/VarnFileNameTable.hpp"

namespace Varn {
VarnFileNameTable::VarnFileNameTable() {
  names_.emplace(UndefinedFile, std::string());
  populateFileTypeStrToEnumMap();
}

VarnFileNameTable::VarnFileNameTable(const VarnFileNameTable&) = default;

VarnFileNameTable& VarnFileNameTable::operator=(const VarnFileNameTable& source) {
  VarnFileNameTable copy(source);
  names_.swap(copy.names_);
  typeStrings_.swap(copy.typeStrings_);
  return *this;
}

VarnFileNameTable::~VarnFileNameTable() = default;

void VarnFileNameTable::addFileNameToTable(FileType type, const std::string& name) {
  names_.emplace(type, name);
}

void VarnFileNameTable::addFileNameToTable(const std::string& typeName, const std::string& name) {
  addFileNameToTable(getFileTypeFromString(typeName), name);
}

const std::string& VarnFileNameTable::getFileNameFromTable(FileType type) const {
  const auto found = names_.find(type);
  return found != names_.end() ? found->second : names_.at(UndefinedFile);
}

const std::string& VarnFileNameTable::getFileNameFromTable(const std::string& typeName) const {
  return getFileNameFromTable(getFileTypeFromString(typeName));
}

FileType VarnFileNameTable::getFileTypeFromString(const std::string& typeName) const {
  const auto found = typeStrings_.find(typeName);
  return found != typeStrings_.end() ? found->second : UndefinedFile;
}

void VarnFileNameTable::populateFileTypeStrToEnumMap() {
  for (std::size_t type = 0; type < fileTypeNames.size(); ++type) {
    typeStrings_.emplace(fileTypeNames[type], static_cast<FileType>(type));
  }
}

}  // namespace Varn
