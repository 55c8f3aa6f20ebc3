#ifndef VARN_HOST_MI_VARNMODULEFILE_HPP
#define VARN_HOST_MI_VARNMODULEFILE_HPP

#include <varn/VarnModuleFile.hpp>

#include "host/mi/FileClass.hpp"

namespace Varn::mi {

class VarnModuleFile final : public FileClass<::Varn::VarnModuleFile> {
 public:
  using FileClass::FileClass;

  void define() override {
    using F = ::Varn::VarnModuleFile;
    addFileMembers();
    addSectionGetter("getIncludesSection", &F::kobo_getIncludesSection);
    addSectionGetter("getTypedefsSection", &F::kobo_getTypedefsSection);
    addSectionGetter("getExternFunctionsSection", &F::kobo_getExternFunctionsSection);
    addSectionGetter("getExternDataSection", &F::kobo_getExternDataSection);
    addSectionGetter("getFunctionPrototypesSection", &F::kobo_getFunctionPrototypesSection);
    addSectionGetter("getDeclarationsSection", &F::kobo_getDeclarationsSection);
    addSectionGetter("getDefinesSection", &F::kobo_getDefinesSection);
    addSectionGetter("getFunctionsSection", &F::kobo_getFunctionsSection);
    addSectionGetter("getForwardDeclarationsSection", &F::kobo_getForwardDeclarationsSection);
    addSectionGetter("getDocumentationSection", &F::kobo_getDocumentationSection);
  }
};

}  // namespace Varn::mi

#endif
