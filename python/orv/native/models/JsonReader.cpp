#include <cctype>
#include <utility>

#include <rapidjson/error/en.h>
#include <rapidjson/reader.h>

#include "python/orv/native/models/JsonStream.hpp"
#include "python/orv/native/models/Readers.hpp"
#include "python/orv/native/models/SourceText.hpp"

namespace orv {
namespace {

namespace json = rapidjson;
namespace py = pybind11;

// The parser takes integers for too large that no floating-point number can hold. Those with more
// digits than this are hidden from it.
constexpr std::size_t longInteger = 300;

bool isDigit(char character) { return character >= '0' && character <= '9'; }

// The size of the number that `rest` begins with.
std::size_t numberSize(std::string_view rest) {
  std::size_t size = rest[0] == '-' ? 1 : 0;
  const auto skipDigits = [&] {
    while (size < rest.size() && isDigit(rest[size])) ++size;
  };
  const auto continues = [&](std::string_view characters) {
    return rest.substr(size, 1).find_first_of(characters) == 0;
  };
  skipDigits();
  if (continues(".")) {
    ++size;
    skipDigits();
  }
  if (continues("eE")) {
    ++size;
    if (continues("+-")) ++size;
    skipDigits();
  }
  return size;
}

// Whether there may be a long integer: a number that is one has all digits between two of the
// places that are looked at.
bool mayHaveLongInteger(std::string_view text) {
  constexpr std::size_t step = longInteger / 2;
  for (std::size_t i = step; i < text.size(); i += step) {
    std::size_t begin = i;
    while (begin != i - step && isDigit(text[begin])) --begin;
    if (begin == i - step) return true;
  }
  return false;
}

bool isLongInteger(std::string_view number) {
  return number.size() > longInteger && number.find_first_of(".eE") == std::string_view::npos &&
         number[0] != '0' && number.substr(0, 2) != "-0";
}

// The text with quotes in place of the first and last characters of long integers.
std::string withQuotedIntegers(std::string_view text) {
  std::string quoted(text);
  bool isInString = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '"') isInString = !isInString;
    if (isInString) {
      if (text[i] == '\\') ++i;
      continue;
    }
    if (!isDigit(text[i]) && text[i] != '-') continue;
    const std::size_t size = numberSize(text.substr(i));
    if (isLongInteger(text.substr(i, size))) quoted[i] = quoted[i + size - 1] = '"';
    i += size - 1;
  }
  return quoted;
}

// Passes the parser's events on. While a text or a number arrives, the stream is at its first
// character; `text` is what it reads but for long integers, which it takes for strings.
class Events {
 public:
  Events(std::string_view text, const JsonStream& stream, const std::string& unescaped,
         ModelBuilder& builder)
      : text_(text), lines_(text), stream_(stream), unescaped_(unescaped), builder_(builder) {}

  // NOLINTBEGIN(readability-identifier-naming): the names that the parser calls
  bool Null() { return scalar(py::none()); }
  bool Bool(bool value) { return scalar(py::bool_(value)); }
  bool Int(int value) { return scalar(py::int_(value)); }
  bool Uint(unsigned value) { return scalar(py::int_(value)); }
  bool Int64(std::int64_t value) { return scalar(py::int_(value)); }
  bool Uint64(std::uint64_t value) { return scalar(py::int_(value)); }
  // Also an integer that is too large for those. The value is not exact: the text is.
  bool Double(double /*value*/) {
    const std::string_view digits = number();
    if (digits.find_first_of(".eE") == std::string_view::npos) {
      builder_.integer(digits, here());
    } else {
      builder_.decimal(std::string(digits), here());
    }
    return true;
  }
  bool String(const char* /*text*/, json::SizeType size, bool /*copy*/) {
    if (isQuoted()) {
      builder_.text(string(size), here());
    } else {
      builder_.integer(number(), here());
    }
    return true;
  }
  bool Key(const char* /*name*/, json::SizeType size, bool /*copy*/) {
    if (!isQuoted()) throw ModelError(here(), "missing a name for object member");
    builder_.key(string(size), here());
    return true;
  }
  bool StartObject() {
    builder_.beginDictionary(before());
    return true;
  }
  bool EndObject(json::SizeType /*count*/) { return end(); }
  bool StartArray() {
    builder_.beginList(before());
    return true;
  }
  bool EndArray(json::SizeType /*count*/) { return end(); }
  // Never called, but part of the parser's interface.
  bool RawNumber(const char* /*digits*/, json::SizeType /*size*/, bool /*copy*/) { return false; }
  // NOLINTEND(readability-identifier-naming)

 private:
  Location here() { return lines_.at(stream_.Tell()); }
  // A bracket has been read when its event arrives.
  Location before() { return lines_.at(stream_.Tell() - 1); }
  bool isQuoted() const { return text_[stream_.Tell()] == '"'; }
  std::string_view number() const {
    const std::string_view rest = text_.substr(stream_.Tell());
    return rest.substr(0, numberSize(rest));
  }
  // The string that has just been read.
  std::string_view string(std::size_t size) const {
    if (!unescaped_.empty()) return unescaped_;
    return {text_.data() + stream_.Tell() + 1, size};
  }
  bool scalar(py::object value) {
    builder_.value(std::move(value), here());
    return true;
  }
  bool end() {
    builder_.end();
    return true;
  }

  std::string_view text_;
  LineCounter lines_;
  const JsonStream& stream_;
  const std::string& unescaped_;
  ModelBuilder& builder_;
};

std::string reasonOf(json::ParseErrorCode code) {
  std::string reason = json::GetParseError_En(code);
  if (!reason.empty() && reason.back() == '.') reason.pop_back();
  if (!reason.empty()) reason[0] = static_cast<char>(std::tolower(reason[0]));
  return reason;
}

}  // namespace

void readJson(std::string_view text, ModelBuilder& builder) {
  const std::string quoted = mayHaveLongInteger(text) ? withQuotedIntegers(text) : std::string();
  std::string unescaped;
  JsonStream stream(quoted.empty() ? text.data() : quoted.c_str(), unescaped);
  Events events(text, stream, unescaped, builder);
  json::GenericReader<CheckedUtf8, CheckedUtf8> reader;
  constexpr unsigned flags = json::kParseInsituFlag | json::kParseValidateEncodingFlag;
  const json::ParseResult result = reader.Parse<flags>(stream, events);
  if (result.IsError()) {
    throw ModelError(LineCounter(text).at(result.Offset()), reasonOf(result.Code()));
  }
}

}  // namespace orv
