#include "python/orv/native/models/Places.hpp"

#include <algorithm>
#include <cstring>

#include "python/orv/native/Text.hpp"

namespace orv {
namespace {

namespace py = pybind11;

std::uint32_t mix(std::uint32_t seed, std::size_t value) {
  const std::uint64_t product = (value ^ seed) * 0x9E3779B97F4A7C15u;
  return static_cast<std::uint32_t>(product >> 32) ^ static_cast<std::uint32_t>(product);
}

// Calls visit(position, key or null, value) for the first `count` entries; the number of them.
template <typename Visit>
std::size_t forFirst(PyObject* container, std::size_t count, Visit visit) {
  std::size_t position = 0;
  if (PyDict_Check(container)) {
    PyObject* key = nullptr;
    PyObject* value = nullptr;
    for (Py_ssize_t i = 0; position < count && PyDict_Next(container, &i, &key, &value) != 0;) {
      visit(position++, key, value);
    }
  } else {
    const auto size = std::min(count, static_cast<std::size_t>(PyList_GET_SIZE(container)));
    for (; position < size; ++position) {
      PyObject* item = PyList_GET_ITEM(container, static_cast<Py_ssize_t>(position));
      visit(position, static_cast<PyObject*>(nullptr), item);
    }
  }
  return position;
}

// Changes with the keys of a dictionary and the items of a list. Visits the entries on its way.
template <typename Visit>
std::uint32_t fingerprintOf(PyObject* container, std::size_t count, Visit visit) {
  std::uint32_t fingerprint = 0;
  const std::size_t found =
      forFirst(container, count, [&](std::size_t position, PyObject* key, PyObject* value) {
        const PyObject* part = key != nullptr ? key : value;
        fingerprint = mix(fingerprint, reinterpret_cast<std::size_t>(part));
        visit(position, key, value);
      });
  return mix(fingerprint, found);
}

// Layouts are bytes: parts are copied into them and out of them.
template <typename Part>
void append(std::string& layout, const Part& part) {
  layout.append(reinterpret_cast<const char*>(&part), sizeof part);
}

template <typename Part>
Part partOf(std::string_view parts, std::size_t position) {
  Part part;
  std::memcpy(&part, parts.data() + position * sizeof part, sizeof part);
  return part;
}

bool isContainer(PyObject* value) { return PyDict_CheckExact(value) || PyList_CheckExact(value); }

}  // namespace

std::uint32_t fingerprintOf(const py::object* parts, std::size_t count) {
  std::uint32_t fingerprint = 0;
  for (std::size_t i = 0; i < count; ++i) {
    fingerprint = mix(fingerprint, reinterpret_cast<std::size_t>(parts[i].ptr()));
  }
  return mix(fingerprint, count);
}

void appendKey(std::string& path, py::handle key) {
  if (PyUnicode_Check(key.ptr()) && PyUnicode_IsIdentifier(key.ptr()) == 1) {
    if (!path.empty()) path += '.';
    path += utf8(key, "a key");
  } else {
    path += '[' + std::string(utf8(py::repr(key), "a key")) + ']';
  }
}

std::uint32_t Places::addFile(std::string label) {
  files_.push_back(std::move(label));
  return static_cast<std::uint32_t>(files_.size() - 1);
}

std::uint32_t Places::add(py::handle container, Place place, const Content& content) {
  const auto& [keys, entries, count, fingerprint] = content;
  const Width width = widthOf(place.line, content);
  layout_.clear();
  append(layout_, Header{static_cast<std::uint32_t>(count), width});
  for (std::size_t i = 0; width != Width::sameLine && i < count; ++i) {
    const std::uint32_t offset = entries[i].line - place.line;
    if (width == Width::byte) {
      append(layout_, static_cast<std::uint8_t>(offset));
    } else if (width == Width::word) {
      append(layout_, static_cast<std::uint16_t>(offset));
    } else {
      append(layout_, Place{place.file, entries[i].line});
    }
  }
  const std::uint32_t record = addRecord(container, place, fingerprint);
  for (std::size_t i = 0; i < count; ++i) {
    if (entries[i].record == none) continue;
    setParent(entries[i].record, record, keys == nullptr ? py::handle() : py::handle(keys[i]), i);
  }
  return record;
}

Places::Width Places::widthOf(std::uint32_t line, const Content& content) {
  std::uint32_t first = line;
  std::uint32_t last = line;
  for (std::size_t i = 0; i < content.count; ++i) {
    first = std::min(first, content.entries[i].line);
    last = std::max(last, content.entries[i].line);
  }
  if (first < line || last - line > UINT16_MAX) return Width::place;
  if (last - line > UINT8_MAX) return Width::word;
  return last > line ? Width::byte : Width::sameLine;
}

void Places::note(py::handle dictionary, Place place) {
  const auto count = static_cast<std::size_t>(PyDict_Size(dictionary.ptr()));
  addFinished(dictionary, place, std::vector<Place>(count, place));
}

void Places::addMerged(py::handle merged, py::handle first, py::handle second) {
  std::vector<Place> places;
  const auto count = static_cast<std::size_t>(PyDict_Size(merged.ptr()));
  places.reserve(count);
  forFirst(merged.ptr(), count, [&](std::size_t, PyObject* key, PyObject*) {
    const py::handle source = PyDict_Contains(second.ptr(), key) == 1 ? second : first;
    places.push_back(find(source, key).value_or(Place{none, 0}));
  });
  const Place unknown{none, 0};
  addFinished(merged, find(first, {}).value_or(find(second, {}).value_or(unknown)), places);
}

void Places::addFinished(py::handle dictionary, Place place, const std::vector<Place>& places) {
  const auto record = static_cast<std::uint32_t>(records_.size());
  const std::uint32_t fingerprint = fingerprintOf(
      dictionary.ptr(), places.size(), [&](std::size_t position, PyObject* key, PyObject* value) {
        const std::uint32_t child = isContainer(value) ? recordOf(value) : none;
        if (child != none) setParent(child, record, key, position);
      });
  layout_.clear();
  append(layout_, Header{static_cast<std::uint32_t>(places.size()), Width::place});
  for (const Place& entry : places) append(layout_, entry);
  addRecord(dictionary, place, fingerprint);
}

std::uint32_t Places::addRecord(py::handle container, Place place, std::uint32_t fingerprint) {
  const auto index = static_cast<std::uint32_t>(records_.size());
  if (origins_.empty() || origins_.back().second != place.file) {
    origins_.emplace_back(index, place.file);
  }
  records_.push_back({py::reinterpret_borrow<py::object>(container), none, 0, place.line,
                      layouts_.add(layout_), fingerprint});
  return index;
}

void Places::setParent(std::uint32_t child, std::uint32_t parent, py::handle key,
                       std::size_t position) {
  if (key) {
    position = keys_.size();
    keys_.push_back(py::reinterpret_borrow<py::object>(key));
  }
  records_[child].parent = parent;
  records_[child].step = static_cast<std::uint32_t>(position);
}

py::handle Places::keyOf(const Record& record) const {
  const bool isNamed =
      record.parent != none && PyDict_Check(records_[record.parent].container.ptr());
  return isNamed ? py::handle(keys_[record.step]) : py::handle();
}

Places::Place Places::placeOf(std::uint32_t record) const {
  const auto after = std::upper_bound(
      origins_.begin(), origins_.end(), record,
      [](std::uint32_t wanted, const auto& origin) { return wanted < origin.first; });
  return {(after - 1)->second, records_[record].line};
}

Places::Header Places::headerOf(std::uint32_t record) const {
  return partOf<Header>(layouts_[records_[record].layout], 0);
}

std::size_t Places::slotOf(PyObject* container) const {
  const std::size_t mask = slots_.size() - 1;
  const std::uint64_t address = reinterpret_cast<std::uintptr_t>(container);
  std::size_t slot = ((address * 0x9E3779B97F4A7C15u) >> 32) & mask;
  while (slots_[slot] != 0 && records_[slots_[slot] - 1].container.ptr() != container) {
    slot = (slot + 1) & mask;
  }
  return slot;
}

std::uint32_t Places::recordOf(PyObject* container) const {
  indexRecords();
  const std::uint32_t found = slots_[slotOf(container)];
  return found == 0 ? none : found - 1;
}

void Places::indexRecords() const {
  if (2 * records_.size() >= slots_.size()) {
    std::size_t size = 64;
    while (size <= 2 * records_.size()) size *= 2;
    slots_.assign(size, 0);
    indexed_ = 0;
  }
  for (; indexed_ < records_.size(); ++indexed_) {
    const std::size_t slot = slotOf(records_[indexed_].container.ptr());
    slots_[slot] = static_cast<std::uint32_t>(indexed_ + 1);
  }
}

const Places::Positions& Places::positionsOf(std::uint32_t record) const {
  const Record& known = records_[record];
  const Py_ssize_t size = PyObject_Size(known.container.ptr());
  if (positions_.record == record && positions_.size == size) return positions_;
  Positions positions;
  positions.record = record;
  positions.size = size;
  const std::uint32_t fingerprint = fingerprintOf(known.container.ptr(), headerOf(record).count,
                                                  [&](std::size_t at, PyObject* key, PyObject*) {
                                                    if (key != nullptr) {
                                                      positions.ofKeys[py::handle(key)] = at;
                                                    }
                                                  });
  positions.areIntact = fingerprint == known.fingerprint;
  positions_ = std::move(positions);
  return positions_;
}

std::optional<std::uint32_t> Places::positionOf(std::uint32_t record, py::handle key) const {
  const Positions& positions = positionsOf(record);
  if (!key || key.is_none() || !positions.areIntact) return std::nullopt;
  if (PyList_Check(records_[record].container.ptr())) {
    if (!PyLong_Check(key.ptr())) return std::nullopt;
    int overflow = 0;
    const long long position = PyLong_AsLongLongAndOverflow(key.ptr(), &overflow);
    if (overflow != 0 || position < 0 || position >= headerOf(record).count) return std::nullopt;
    return static_cast<std::uint32_t>(position);
  }
  if (!PyUnicode_Check(key.ptr()) || !positions.ofKeys.contains(key)) return std::nullopt;
  return positions.ofKeys[key].cast<std::uint32_t>();
}

Places::Place Places::entryPlace(std::uint32_t record, std::uint32_t position) const {
  const std::string_view entries = layouts_[records_[record].layout].substr(sizeof(Header));
  Place place = placeOf(record);
  switch (headerOf(record).width) {
    case Width::sameLine:
      return place;
    case Width::byte:
      place.line += partOf<std::uint8_t>(entries, position);
      return place;
    case Width::word:
      place.line += partOf<std::uint16_t>(entries, position);
      return place;
    case Width::place:
      break;
  }
  return partOf<Place>(entries, position);
}

std::optional<Places::Place> Places::find(py::handle container, py::handle key) const {
  const std::uint32_t record = recordOf(container.ptr());
  if (record == none) return std::nullopt;
  if (!key || key.is_none()) return placeOf(record);
  const std::optional<std::uint32_t> position = positionOf(record, key);
  return position ? entryPlace(record, *position) : placeOf(record);
}

std::optional<std::string> Places::path(py::handle container, py::handle key) const {
  std::uint32_t index = recordOf(container.ptr());
  if (index == none) return std::nullopt;
  std::vector<py::object> keys;
  if (key && !key.is_none()) keys.push_back(py::reinterpret_borrow<py::object>(key));
  for (; records_[index].parent != none; index = records_[index].parent) {
    const Record& record = records_[index];
    const py::handle name = keyOf(record);
    keys.push_back(name ? py::reinterpret_borrow<py::object>(name)
                        : py::object(py::int_(record.step)));
  }
  std::string path;
  for (auto step = keys.rbegin(); step != keys.rend(); ++step) appendKey(path, *step);
  return path;
}

Places::Step Places::step(std::uint32_t record) const {
  const Record& known = records_[record];
  return {known.parent, keyOf(known), known.step, placeOf(record)};
}

std::string Places::text(Place place) const {
  if (place.file == none) return "";
  const std::string& file = files_[place.file];
  return place.line == 0 ? file : file + ':' + std::to_string(place.line);
}

}  // namespace orv
