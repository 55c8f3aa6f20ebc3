#ifndef ORV_OUTPUT_GUARD_HPP
#define ORV_OUTPUT_GUARD_HPP

#include <string>
#include <string_view>

namespace orv {

// What keeps the text of a header from being read twice: a macro, or `#pragma once`.
class Guard {
 public:
  // No guard.
  Guard() = default;
  // Throws pybind11::value_error for a macro that is no identifier.
  static Guard ofMacro(std::string macro);
  static Guard pragma();

  // `form` is "pragma", or a macro in which {PATH} becomes the file's path below the output folder
  // without its ending, in upper case, with `_` for each byte that no identifier holds. A macro
  // that would begin with a digit begins with H_.
  static Guard ofForm(std::string_view form, std::string_view path);

  bool exists() const { return isPragma_ || !macro_.empty(); }
  // Empty without a guard and for `#pragma once`.
  const std::string& macro() const { return macro_; }
  // The lines in front of the guarded text and behind it.
  std::string opening() const;
  std::string closing() const;

 private:
  std::string macro_;
  bool isPragma_ = false;
};

}  // namespace orv

#endif
