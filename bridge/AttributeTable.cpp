#include "bridge/AttributeTable.hpp"

#include <array>
#include <iterator>

#include <varn/FileAttribute.hpp>
#include <varn/IncludesSection.hpp>

#include "sections/NameTable.hpp"

namespace Varn {
namespace {

// A builder may have made the includes section of any class, or left it out: std::bad_cast then.
IncludesSection& includesOf(VarnFile& file) {
  return dynamic_cast<IncludesSection&>(file.getFileSection(INCLUDES_SECTION));
}
const IncludesSection& includesOf(const VarnFile& file) {
  return dynamic_cast<const IncludesSection&>(file.getFileSection(INCLUDES_SECTION));
}

// The group that a file was given first stays.
void setGroupOnce(VarnFile& file, const std::string& group) {
  if (file.getGroup().empty()) file.setGroup(group);
}

// A file that was marked as not empty stays so.
void setIsEmpty(VarnFile& file, bool isEmpty) {
  if (!isEmpty) file.setIsNotEmpty();
}

template <const std::string& (VarnFile::*Get)() const>
constexpr AttributeAccess readOnlyString() {
  AttributeAccess access;
  access.readString = [](const VarnFile& file) -> const std::string& { return (file.*Get)(); };
  return access;
}

template <const std::string& (VarnFile::*Get)() const, void (VarnFile::*Set)(const std::string&)>
constexpr AttributeAccess string() {
  AttributeAccess access = readOnlyString<Get>();
  access.writeString = [](VarnFile& file, const std::string& value) { (file.*Set)(value); };
  return access;
}

template <bool (VarnFile::*Get)() const, void (VarnFile::*Set)(bool)>
constexpr AttributeAccess boolean() {
  AttributeAccess access;
  access.readBoolean = [](const VarnFile& file) { return (file.*Get)(); };
  access.writeBoolean = [](VarnFile& file, bool value) { (file.*Set)(value); };
  return access;
}

template <const std::vector<std::string>& (IncludesSection::*Get)() const,
          void (IncludesSection::*Add)(const std::string&)>
constexpr AttributeAccess includes() {
  AttributeAccess access;
  access.readStringArray = [](const VarnFile& file) -> const std::vector<std::string>& {
    return (includesOf(file).*Get)();
  };
  access.writeString = [](VarnFile& file, const std::string& value) {
    (includesOf(file).*Add)(value);
  };
  return access;
}

constexpr AttributeAccess systemsInFile() {
  AttributeAccess access;
  access.readStringArray = [](const VarnFile& file) -> const std::vector<std::string>& {
    return file.getSystemsInFile();
  };
  access.writeString = [](VarnFile& file, const std::string& value) {
    file.addSystemToFile(value);
  };
  return access;
}

constexpr AttributeAccess group() {
  AttributeAccess access = readOnlyString<&VarnFile::getGroup>();
  access.writeString = setGroupOnce;
  return access;
}

constexpr AttributeAccess isEmpty() {
  AttributeAccess access;
  access.readBoolean = [](const VarnFile& file) { return file.isEmpty(); };
  access.writeBoolean = setIsEmpty;
  return access;
}

using F = VarnFile;
using I = IncludesSection;

// At the positions of `fileAttributes`.
constexpr AttributeAccess accesses[] = {
    readOnlyString<&F::getNameAscii>(),
    string<&F::getBaseName, &F::setBaseName>(),
    readOnlyString<&F::getNameWithoutExtension>(),
    string<&F::getType, &F::setType>(),
    string<&F::getCreator, &F::setCreator>(),
    string<&F::getCodeTemplate, &F::setCodeTemplate>(),
    string<&F::getOutputDirectory, &F::setOutputDirectory>(),
    group(),
    string<&F::getDefinedMacro, &F::setDefinedMacro>(),
    systemsInFile(),
    includes<&I::getRequiredIncludes, &I::addRequiredInclude>(),
    includes<&I::getUtilityIncludes, &I::addUtilityInclude>(),
    boolean<&F::getFiltered, &F::setFiltered>(),
    isEmpty(),
    boolean<&F::isWrittenToDisk, &F::setIsWrittenToDisk>(),
    boolean<&F::getIndent, &F::setIndent>(),
    boolean<&F::isShared, &F::setIsShared>(),
    boolean<&F::getSharedType, &F::setSharedType>(),
    boolean<&F::getDeferredIncludeCoderTypes, &F::setDeferredIncludeCoderTypes>(),
};

constexpr bool fits(const FileAttribute& attribute, const AttributeAccess& access) {
  using Kind = FileAttribute::Kind;
  const bool isBoolean = attribute.kind == Kind::boolean;
  return (access.readString != nullptr) == (attribute.kind == Kind::string) &&
         (access.readStringArray != nullptr) == (attribute.kind == Kind::stringArray) &&
         (access.readBoolean != nullptr) == isBoolean &&
         (access.writeString != nullptr) == (attribute.isSettable && !isBoolean) &&
         (access.writeBoolean != nullptr) == (attribute.isSettable && isBoolean);
}

constexpr bool allFit() {
  for (std::size_t i = 0; i < fileAttributes.size(); ++i) {
    if (!fits(fileAttributes[i], accesses[i])) return false;
  }
  return std::size(accesses) == fileAttributes.size();
}
static_assert(allFit());

constexpr NameTable<fileAttributes.size()> makeNameTable() {
  std::array<std::string_view, fileAttributes.size()> names{};
  for (std::size_t i = 0; i < names.size(); ++i) names[i] = fileAttributes[i].name;
  return NameTable<fileAttributes.size()>(names);
}

constexpr auto attributesByName = makeNameTable();

}  // namespace

const AttributeAccess* findAttribute(std::string_view name) {
  const int position = attributesByName.find(name);
  return position < 0 ? nullptr : &accesses[position];
}

}  // namespace Varn
