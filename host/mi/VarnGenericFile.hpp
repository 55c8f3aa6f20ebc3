#ifndef VARN_HOST_MI_VARNGENERICFILE_HPP
#define VARN_HOST_MI_VARNGENERICFILE_HPP

#include <varn/VarnGenericFile.hpp>

#include "host/mi/FileClass.hpp"

namespace Varn::mi {

class VarnGenericFile final : public FileClass<::Varn::VarnGenericFile> {
 public:
  using FileClass::FileClass;

  void define() override {
    using F = ::Varn::VarnGenericFile;
    addFileMembers();
    addSectionGetter("getIncludesSection", &F::kobo_getIncludesSection);
    addSectionGetter("getDefinesSection", &F::kobo_getDefinesSection);
    addSectionGetter("getForwardDeclarationsSection", &F::kobo_getForwardDeclarationsSection);
    addSectionGetter("getTypedefsSection", &F::kobo_getTypedefsSection);
    addSectionGetter("getEnumsSection", &F::kobo_getEnumsSection);
    addSectionGetter("getDefinitionsSection", &F::kobo_getDefinitionsSection);
    addSectionGetter("getExternDataSection", &F::kobo_getExternDataSection);
    addSectionGetter("getExternFunctionsSection", &F::kobo_getExternFunctionsSection);
    addSectionGetter("getFunctionPrototypesSection", &F::kobo_getFunctionPrototypesSection);
    addSectionGetter("getDeclarationsSection", &F::kobo_getDeclarationsSection);
    addSectionGetter("getFunctionsSection", &F::kobo_getFunctionsSection);
    addSectionGetter("getCompilerErrorsSection", &F::kobo_getCompilerErrorsSection);
    addSectionGetter("getCompilerWarningsSection", &F::kobo_getCompilerWarningsSection);
    addSectionGetter("getDocumentationSection", &F::kobo_getDocumentationSection);
  }
};

}  // namespace Varn::mi

#endif
