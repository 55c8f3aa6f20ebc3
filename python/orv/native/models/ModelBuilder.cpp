#include "python/orv/native/models/ModelBuilder.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

#include "python/orv/native/Text.hpp"

namespace orv {
namespace {

namespace py = pybind11;

// The longest texts that are worth a look whether they are there already, and the most digits that
// fit a machine's integer.
constexpr std::size_t longestName = 32;
constexpr std::size_t longestValue = 16;
constexpr std::size_t mostDigits = 18;

// The most names given twice that are collected.
constexpr std::size_t mostRepeated = 20;

py::object owned(PyObject* object) {
  if (object == nullptr) throw py::error_already_set();
  return py::reinterpret_steal<py::object>(object);
}

py::object makeText(std::string_view text, Location location) {
  if (text.find('\0') != std::string_view::npos) {
    throw ModelError(location, "a model cannot hold a NUL character");
  }
  PyObject* made = PyUnicode_DecodeUTF8(text.data(), static_cast<Py_ssize_t>(text.size()), nullptr);
  if (made == nullptr && PyErr_ExceptionMatches(PyExc_UnicodeDecodeError) != 0) {
    PyErr_Clear();
    throw ModelError(location, "the text holds half of a surrogate pair, which is no character");
  }
  return owned(made);
}

bool isInterned(PyObject* text) { return text != nullptr && PyUnicode_CHECK_INTERNED(text) != 0; }

// Whether a text, if there is one, is this ASCII text.
bool equals(PyObject* text, std::string_view other) {
  return text != nullptr && PyUnicode_IS_COMPACT_ASCII(text) &&
         static_cast<std::size_t>(PyUnicode_GET_LENGTH(text)) == other.size() &&
         std::memcmp(PyUnicode_DATA(text), other.data(), other.size()) == 0;
}

std::size_t hashOf(std::string_view text) {
  std::size_t hash = text.size();
  for (const char character : text) hash = hash * 31 + static_cast<unsigned char>(character);
  return hash ^ (hash >> 10);
}

py::object listOf(const py::object* values, std::size_t count) {
  py::object list = owned(PyList_New(static_cast<Py_ssize_t>(count)));
  for (std::size_t i = 0; i < count; ++i) {
    PyList_SET_ITEM(list.ptr(), static_cast<Py_ssize_t>(i), values[i].inc_ref().ptr());
  }
  return list;
}

bool isSame(const Location& left, const Location& right) {
  return left.line == right.line && left.column == right.column;
}

template <typename Part>
void insertAt(std::vector<Part>& parts, std::size_t position, const std::vector<Part>& inserted) {
  parts.insert(parts.begin() + static_cast<std::ptrdiff_t>(position), inserted.begin(),
               inserted.end());
}

}  // namespace

void ModelBuilder::begin(bool isDictionary, Location location) {
  if (open_.size() == deepestModel) {
    throw ModelError(location,
                     "the model is nested more than " + std::to_string(deepestModel) + " deep");
  }
  open_.push_back({isDictionary, location, keys_.size(), values_.size()});
}

py::object ModelBuilder::end() {
  const Open ended = open_.back();
  const py::object* keys = keys_.data() + ended.firstKey;
  const py::object* values = values_.data() + ended.firstValue;
  const std::size_t count = values_.size() - ended.firstValue;
  const std::uint32_t fingerprint = fingerprintOf(ended.isDictionary ? keys : values, count);
  py::object made = ended.isDictionary ? dictionaries_.make(keys, values, count, fingerprint)
                                       : listOf(values, count);
  if (ended.isDictionary && static_cast<std::size_t>(PyDict_GET_SIZE(made.ptr())) != count) {
    noteRepeated(ended.firstKey, keys_.size());
  }
  std::uint32_t record = Places::none;
  if (places_ != nullptr) {
    const std::size_t firstEntry = entries_.size() - count;
    record = places_->add(
        made, {file_, ended.location.line},
        {ended.isDictionary ? keys : nullptr, entries_.data() + firstEntry, count, fingerprint});
    entries_.resize(firstEntry);
  }
  keys_.resize(ended.firstKey);
  keyLocations_.resize(ended.firstKey);
  values_.resize(ended.firstValue);
  open_.pop_back();
  value(made, ended.location);
  if (!entries_.empty()) entries_.back().record = record;
  return made;
}

void ModelBuilder::abandon() {
  for (std::size_t i = 0; i < open_.size(); ++i) {
    noteRepeated(open_[i].firstKey, i + 1 < open_.size() ? open_[i + 1].firstKey : keys_.size());
  }
}

void ModelBuilder::noteRepeated(std::size_t firstKey, std::size_t lastKey) {
  py::set seen;
  for (std::size_t i = firstKey; i < lastKey; ++i) {
    if (!seen.contains(keys_[i])) {
      seen.add(keys_[i]);
      continue;
    }
    const Location& location = keyLocations_[i];
    // abandon() looks again at what end() has given up.
    if (std::any_of(repeatedNames_.begin(), repeatedNames_.end(),
                    [&](const ModelRemark& noted) { return isSame(noted.first, location); })) {
      continue;
    }
    const std::string name(utf8(keys_[i], "a name"));
    const std::string text = "the name \"" + name + "\" is given twice in one object";
    if (repeatedNames_.size() == mostRepeated) throw ModelError(location, text);
    repeatedNames_.emplace_back(location, text);
  }
}

void ModelBuilder::key(std::string_view name, Location location) {
  keyLocations_.push_back(location);
  if (name.size() > longestName) {
    keys_.push_back(makeText(name, location));
    return;
  }
  // Dictionaries of one kind have the same names in the same order.
  std::size_t& next = names_[lastName_].next;
  if (isInterned(names_[next].text.ptr()) && equals(names_[next].text.ptr(), name)) {
    keys_.push_back(names_[next].text);
  } else {
    next = hashOf(name) % names_.size();
    keys_.push_back(shared(names_[next], name, location));
  }
  lastName_ = next;
}

void ModelBuilder::text(std::string_view text, Location location) {
  value(text.size() > longestValue ? makeText(text, location)
                                   : shared(texts_[hashOf(text) % texts_.size()], text, location),
        location);
}

void ModelBuilder::integer(std::string_view digits, Location location, int base) {
  const std::size_t signs = digits.substr(0, 1) == "-" || digits.substr(0, 1) == "+" ? 1 : 0;
  if (base == 10 && digits.size() - signs <= mostDigits) {
    long long number = 0;
    for (const char digit : digits.substr(signs)) number = number * 10 + (digit - '0');
    value(owned(PyLong_FromLongLong(digits[0] == '-' ? -number : number)), location);
    return;
  }
  PyObject* made = PyLong_FromString(std::string(digits).c_str(), nullptr, base);
  if (made == nullptr && PyErr_ExceptionMatches(PyExc_ValueError) != 0) {
    PyErr_Clear();
    throw ModelError(
        location, "an integer of " + std::to_string(digits.size() - signs) + " digits is too long");
  }
  value(owned(made), location);
}

void ModelBuilder::decimal(const std::string& number, Location location) {
  const double made = PyOS_string_to_double(number.c_str(), nullptr, nullptr);
  if (made == -1.0 && PyErr_Occurred() != nullptr) throw py::error_already_set();
  if (!std::isfinite(made)) {
    throw ModelError(location, "the number " + number + " is too large");
  }
  value(owned(PyFloat_FromDouble(made)), location);
}

py::object ModelBuilder::takeEntry() {
  py::object value = std::move(values_.back());
  values_.pop_back();
  keys_.pop_back();
  keyLocations_.pop_back();
  if (places_ != nullptr) entries_.pop_back();
  return value;
}

void ModelBuilder::merge(const std::vector<py::object>& sources) {
  const Open& open = open_.back();
  py::set taken;
  for (std::size_t i = open.firstKey; i < keys_.size(); ++i) taken.add(keys_[i]);
  std::vector<py::object> keys;
  std::vector<py::object> values;
  std::vector<Places::Entry> entries;
  for (const py::object& source : sources) {
    for (const auto& [key, value] : py::reinterpret_borrow<py::dict>(source)) {
      if (taken.contains(key)) continue;
      taken.add(key);
      keys.push_back(py::reinterpret_borrow<py::object>(key));
      values.push_back(py::reinterpret_borrow<py::object>(value));
      if (places_ != nullptr) entries.push_back({lineOf(source, key)});
    }
  }
  insertAt(entries_, entries_.size() - (places_ == nullptr ? 0 : values_.size() - open.firstValue),
           entries);
  insertAt(values_, open.firstValue, values);
  insertAt(keyLocations_, open.firstKey, std::vector<Location>(keys.size()));
  insertAt(keys_, open.firstKey, keys);
}

std::uint32_t ModelBuilder::lineOf(const py::object& container, py::handle key) const {
  return places_->find(container, key).value_or(Places::Place{file_, 0}).line;
}

const py::object& ModelBuilder::shared(Text& known, std::string_view text, Location location) {
  if (!equals(known.text.ptr(), text)) {
    known.text = makeText(text, location);
  } else if (!isInterned(known.text.ptr())) {
    // Python finds and compares by identity what templates and models have in common.
    PyObject* made = known.text.release().ptr();
    PyUnicode_InternInPlace(&made);
    known.text = owned(made);
  }
  return known.text;
}

}  // namespace orv
