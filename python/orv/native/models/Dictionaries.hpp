#ifndef ORV_MODELS_DICTIONARIES_HPP
#define ORV_MODELS_DICTIONARIES_HPP

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include <pybind11/pybind11.h>

namespace orv {

// Makes the dictionaries of a model. Those with the same keys in the same order share them, as the
// attributes of a class's instances do: each takes the room of its values alone, until it gets a
// key that the others do not have.
class Dictionaries {
 public:
  // A dictionary of `count` entries; smaller than that when keys are equal. `fingerprint` is that
  // of the keys, which are shared only where they are the same objects.
  pybind11::object make(const pybind11::object* keys, const pybind11::object* values,
                        std::size_t count, std::uint32_t fingerprint);

 private:
  // Keys that were seen, and once they were seen twice, a dictionary to copy.
  struct Shape {
    std::vector<pybind11::object> keys;
    pybind11::object pattern;
  };

  // By fingerprint. A shape that has a pattern stays.
  std::array<Shape, 256> shapes_;
};

}  // namespace orv

#endif
