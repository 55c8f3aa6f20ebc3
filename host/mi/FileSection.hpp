#ifndef VARN_HOST_MI_FILESECTION_HPP
#define VARN_HOST_MI_FILESECTION_HPP

#include <varn/FileSection.hpp>

#include "host/mi/ExposedClass.hpp"

namespace Varn::mi {

class FileSection final : public ExposedClass<::Varn::FileSection> {
 public:
  using ExposedClass::ExposedClass;

  void define() override {
    using S = ::Varn::FileSection;
    addHeterogeneousMixin();
    addMethod("isEmpty", {"logical scalar", "Varn.FileSection"}, &S::isEmpty);
    addMethod("getContent", {"char", "Varn.FileSection"}, &S::getContent);
    addMethod("addContent", {"void", "Varn.FileSection", "char"}, &S::addContent);
  }
};

}  // namespace Varn::mi

#endif
