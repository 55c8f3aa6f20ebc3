#ifndef VARN_HOST_MI_INCLUDESSECTION_HPP
#define VARN_HOST_MI_INCLUDESSECTION_HPP

#include <varn/IncludesSection.hpp>

#include "host/mi/ExposedClass.hpp"

namespace Varn::mi {

class IncludesSection final : public ExposedClass<::Varn::IncludesSection> {
 public:
  using ExposedClass::ExposedClass;

  void define() override {
    using S = ::Varn::IncludesSection;
    addSuperclass("Varn.FileSection", true);
    addMethod("addInclude", {"void", "Varn.IncludesSection", "char", "logical scalar"},
              &S::addInclude);
    addProperty("RequiredIncludes", &S::getRequiredIncludes, &S::setRequiredIncludes);
    addProperty("UtilityIncludes", &S::getUtilityIncludes, &S::setUtilityIncludes);
    addConstructor<>({});
  }
};

}  // namespace Varn::mi

#endif
