#ifndef ORBEL_STRINGARRAY_HPP
#define ORBEL_STRINGARRAY_HPP

#include <string>
#include <utility>
#include <vector>

namespace orbel {

// A column of 8-bit texts.
class StringArray {
 public:
  StringArray() = default;
  explicit StringArray(std::vector<std::string> elements) : elements_(std::move(elements)) {}

  const std::vector<std::string>& elements() const { return elements_; }

  friend bool operator==(const StringArray& left, const StringArray& right) {
    return left.elements_ == right.elements_;
  }

 private:
  std::vector<std::string> elements_;
};

}  // namespace orbel

#endif
