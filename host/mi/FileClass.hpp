#ifndef VARN_HOST_MI_FILECLASS_HPP
#define VARN_HOST_MI_FILECLASS_HPP

#include <string>

#include <varn/FileSection.hpp>

#include "host/mi/ExposedClass.hpp"

namespace Varn::mi {

// Base of the definitions of file classes with a constructor: they derive from "Varn.VarnFile", are
// made from a name, and have getters of sections.
template <class T>
class FileClass : public ExposedClass<T> {
 public:
  using ExposedClass<T>::ExposedClass;

 protected:
  using SectionGetter = ::Varn::FileSection& (T::*)();

  void addFileMembers() {
    this->addSuperclass("Varn.VarnFile", true);
    this->template addConstructor<std::string>({"char"});
  }

  void addSectionGetter(const char* name, SectionGetter getter) {
    this->addMethod(name, {"Varn.FileSection", "Varn." + this->getName()}, getter);
  }
};

}  // namespace Varn::mi

#endif
