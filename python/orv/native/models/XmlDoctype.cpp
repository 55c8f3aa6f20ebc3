#include "python/orv/native/models/XmlDoctype.hpp"

namespace orv {
namespace {

constexpr std::string_view blank = " \t\r\n";

bool startsWith(std::string_view text, std::string_view beginning) {
  return text.substr(0, beginning.size()) == beginning;
}

// Walks over the beginning of a document. Behind its end, nothing is found any more.
class Prolog {
 public:
  explicit Prolog(std::string_view text) : text_(text) {}

  std::size_t offset() const { return offset_; }

  bool take(std::string_view expected) {
    if (!startsWith(rest(), expected)) return false;
    offset_ += expected.size();
    return true;
  }
  void skipTo(std::size_t found, std::size_t size) {
    offset_ = found == std::string_view::npos ? text_.size() : offset_ + found + size;
  }
  void skipBlanks() { skipTo(rest().find_first_not_of(blank), 0); }
  void skipPast(std::string_view end) { skipTo(rest().find(end), end.size()); }
  void skipName() { skipTo(rest().find_first_of(" \t\r\n[>"), 0); }
  void skipLiteral() {
    skipBlanks();
    for (const std::string_view quote : {"\"", "'"}) {
      if (take(quote)) return skipPast(quote);
    }
  }

 private:
  std::string_view rest() const { return text_.substr(offset_); }

  std::string_view text_;
  std::size_t offset_ = 0;
};

}  // namespace

ExternalId externalIdOf(std::string_view text) {
  Prolog prolog(text);
  prolog.take("\xEF\xBB\xBF");
  for (;;) {
    prolog.skipBlanks();
    if (prolog.take("<?")) {
      prolog.skipPast("?>");
    } else if (prolog.take("<!--")) {
      prolog.skipPast("-->");
    } else {
      break;
    }
  }
  if (!prolog.take("<!DOCTYPE")) return {};
  prolog.skipBlanks();
  prolog.skipName();
  prolog.skipBlanks();
  const std::size_t begin = prolog.offset();
  if (prolog.take("PUBLIC")) {
    prolog.skipLiteral();
  } else if (!prolog.take("SYSTEM")) {
    return {};
  }
  prolog.skipLiteral();
  std::string blanks(text.substr(begin, prolog.offset() - begin));
  for (char& character : blanks) {
    if (blank.find(character) == std::string_view::npos) character = ' ';
  }
  return {begin, blanks};
}

}  // namespace orv
