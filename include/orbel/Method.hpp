#ifndef ORBEL_METHOD_HPP
#define ORBEL_METHOD_HPP

#include <string>

#include <orbel/Arguments.hpp>
#include <orbel/Export.hpp>
#include <orbel/Member.hpp>
#include <orbel/Signature.hpp>

namespace orbel {

// A method as scripts call it. Callers look a method up once and keep it.
class ORBEL_EXPORT Method : public Member {
 public:
  Method(const ClassInfo& owner, std::string name, Signature signature);

  const Signature& signature() const { return signature_; }

  // Calls the method on the object in `arguments[0]` with the further arguments. There is always
  // one result, whether or not the caller asked for one: a missing value for "void", an empty array
  // of the declared class for no object.
  //
  // Throws "WrongObjectClass", "InvalidHandle", "WrongArgumentCount" or "WrongArgumentClass" before
  // anything happens, and propagates what the member itself throws.
  Value invoke(Arguments arguments) const;

 private:
  // `arguments` are those of the signature in number, the object first.
  virtual Value call(HandleBase& object, Arguments arguments) const = 0;

  Signature signature_;
};

}  // namespace orbel

#endif
