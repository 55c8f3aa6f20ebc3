#ifndef ORBEL_OBJECTARRAY_HPP
#define ORBEL_OBJECTARRAY_HPP

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include <orbel/Handle.hpp>

namespace orbel {

// A row of object handles with a declared class. A heterogeneous array holds objects of different
// subclasses of it, each element keeping its own class.
class ObjectArray {
 public:
  // 1-by-N, N possibly 0. Not heterogeneous yet.
  ObjectArray(std::string className, std::vector<Handle> elements)
      : className_(std::move(className)), elements_(std::move(elements)), rows_(1) {}

  // 0-by-0: the result for no object.
  static ObjectArray none(std::string className) {
    ObjectArray array(std::move(className), {});
    array.rows_ = 0;
    return array;
  }

  // Qualified with its package.
  const std::string& className() const { return className_; }
  const std::vector<Handle>& elements() const { return elements_; }
  std::size_t rows() const { return rows_; }
  std::size_t columns() const { return elements_.size(); }
  bool isHeterogeneous() const { return heterogeneous_; }
  void markHeterogeneous() { heterogeneous_ = true; }

  friend bool operator==(const ObjectArray& left, const ObjectArray& right) {
    return left.className_ == right.className_ && left.elements_ == right.elements_ &&
           left.rows_ == right.rows_ && left.heterogeneous_ == right.heterogeneous_;
  }

 private:
  std::string className_;
  std::vector<Handle> elements_;
  std::size_t rows_;
  bool heterogeneous_ = false;
};

}  // namespace orbel

#endif
