#ifndef VARN_VARNFILENAMETABLE_HPP
#define VARN_VARNFILENAMETABLE_HPP

#include <string>

#include <boost/unordered_map.hpp>

#include <varn/Export.hpp>
#include <varn/FileType.hpp>

namespace Varn {

// The names of a model's well-known files. Copies are independent; a failed assignment leaves the
// table unchanged.
class VARN_EXPORT VarnFileNameTable {
 public:
  // Every file has the empty name.
  VarnFileNameTable();
  VarnFileNameTable(const VarnFileNameTable&);
  VarnFileNameTable& operator=(const VarnFileNameTable& source);
  ~VarnFileNameTable();

  // Names the file of `type`. The first name stays: a later one is dropped.
  void addFileNameToTable(FileType type, const std::string& name);
  void addFileNameToTable(const std::string& typeName, const std::string& name);

  // The name of the file of `type`, or of UndefinedFile, which is empty, when it has none. Valid
  // until the table is destroyed.
  const std::string& getFileNameFromTable(FileType type) const;
  const std::string& getFileNameFromTable(const std::string& typeName) const;

  // The type whose enumerator is spelled exactly `typeName`; UndefinedFile for any other text.
  FileType getFileTypeFromString(const std::string& typeName) const;

 private:
  void populateFileTypeStrToEnumMap();

  boost::unordered_map<int, std::string> names_;
  boost::unordered_map<std::string, FileType> typeStrings_;
};

}  // namespace Varn

#endif
