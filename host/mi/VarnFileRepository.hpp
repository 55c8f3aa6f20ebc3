#ifndef VARN_HOST_MI_VARNFILEREPOSITORY_HPP
#define VARN_HOST_MI_VARNFILEREPOSITORY_HPP

#include <varn/VarnFileRepository.hpp>

#include "host/mi/ExposedClass.hpp"

namespace Varn::mi {

class VarnFileRepository final : public ExposedClass<::Varn::VarnFileRepository> {
 public:
  using ExposedClass::ExposedClass;

  void define() override {
    using R = ::Varn::VarnFileRepository;
    addHeterogeneousMixin();
    addObjectProperty("FileList", "Varn.VarnFile", &R::getFileList_kobo);
    addMethod("createDataTypesFile", {"Varn.VarnDataTypesFile", "Varn.VarnFileRepository", "char"},
              &R::createDataTypesFile);
    addMethod("createGenericFile", {"Varn.VarnGenericFile", "Varn.VarnFileRepository", "char"},
              &R::createGenericFile);
    addMethod("findFileByName", {"Varn.VarnFile", "Varn.VarnFileRepository", "char"},
              &R::findFileByName);
    addConstructor<>({});
  }
};

}  // namespace Varn::mi

#endif
