#ifndef ORBEL_CHARACTERARRAY_HPP
#define ORBEL_CHARACTERARRAY_HPP

#include <cstddef>
#include <string>
#include <variant>

#include <orbel/Export.hpp>

namespace orbel {

// A row of characters, made from 8-bit or from 16-bit text and read back as either. Text that is
// read in the width it was made from comes back unchanged; otherwise it is converted (Text.hpp).
class ORBEL_EXPORT CharacterArray {
 public:
  CharacterArray() = default;
  explicit CharacterArray(std::string text) : text_(std::move(text)) {}
  explicit CharacterArray(std::u16string text) : text_(std::move(text)) {}
  // The copy of std::variant has undefined behaviour where that of its text finds no memory
  // (libstdc++ 12); its assignment copies the text first.
  CharacterArray(const CharacterArray& source) : CharacterArray() { text_ = source.text_; }
  CharacterArray(CharacterArray&&) noexcept = default;
  CharacterArray& operator=(const CharacterArray&) = default;
  CharacterArray& operator=(CharacterArray&&) noexcept = default;
  ~CharacterArray() = default;

  std::string toText() const;
  std::u16string toText16() const;

  // The 8-bit text itself when the array was made from 8-bit text, else null. Valid until the array
  // is changed or destroyed.
  const std::string* text() const { return std::get_if<std::string>(&text_); }

  // In characters of the text that it was made from.
  std::size_t size() const;

  // Arrays are equal when their 8-bit texts are.
  friend ORBEL_EXPORT bool operator==(const CharacterArray& left, const CharacterArray& right);
  friend bool operator!=(const CharacterArray& left, const CharacterArray& right) {
    return !(left == right);
  }

 private:
  std::variant<std::string, std::u16string> text_;
};

}  // namespace orbel

#endif
