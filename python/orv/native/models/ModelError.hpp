#ifndef ORV_MODELS_MODELERROR_HPP
#define ORV_MODELS_MODELERROR_HPP

#include <cstdint>
#include <stdexcept>
#include <string>

namespace orv {

// A place in a model file. Lines and columns count from 1, columns in bytes; 0 means unknown.
struct Location {
  std::uint32_t line = 0;
  std::uint32_t column = 0;
};

// Why a model was not read. The text names neither the file nor the location.
class ModelError : public std::runtime_error {
 public:
  ModelError(Location location, const std::string& reason)
      : std::runtime_error(reason), location_(location) {}

  Location location() const { return location_; }

 private:
  Location location_;
};

// The depth beyond which a model of any format is refused: templates walk models by macros that
// call themselves.
constexpr std::size_t deepestModel = 499;

}  // namespace orv

#endif
