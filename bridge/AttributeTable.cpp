#include "bridge/AttributeTable.hpp"

#include <array>
#include <iterator>

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
constexpr AttributeRow readOnlyString(std::string_view name) {
  AttributeRow row{name};
  row.readString = [](const VarnFile& file) -> const std::string& { return (file.*Get)(); };
  return row;
}

template <const std::string& (VarnFile::*Get)() const, void (VarnFile::*Set)(const std::string&)>
constexpr AttributeRow string(std::string_view name) {
  AttributeRow row = readOnlyString<Get>(name);
  row.writeString = [](VarnFile& file, const std::string& value) { (file.*Set)(value); };
  return row;
}

template <bool (VarnFile::*Get)() const, void (VarnFile::*Set)(bool)>
constexpr AttributeRow boolean(std::string_view name) {
  AttributeRow row{name};
  row.readBoolean = [](const VarnFile& file) { return (file.*Get)(); };
  row.writeBoolean = [](VarnFile& file, bool value) { (file.*Set)(value); };
  return row;
}

template <const std::vector<std::string>& (IncludesSection::*Get)() const,
          void (IncludesSection::*Add)(const std::string&)>
constexpr AttributeRow includes(std::string_view name) {
  AttributeRow row{name};
  row.readStringArray = [](const VarnFile& file) -> const std::vector<std::string>& {
    return (includesOf(file).*Get)();
  };
  row.writeString = [](VarnFile& file, const std::string& value) {
    (includesOf(file).*Add)(value);
  };
  return row;
}

constexpr AttributeRow systemsInFile() {
  AttributeRow row{"SystemsInFile"};
  row.readStringArray = [](const VarnFile& file) -> const std::vector<std::string>& {
    return file.getSystemsInFile();
  };
  row.writeString = [](VarnFile& file, const std::string& value) { file.addSystemToFile(value); };
  return row;
}

constexpr AttributeRow group() {
  AttributeRow row = readOnlyString<&VarnFile::getGroup>("Group");
  row.writeString = setGroupOnce;
  return row;
}

constexpr AttributeRow isEmpty() {
  AttributeRow row{"IsEmpty"};
  row.readBoolean = [](const VarnFile& file) { return file.isEmpty(); };
  row.writeBoolean = setIsEmpty;
  return row;
}

using F = VarnFile;
using I = IncludesSection;

constexpr AttributeRow rows[] = {
    readOnlyString<&F::getNameAscii>("Name"),
    string<&F::getBaseName, &F::setBaseName>("BaseName"),
    readOnlyString<&F::getNameWithoutExtension>("NameWithoutExtension"),
    string<&F::getType, &F::setType>("Type"),
    string<&F::getCreator, &F::setCreator>("Creator"),
    string<&F::getCodeTemplate, &F::setCodeTemplate>("CodeTemplate"),
    string<&F::getOutputDirectory, &F::setOutputDirectory>("OutputDirectory"),
    group(),
    string<&F::getDefinedMacro, &F::setDefinedMacro>("DefinedMacro"),
    systemsInFile(),
    includes<&I::getRequiredIncludes, &I::addRequiredInclude>("RequiredIncludes"),
    includes<&I::getUtilityIncludes, &I::addUtilityInclude>("UtilityIncludes"),
    boolean<&F::getFiltered, &F::setFiltered>("Filter"),
    isEmpty(),
    boolean<&F::isWrittenToDisk, &F::setIsWrittenToDisk>("WrittenToDisk"),
    boolean<&F::getIndent, &F::setIndent>("Indent"),
    boolean<&F::isShared, &F::setIsShared>("Shared"),
    boolean<&F::getSharedType, &F::setSharedType>("SharedType"),
    boolean<&F::getDeferredIncludeCoderTypes, &F::setDeferredIncludeCoderTypes>(
        "DeferredIncludeCoderTypes"),
};

constexpr NameTable<std::size(rows)> makeNameTable() {
  std::array<std::string_view, std::size(rows)> names{};
  for (std::size_t i = 0; i < names.size(); ++i) names[i] = rows[i].name;
  return NameTable<std::size(rows)>(names);
}

constexpr auto attributesByName = makeNameTable();

}  // namespace

const AttributeRow* findAttribute(std::string_view name) {
  const int position = attributesByName.find(name);
  return position < 0 ? nullptr : &rows[position];
}

}  // namespace Varn
