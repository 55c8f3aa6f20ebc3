#include <cctype>
#include <utility>

#include <rapidjson/error/en.h>
#include <rapidjson/reader.h>

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
  Events(std::string_view text, const json::StringStream& stream, ModelBuilder& builder)
      : text_(text), lines_(text), stream_(stream), builder_(builder) {}

  // NOLINTBEGIN(readability-identifier-naming): the names that the parser calls
  bool Null() { return scalar(py::none()); }
  bool Bool(bool value) { return scalar(py::bool_(value)); }
  bool Int(int value) { return scalar(py::int_(value)); }
  bool Uint(unsigned value) { return scalar(py::int_(value)); }
  bool Int64(std::int64_t value) { return scalar(py::int_(value)); }
  bool Uint64(std::uint64_t value) { return scalar(py::int_(value)); }
  // Also an integer that is too large for those. The value is not exact: the text is.
  bool Double(double /*value*/) {
    const std::string_view rest = text_.substr(stream_.Tell());
    const std::string_view number = rest.substr(0, numberSize(rest));
    if (number.find_first_of(".eE") == std::string_view::npos) {
      builder_.integer(number, here());
    } else {
      builder_.decimal(std::string(number), here());
    }
    return true;
  }
  bool String(const char* text, json::SizeType size, bool /*copy*/) {
    const std::string_view rest = text_.substr(stream_.Tell());
    if (rest[0] == '"') {
      builder_.text({text, size}, here());
    } else {
      builder_.integer(rest.substr(0, numberSize(rest)), here());
    }
    return true;
  }
  bool Key(const char* name, json::SizeType size, bool /*copy*/) {
    if (text_[stream_.Tell()] != '"') throw ModelError(here(), "missing a name for object member");
    builder_.key({name, size}, here());
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
  const json::StringStream& stream_;
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
  json::StringStream stream(quoted.empty() ? text.data() : quoted.c_str());
  Events events(text, stream, builder);
  json::Reader reader;
  const json::ParseResult result = reader.Parse(stream, events);
  if (result.IsError()) {
    throw ModelError(LineCounter(text).at(result.Offset()), reasonOf(result.Code()));
  }
}

}  // namespace orv
