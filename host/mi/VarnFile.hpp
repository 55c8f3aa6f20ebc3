#ifndef VARN_HOST_MI_VARNFILE_HPP
#define VARN_HOST_MI_VARNFILE_HPP

#include <string>

#include <varn/VarnFile.hpp>

#include "host/mi/ExposedClass.hpp"

namespace Varn::mi {

class VarnFile final : public ExposedClass<::Varn::VarnFile> {
 public:
  using ExposedClass::ExposedClass;

  bool isAbstract() const override { return true; }

  void define() override {
    using F = ::Varn::VarnFile;
    addHeterogeneousMixin();
    addProperty("Name", &F::getName);
    addProperty("BaseName", &F::getBaseName);
    addProperty("NameWithoutExtension", &F::getNameWithoutExtension);
    addProperty("Type", &F::getType, &F::setType);
    addProperty("Creator", &F::getCreator, &F::setCreator);
    addProperty("SystemsInFile", &F::getSystemsInFile, &F::setSystemsInFile);
    addProperty("Filtered", &F::getFiltered, &F::setFiltered);
    addProperty("IsEmpty", &F::isEmpty);
    addProperty("WrittenToDisk", &F::isWrittenToDisk, &F::setIsWrittenToDisk);
    addProperty("Indent", &F::getIndent, &F::setIndent);
    addProperty("Shared", &F::isShared, &F::setIsShared);
    addProperty("SharedType", &F::getSharedType, &F::setSharedType);
    addProperty("DeferredIncludeCoderTypes", &F::getDeferredIncludeCoderTypes,
                &F::setDeferredIncludeCoderTypes);
    addProperty("CodeTemplate", &F::getCodeTemplate, &F::setCodeTemplate);
    addProperty("OutputDirectory", &F::getOutputDirectory, &F::setOutputDirectory);
    addProperty("Group", &F::getGroup, &F::setGroup);
    addProperty("DefinedMacro", &F::getDefinedMacro);
    addMethod("getFileSection", {"Varn.FileSection", "Varn.VarnFile", "char vector"},
              [](F& file, const std::string& kind) -> ::Varn::FileSection& {
                return file.kobo_getFileSection(getSectionKindFromName(kind));
              });
    addMethod("hasSection", {"logical scalar", "Varn.VarnFile", "char vector"},
              [](const F& file, const std::string& kind) {
                return file.hasSection(getSectionKindFromName(kind));
              });
  }
};

}  // namespace Varn::mi

#endif
