#ifndef VARN_FILEREPORVBRIDGE_HPP
#define VARN_FILEREPORVBRIDGE_HPP

#include <cstdio>
#include <string>
#include <vector>

#include <boost/shared_ptr.hpp>

#include <varn/Export.hpp>
#include <varn/FileSectionFragment.hpp>

namespace Varn {

class VarnFile;
class VarnFileRepository;

// Gives the template engine access to the files of a repository: a file is addressed by its index,
// an attribute or a section by its name.
//
// String attributes: "Name", "NameWithoutExtension" (both read only), "BaseName", "Type",
// "Creator", "CodeTemplate", "OutputDirectory", "Group", "DefinedMacro". Every section name is also
// a read-only string attribute whose value is the section's text.
// String arrays, to which writing adds one element: "SystemsInFile", "RequiredIncludes",
// "UtilityIncludes".
// Booleans: "Filter", "IsEmpty", "WrittenToDisk", "Indent", "Shared", "SharedType",
// "DeferredIncludeCoderTypes".
// Sections: the names that getOrvSectionNameFromEnum() gives; custom sections may also be attached
// to "Types", which is "Typedefs".
//
// Names match exactly. Every call with an index throws orbel::HostException "InvalidFileIndex" (the
// index) when no file has it, before it looks at a name; with an unknown name it throws
// "InvalidFileAttribute" (the name) unless it says otherwise. A call that throws has changed
// nothing. The cost of a call does not depend on the number of files.
//
// Each repository owns its bridge. A copy addresses the same repository and must not outlive it.
class VARN_EXPORT FileRepOrvBridge {
 public:
  explicit FileRepOrvBridge(VarnFileRepository& repository);
  FileRepOrvBridge(const FileRepOrvBridge&);
  FileRepOrvBridge& operator=(const FileRepOrvBridge&);
  virtual ~FileRepOrvBridge();

  VarnFile& getFileFromIndex(int index);

  // The value's characters, valid until the value changes; for a section, until its text is read
  // again. A NUL in the value ends it.
  const char* getStringAttribute(int index, const std::string& name) const;
  bool getBooleanAttribute(int index, const std::string& name) const;
  // A reference into the file.
  const std::vector<std::string>& getStringArrayAttribute(int index, const std::string& name) const;

  // Sets a string attribute, or adds `value` to a string array. `value` must not be null. A "Group"
  // that is not empty is never changed. The include lists of a file whose includes section is of a
  // foreign class throw std::bad_cast.
  void setAttribute(int index, const std::string& name, const char* value);
  // Sets a boolean. "IsEmpty" only ever goes from true to false: setting it to true does nothing.
  void setAttribute(int index, const std::string& name, bool value);

  // What kind of attribute `name` is; a section name is a string attribute too.
  bool isStringAttribute(const std::string& name) const;
  bool isBooleanAttribute(const std::string& name) const;
  bool isStringArrayAttribute(const std::string& name) const;
  bool isFileSectionAttribute(const std::string& name) const;

  // Appends `fragment`, which must not be null, to the section and shares it with the caller. A
  // section that the file's class lacks discards it.
  void addSectionContent(int index, const std::string& sectionName,
                         boost::shared_ptr<FileSectionFragment> fragment);
  // Appends `text`, up to its first NUL, as one fragment: faster for text that no other section
  // shares. `text` must not be null.
  void addSectionContent(int index, const std::string& sectionName, const char* text);

  // Declares a custom section attached to the built-in section. Throws orbel::HostException
  // "CustomContentInvalidBuiltin" (custom section, built-in section) for an unknown built-in
  // section, and what CustomContents::addCustomSection() throws. The custom section's name ends at
  // its first NUL.
  void addCustomSection(int index, const std::string& builtinSectionName,
                        const std::string& customSectionName);

  // Appends to the section the required custom sections attached to it that were not retrieved.
  void appendMissingTokens(int index, const std::string& sectionName);

  void clearSection(int index, const std::string& sectionName) const;

  // Calls appendMissingTokens(), then writes the section to `stream`, which the caller owns. For a
  // section that the file's class lacks, does nothing.
  void writeSection(int index, const std::string& sectionName, FILE* stream) const;

 private:
  VarnFileRepository* repository_;
};

}  // namespace Varn

#endif
