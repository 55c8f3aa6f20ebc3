#include "python/orv/native/models/ModelBuilder.hpp"

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

bool equals(PyObject* text, std::string_view other) {
  return PyUnicode_IS_COMPACT_ASCII(text) &&
         static_cast<std::size_t>(PyUnicode_GET_LENGTH(text)) == other.size() &&
         std::memcmp(PyUnicode_DATA(text), other.data(), other.size()) == 0;
}

std::size_t hashOf(std::string_view text) {
  std::size_t hash = text.size();
  for (const char character : text) hash = hash * 31 + static_cast<unsigned char>(character);
  return hash ^ (hash >> 10);
}

}  // namespace

void ModelBuilder::begin(PyObject* container, Location location) {
  py::object made = owned(container);
  if (open_.size() == deepestModel) {
    throw ModelError(location,
                     "the model is nested more than " + std::to_string(deepestModel) + " deep");
  }
  value(made, location);
  open_.push_back({std::move(made), {}, {}, location.line, entries_.size()});
}

py::object ModelBuilder::end() {
  Open ended = std::move(open_.back());
  open_.pop_back();
  if (places_ != nullptr) {
    const std::uint32_t record =
        places_->add(ended.container, {file_, ended.line}, entries_.data() + ended.firstEntry,
                     entries_.size() - ended.firstEntry);
    entries_.resize(ended.firstEntry);
    if (!open_.empty()) entries_.back().record = record;
  }
  return std::move(ended.container);
}

void ModelBuilder::key(std::string_view name, Location location) {
  open_.back().key = shared(names_, longestName, name, location);
  open_.back().keyLocation = location;
}

void ModelBuilder::text(std::string_view text, Location location) {
  value(shared(texts_, longestValue, text, location), location);
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

void ModelBuilder::value(py::object value, Location location) {
  if (open_.empty()) {
    root_ = std::move(value);
    return;
  }
  Open& open = open_.back();
  PyObject* container = open.container.ptr();
  if (places_ != nullptr) entries_.push_back({location.line});
  if (!open.key) {
    if (PyList_Append(container, value.ptr()) != 0) throw py::error_already_set();
    return;
  }
  const Py_ssize_t size = PyDict_GET_SIZE(container);
  if (PyDict_SetItem(container, open.key.ptr(), value.ptr()) != 0) throw py::error_already_set();
  if (PyDict_GET_SIZE(container) == size) {
    noteRepeated(open);
  }
}

void ModelBuilder::noteRepeated(const Open& open) {
  const std::string name(utf8(open.key, "a name"));
  const std::string text = "the name \"" + name + "\" is given twice in one object";
  if (repeatedNames_.size() == mostRepeated) throw ModelError(open.keyLocation, text);
  repeatedNames_.emplace_back(open.keyLocation, text);
}

py::object ModelBuilder::last() const {
  if (open_.empty()) return root_;
  const Open& open = open_.back();
  PyObject* container = open.container.ptr();
  return py::reinterpret_borrow<py::object>(
      open.key ? PyDict_GetItemWithError(container, open.key.ptr())
               : PyList_GET_ITEM(container, PyList_GET_SIZE(container) - 1));
}

py::object ModelBuilder::takeEntry() {
  const Open& open = open_.back();
  py::object value = last();
  if (PyDict_DelItem(open.container.ptr(), open.key.ptr()) != 0) throw py::error_already_set();
  if (places_ != nullptr) entries_.pop_back();
  return value;
}

void ModelBuilder::merge(const std::vector<py::object>& sources) {
  Open& open = open_.back();
  PyObject* target = open.container.ptr();
  const py::object own = owned(PyDict_Copy(target));
  const std::vector<Places::Entry> ownEntries(
      entries_.begin() + static_cast<std::ptrdiff_t>(open.firstEntry), entries_.end());
  entries_.resize(open.firstEntry);
  PyDict_Clear(target);
  const auto add = [&](const py::object& from, const std::vector<Places::Entry>& entries,
                       bool isOwn) {
    PyObject* key = nullptr;
    PyObject* value = nullptr;
    std::size_t position = 0;
    for (Py_ssize_t i = 0; PyDict_Next(from.ptr(), &i, &key, &value) != 0; ++position) {
      const bool isThere = PyDict_Contains(target, key) == 1;
      const bool isOverridden = !isOwn && PyDict_Contains(own.ptr(), key) == 1;
      if (!isThere && !isOverridden) {
        if (PyDict_SetItem(target, key, value) != 0) throw py::error_already_set();
        if (places_ != nullptr) entries_.push_back(entries[position]);
      }
    }
  };
  for (const py::object& source : sources) add(source, entriesOf(source), false);
  add(own, ownEntries, true);
}

std::vector<Places::Entry> ModelBuilder::entriesOf(const py::object& source) const {
  std::vector<Places::Entry> entries;
  if (places_ == nullptr) return entries;
  PyObject* key = nullptr;
  PyObject* value = nullptr;
  for (Py_ssize_t i = 0; PyDict_Next(source.ptr(), &i, &key, &value) != 0;) {
    entries.push_back({places_->find(source, key).value_or(Places::Place{file_, 0}).line});
  }
  return entries;
}

py::object ModelBuilder::shared(Texts& texts, std::size_t longest, std::string_view text,
                                Location location) {
  if (text.size() > longest) return makeText(text, location);
  py::object& known = texts[hashOf(text) % texts.size()];
  if (!known || !equals(known.ptr(), text)) {
    known = makeText(text, location);
  } else if (PyUnicode_CHECK_INTERNED(known.ptr()) == 0) {
    // Python finds and compares by identity what templates and models have in common.
    PyObject* made = known.release().ptr();
    PyUnicode_InternInPlace(&made);
    known = owned(made);
  }
  return known;
}

}  // namespace orv
