#ifndef ORBEL_SRC_HOSTOBJECT_HPP
#define ORBEL_SRC_HOSTOBJECT_HPP

#include <array>
#include <cstddef>

#include <orbel/Arguments.hpp>
#include <orbel/Constructor.hpp>
#include <orbel/Handle.hpp>

namespace orbel {

// An object that a script made, with room for the library's object, which it owns.
class HostObject final : public ObjectIdentity {
 public:
  HostObject(const Constructor& constructor, Arguments arguments);
  HostObject(const HostObject&) = delete;
  HostObject& operator=(const HostObject&) = delete;
  ~HostObject() override;

  bool ownsObject() const override { return true; }
  void destroyObject() noexcept override;

 private:
  bool holds(const HandleBase& object) const;

  // Enough for small objects; larger ones are allocated on the heap.
  alignas(std::max_align_t) std::array<std::byte, 256> storage_;
};

}  // namespace orbel

#endif
