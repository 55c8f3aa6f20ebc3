#ifndef VARN_HOST_MI_FUNCTIONSSECTION_HPP
#define VARN_HOST_MI_FUNCTIONSSECTION_HPP

#include <orbel/IndexGuard.hpp>
#include <varn/FunctionsSection.hpp>

#include "host/mi/ExposedClass.hpp"

namespace Varn::mi {

class FunctionsSection final : public ExposedClass<::Varn::FunctionsSection> {
 public:
  using ExposedClass::ExposedClass;

  void define() override {
    using S = ::Varn::FunctionsSection;
    using orbel::oneBasedIndex;
    addSuperclass("Varn.FileSection", true);
    addMethod("addFunction", {"void", "Varn.FunctionsSection", "char", "char"}, &S::addFunction);
    addMethod("getNumberOfFunctions", {"uint32 scalar", "Varn.FunctionsSection"},
              &S::getNumberOfFunctions);
    addMethod("getFunction", {"char", "Varn.FunctionsSection", "uint32 scalar"},
              &S::kobo_getFunction, oneBasedIndex(&S::getNumberOfFunctions));
    addMethod("getFunctionName", {"char", "Varn.FunctionsSection", "uint32 scalar"},
              &S::kobo_getFunctionName, oneBasedIndex(&S::getNumberOfFunctionNames));
    addConstructor<>({});
  }
};

}  // namespace Varn::mi

#endif
