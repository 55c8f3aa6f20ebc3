#ifndef ORBEL_CONSTRUCTOR_HPP
#define ORBEL_CONSTRUCTOR_HPP

#include <cstddef>
#include <string>
#include <vector>

#include <orbel/Arguments.hpp>
#include <orbel/Export.hpp>
#include <orbel/Member.hpp>

namespace orbel {

// Memory in a host object for the library's object. It outlives that object.
struct ObjectStorage {
  void* memory;
  std::size_t size;  // in bytes; aligned for any fundamental type
};

// The constructor that scripts call.
class ORBEL_EXPORT Constructor : public Member {
 public:
  Constructor(const ClassInfo& owner, std::vector<std::string> signature);

  // The type words of the arguments.
  const std::vector<std::string>& signature() const { return signature_; }

  // A new object: in `storage` when it is large enough, else on the heap. The caller owns it: it
  // calls the destructor of an object in storage, and deletes one on the heap. Throws
  // "WrongArgumentCount" or "WrongArgumentClass", and propagates what the C++ constructor throws.
  HandleBase* construct(ObjectStorage storage, Arguments arguments) const;

 private:
  virtual HandleBase* make(ObjectStorage storage, Arguments arguments) const = 0;

  std::vector<std::string> signature_;
};

}  // namespace orbel

#endif
