#ifndef VARN_FILEATTRIBUTE_HPP
#define VARN_FILEATTRIBUTE_HPP

#include <array>
#include <string_view>

namespace Varn {

// An attribute that FileRepOrvBridge reads and sets by name.
struct FileAttribute {
  enum class Kind { string, stringArray, boolean };

  std::string_view name;
  Kind kind;
  // False for a name that FileRepOrvBridge::setAttribute() refuses.
  bool isSettable;
};

// All of them. The names of sections, which are read-only string attributes too, are not repeated
// here; see getOrvSectionNameFromEnum().
inline constexpr std::array<FileAttribute, 19> fileAttributes = {{
    {"Name", FileAttribute::Kind::string, false},
    {"BaseName", FileAttribute::Kind::string, true},
    {"NameWithoutExtension", FileAttribute::Kind::string, false},
    {"Type", FileAttribute::Kind::string, true},
    {"Creator", FileAttribute::Kind::string, true},
    {"CodeTemplate", FileAttribute::Kind::string, true},
    {"OutputDirectory", FileAttribute::Kind::string, true},
    {"Group", FileAttribute::Kind::string, true},
    {"DefinedMacro", FileAttribute::Kind::string, true},
    {"SystemsInFile", FileAttribute::Kind::stringArray, true},
    {"RequiredIncludes", FileAttribute::Kind::stringArray, true},
    {"UtilityIncludes", FileAttribute::Kind::stringArray, true},
    {"Filter", FileAttribute::Kind::boolean, true},
    {"IsEmpty", FileAttribute::Kind::boolean, true},
    {"WrittenToDisk", FileAttribute::Kind::boolean, true},
    {"Indent", FileAttribute::Kind::boolean, true},
    {"Shared", FileAttribute::Kind::boolean, true},
    {"SharedType", FileAttribute::Kind::boolean, true},
    {"DeferredIncludeCoderTypes", FileAttribute::Kind::boolean, true},
}};

}  // namespace Varn

#endif
