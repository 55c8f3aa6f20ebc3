#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include <toml++/toml.h>

#include "python/orv/native/models/Readers.hpp"
#include "python/orv/native/models/SourceText.hpp"

namespace orv {
namespace {

namespace py = pybind11;

// Refuses keys whose dots make tables within tables deeper than any model may be: the parser has no
// limit of its own for them, and frees tables level by level. What is no TOML is left to the
// parser.
class DottedKeys {
 public:
  explicit DottedKeys(std::string_view text) : text_(text) {}

  void check() {
    while (offset_ < text_.size()) {
      const char character = text_[offset_];
      if (character == '"' || character == '\'') {
        skipString(character);
      } else if (character == '#') {
        offset_ = std::min(text_.find('\n', offset_), text_.size());
      } else {
        count(character);
        ++offset_;
      }
    }
  }

 private:
  void count(char character) {
    if (character == '.') {
      if (++depth_ <= deepestModel) return;
      throw ModelError(LineCounter(text_).at(offset_),
                       "the model is nested more than " + std::to_string(deepestModel) + " deep");
    }
    if (character == '{' || character == '[') {
      open_.push_back(depth_);
    } else if ((character == '}' || character == ']') && !open_.empty()) {
      depth_ = open_.back();
      open_.pop_back();
    } else if (character == ',' || (character == '\n' && open_.empty())) {
      depth_ = open_.empty() ? 0 : open_.back();
    }
  }

  void skipString(char quote) {
    const std::string three(3, quote);
    const bool isLong = text_.substr(offset_, 3) == three;
    const std::string_view end = std::string_view(three).substr(0, isLong ? 3 : 1);
    offset_ += end.size();
    while (offset_ < text_.size() && text_.substr(offset_, end.size()) != end) {
      if (!isLong && text_[offset_] == '\n') return;
      offset_ += quote == '"' && text_[offset_] == '\\' ? 2U : 1U;
    }
    offset_ = std::min(offset_ + end.size(), text_.size());
  }

  std::string_view text_;
  std::size_t offset_ = 0;
  std::size_t depth_ = 0;          // of the key at hand, in the tables that its line opens
  std::vector<std::size_t> open_;  // that depth before each bracket that is open
};

Location locationOf(const toml::source_region& region) {
  return {region.begin.line, region.begin.column};
}

py::object dateOf(const toml::date& date) {
  return py::module_::import("datetime").attr("date")(date.year, date.month, date.day);
}

py::object timeOf(const toml::time& time) {
  return py::module_::import("datetime")
      .attr("time")(time.hour, time.minute, time.second, time.nanosecond / 1000);
}

py::object dateTimeOf(const toml::date_time& moment) {
  const py::module_ datetime = py::module_::import("datetime");
  py::object zone = py::none();
  if (moment.offset) {
    const py::object offset =
        datetime.attr("timedelta")(py::arg("minutes") = static_cast<int>(moment.offset->minutes));
    zone = datetime.attr("timezone")(offset);
  }
  return datetime.attr("datetime").attr("combine")(dateOf(moment.date), timeOf(moment.time), zone);
}

// Reports a parsed document, the entries of each table in the order of the file.
class TomlWalk {
 public:
  explicit TomlWalk(ModelBuilder& builder) : builder_(builder) {}

  void table(const toml::table& table, Location location) {
    std::vector<std::pair<const toml::key*, const toml::node*>> entries;
    for (const auto& [key, node] : table) entries.emplace_back(&key, &node);
    std::sort(entries.begin(), entries.end(), [](const auto& left, const auto& right) {
      const auto& a = left.first->source().begin;
      const auto& b = right.first->source().begin;
      return a.line != b.line ? a.line < b.line : a.column < b.column;
    });
    builder_.beginDictionary(location);
    for (const auto& [key, node] : entries) {
      const Location keyLocation = locationOf(key->source());
      builder_.key(key->str(), keyLocation);
      value(*node, keyLocation);
    }
    builder_.end();
  }

 private:
  // Where a value has no place of its own, as a table that only dots make, it is where its key is.
  void value(const toml::node& node, Location keyLocation) {
    Location location = locationOf(node.source());
    if (location.line == 0) location = keyLocation;
    switch (node.type()) {
      case toml::node_type::table:
        return table(*node.as_table(), location);
      case toml::node_type::array:
        builder_.beginList(location);
        for (const toml::node& item : *node.as_array()) value(item, location);
        builder_.end();
        return;
      case toml::node_type::string:
        return builder_.text(**node.as_string(), location);
      case toml::node_type::integer:
        return builder_.value(py::int_(**node.as_integer()), location);
      case toml::node_type::floating_point:
        return decimal(**node.as_floating_point(), location);
      case toml::node_type::boolean:
        return builder_.value(py::bool_(**node.as_boolean()), location);
      default:
        return builder_.value(moment(node, location), location);
    }
  }

  static py::object moment(const toml::node& node, Location location) {
    try {
      if (const auto* date = node.as_date()) return dateOf(**date);
      if (const auto* time = node.as_time()) return timeOf(**time);
      return dateTimeOf(**node.as_date_time());
    } catch (const py::error_already_set& error) {
      if (!error.matches(PyExc_ValueError)) throw;
      throw ModelError(location, "the date is out of range");
    }
  }

  void decimal(double number, Location location) {
    if (!std::isfinite(number)) {
      throw ModelError(location, "a model cannot hold a number that is not finite");
    }
    builder_.value(py::float_(number), location);
  }

  ModelBuilder& builder_;
};

}  // namespace

void readToml(std::string_view text, ModelBuilder& builder) {
  DottedKeys(text).check();
  toml::table document;
  try {
    document = toml::parse(text);
  } catch (const toml::parse_error& error) {
    throw ModelError(locationOf(error.source()), std::string(error.description()));
  }
  TomlWalk(builder).table(document, {1, 1});
}

}  // namespace orv
