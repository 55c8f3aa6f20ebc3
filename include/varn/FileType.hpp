#ifndef VARN_FILETYPE_HPP
#define VARN_FILETYPE_HPP

#include <array>
#include <string_view>

namespace Varn {

// The well-known files of a model.
enum FileType : int {
  UndefinedFile = 0,
  ModelHeaderFile = 1,
  ModelSourceFile = 2,
  ModelDataFile = 3,
  ModelPrivateFile = 4,
  ModelTypesFile = 5,
  ModelCapiSrcFile = 6,
  ModelCapiHdrFile = 7,
  ModelCapiHostHdrFile = 8,
  ModelTestIfSrcFile = 9,
  ModelTestIfHdrFile = 10,
  ModelExtModeDataInterfaceFile = 11
};

// The enumerators as text, each at its value.
inline constexpr std::array<std::string_view, 12> fileTypeNames = {
    "UndefinedFile",      "ModelHeaderFile",    "ModelSourceFile",
    "ModelDataFile",      "ModelPrivateFile",   "ModelTypesFile",
    "ModelCapiSrcFile",   "ModelCapiHdrFile",   "ModelCapiHostHdrFile",
    "ModelTestIfSrcFile", "ModelTestIfHdrFile", "ModelExtModeDataInterfaceFile",
};

}  // namespace Varn

#endif
