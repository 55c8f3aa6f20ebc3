#ifndef ORV_MODELS_JSONSTREAM_HPP
#define ORV_MODELS_JSONSTREAM_HPP

#include <array>
#include <cstddef>
#include <cstring>
#include <string>

#include <rapidjson/reader.h>

namespace orv {

// A text for the parser, which reads strings in place: a string without escapes is not copied, but
// is where it was written, behind its quote. Any other is in `unescaped`, which is empty otherwise.
//
// The parser takes one character of a string after the other, and has the encoding check each.
// CheckedUtf8 takes all that need no look instead.
class JsonStream {
 public:
  using Ch = char;

  // `text` ends with a NUL. It and `unescaped` must outlive the stream.
  JsonStream(const char* text, std::string& unescaped)
      : begin_(text), next_(text), string_(text), unescaped_(&unescaped) {}

  // NOLINTBEGIN(readability-identifier-naming): the names that the parser calls
  char Peek() const { return *next_; }
  char Take() { return *next_++; }
  std::size_t Tell() const { return static_cast<std::size_t>(next_ - begin_); }

  char* PutBegin() {
    string_ = next_;
    unescaped_->clear();
    return nullptr;
  }
  void Put(char character) {
    // The parser ends strings by a NUL.
    if (character != '\0' || next_[-1] != '"') putUnescaped(character);
  }
  // The size with that NUL.
  std::size_t PutEnd(const char* /*begin*/) const {
    return unescaped_->empty() ? static_cast<std::size_t>(next_ - string_) : unescaped_->size() + 1;
  }
  // NOLINTEND(readability-identifier-naming)

  void skipWhitespace() {
    while (*next_ == ' ' || *next_ == '\n' || *next_ == '\r' || *next_ == '\t') ++next_;
  }

  // Takes the characters of a string up to a quote, an escape or a control character.
  void takePlain() {
    const char* begin = next_;
    while (plain[static_cast<unsigned char>(*next_)]) ++next_;
    if (!unescaped_->empty()) unescaped_->append(begin, next_);
  }

 private:
  void putUnescaped(char character) {
    if (unescaped_->empty()) unescaped_->assign(string_, std::strchr(string_, '\\'));
    unescaped_->push_back(character);
  }

  static constexpr std::array<bool, 256> plain = [] {
    std::array<bool, 256> table{};
    for (std::size_t i = 0x20; i < table.size(); ++i) table[i] = i != '"' && i != '\\';
    return table;
  }();

  const char* begin_;
  const char* next_;
  const char* string_;  // the first character of the string at hand
  std::string* unescaped_;
};

// UTF-8 that was checked before.
struct CheckedUtf8 : rapidjson::UTF8<> {
  // NOLINTNEXTLINE(readability-identifier-naming): the name that the parser calls
  template <typename Input, typename Output>
  static bool Validate(Input& input, Output& /*output*/) {
    input.takePlain();
    return true;
  }
};

}  // namespace orv

namespace rapidjson {

// Lets the parser have the stream in registers.
template <>
struct StreamTraits<orv::JsonStream> {
  enum { copyOptimization = 1 };
};

// Between tokens, copies do not pay.
template <>
inline void SkipWhitespace(orv::JsonStream& stream) {
  stream.skipWhitespace();
}

}  // namespace rapidjson

#endif
