#ifndef ORBEL_CELLARRAY_HPP
#define ORBEL_CELLARRAY_HPP

#include <string>
#include <vector>

#include <orbel/Export.hpp>

namespace orbel {

class Value;

// A column of values of any class.
class ORBEL_EXPORT CellArray {
 public:
  CellArray() = default;
  explicit CellArray(std::vector<Value> elements);
  // One character array for each text.
  explicit CellArray(const std::vector<std::string>& texts);

  const std::vector<Value>& elements() const { return elements_; }

  friend ORBEL_EXPORT bool operator==(const CellArray& left, const CellArray& right);

 private:
  std::vector<Value> elements_;
};

}  // namespace orbel

#endif
