#ifndef ORBEL_NAME_HPP
#define ORBEL_NAME_HPP

#include <string>
#include <utility>

namespace orbel {

// The identifier of a package. Case-sensitive.
class Name {
 public:
  explicit Name(std::string text) : text_(std::move(text)) {}

  const std::string& text() const { return text_; }

  friend bool operator==(const Name& left, const Name& right) { return left.text_ == right.text_; }
  friend bool operator<(const Name& left, const Name& right) { return left.text_ < right.text_; }

 private:
  std::string text_;
};

}  // namespace orbel

#endif
