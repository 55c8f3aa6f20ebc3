#ifndef VARN_HOST_MI_EXPOSEDCLASS_HPP
#define VARN_HOST_MI_EXPOSEDCLASS_HPP

#include <orbel/HandleClass.hpp>

namespace Varn::mi {

// Base of the class definitions of this package. A repository or a file owns their objects; scripts
// hold handles to them.
template <class T>
class ExposedClass : public orbel::HandleClass<T> {
 public:
  using orbel::HandleClass<T>::HandleClass;

  bool exposesLibraryObjects() const override { return true; }

 protected:
  // The class that a hierarchy of this package starts from: arrays may mix its subclasses.
  void addHeterogeneousMixin() { this->addSuperclass("orbel.mixin.Heterogeneous", false); }
};

}  // namespace Varn::mi

#endif
