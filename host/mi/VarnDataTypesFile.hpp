#ifndef VARN_HOST_MI_VARNDATATYPESFILE_HPP
#define VARN_HOST_MI_VARNDATATYPESFILE_HPP

#include <varn/VarnDataTypesFile.hpp>

#include "host/mi/FileClass.hpp"

namespace Varn::mi {

class VarnDataTypesFile final : public FileClass<::Varn::VarnDataTypesFile> {
 public:
  using FileClass::FileClass;

  void define() override {
    using F = ::Varn::VarnDataTypesFile;
    addFileMembers();
    addSectionGetter("getIncludesSection", &F::kobo_getIncludesSection);
    addSectionGetter("getTypedefsSection", &F::kobo_getTypedefsSection);
    addSectionGetter("getDefinesSection", &F::kobo_getDefinesSection);
  }
};

}  // namespace Varn::mi

#endif
