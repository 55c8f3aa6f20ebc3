#include <algorithm>
#include <string>
#include <unordered_set>

#include "python/orv/native/models/Readers.hpp"
#include "python/orv/native/models/SourceText.hpp"

namespace orv {
namespace {

// Takes a text apart into rows of fields.
class CsvRows {
 public:
  explicit CsvRows(std::string_view text) : text_(text), lines_(text) {}

  // The next row that is not empty, its fields in `fields`; false at the end.
  bool next(std::vector<std::string>& fields) {
    while (offset_ < text_.size() && endsLine()) skipLineEnd();
    if (offset_ == text_.size()) return false;
    begin_ = offset_;
    fields.clear();
    do {
      fields.push_back(current() == '"' ? quotedField() : plainField());
    } while (takeComma());
    if (offset_ < text_.size() && !endsLine()) {
      throw ModelError(lines_.at(offset_), "expected a comma or a new line behind the quotes");
    }
    return true;
  }

  // Where the row that next() gave begins.
  Location location() { return lines_.at(begin_); }

 private:
  // A NUL at the end of the text, which is followed by one.
  char current() const { return text_.data()[offset_]; }
  bool endsLine() const {
    return current() == '\n' || (current() == '\r' && text_.data()[offset_ + 1] == '\n');
  }
  void skipLineEnd() { offset_ += current() == '\r' ? 2U : 1U; }
  bool takeComma() {
    if (current() != ',') return false;
    ++offset_;
    return true;
  }

  std::string plainField() {
    const std::size_t begin = offset_;
    while (offset_ < text_.size() && current() != ',' && !endsLine()) ++offset_;
    return std::string(text_.substr(begin, offset_ - begin));
  }

  std::string quotedField() {
    const std::size_t opening = offset_++;
    std::string field;
    for (;;) {
      const std::size_t quote = text_.find('"', offset_);
      if (quote == std::string_view::npos) {
        throw ModelError(lines_.at(opening), "the quotes that open here are never closed");
      }
      field.append(text_, offset_, quote - offset_);
      offset_ = quote + 1;
      if (current() != '"') return field;
      field += '"';
      ++offset_;
    }
  }

  std::string_view text_;
  LineCounter lines_;
  std::size_t offset_ = 0;
  std::size_t begin_ = 0;
};

void checkNames(const std::vector<std::string>& names, Location location) {
  std::unordered_set<std::string_view> seen;
  for (const std::string& name : names) {
    if (name.empty()) throw ModelError(location, "a column has no name");
    if (!seen.insert(name).second) {
      throw ModelError(location, "the column \"" + name + "\" is given twice");
    }
  }
}

}  // namespace

void readCsv(std::string_view text, ModelBuilder& builder) {
  CsvRows rows(text);
  std::vector<std::string> names;
  if (!rows.next(names)) throw ModelError({1, 1}, "expected a line with the names of the columns");
  checkNames(names, rows.location());
  builder.beginList(rows.location());
  std::vector<std::string> fields;
  while (rows.next(fields)) {
    const Location location = rows.location();
    if (fields.size() != names.size()) {
      throw ModelError(location, "expected " + std::to_string(names.size()) + " fields, got " +
                                     std::to_string(fields.size()));
    }
    builder.beginDictionary(location);
    for (std::size_t i = 0; i < names.size(); ++i) {
      builder.key(names[i], location);
      builder.text(fields[i], location);
    }
    builder.end();
  }
  builder.end();
}

}  // namespace orv
