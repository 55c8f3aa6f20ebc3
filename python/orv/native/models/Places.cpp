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
  Record& record = addRecord(container, place, count, fingerprint);
  const auto index = static_cast<std::uint32_t>(records_.size() - 1);
  for (std::size_t i = 0; i < count; ++i) {
    if (entries[i].record == none) continue;
    setParent(entries[i].record, index, keys == nullptr ? py::handle() : py::handle(keys[i]), i);
  }
  std::uint32_t first = place.line;
  std::uint32_t last = place.line;
  for (std::size_t i = 0; i < count; ++i) {
    first = std::min(first, entries[i].line);
    last = std::max(last, entries[i].line);
  }
  if (first < place.line || last - place.line > UINT16_MAX) {
    std::vector<Place> places;
    places.reserve(count);
    for (std::size_t i = 0; i < count; ++i) places.push_back({place.file, entries[i].line});
    store(record, places);
  } else if (last - place.line > UINT8_MAX) {
    record.width = Width::word;
    for (std::size_t i = 0; i < count; ++i) {
      const std::uint32_t offset = entries[i].line - place.line;
      entries_.push_back(static_cast<unsigned char>(offset >> 8));
      entries_.push_back(static_cast<unsigned char>(offset));
    }
  } else if (last > place.line) {
    record.width = Width::byte;
    for (std::size_t i = 0; i < count; ++i) {
      entries_.push_back(static_cast<unsigned char>(entries[i].line - place.line));
    }
  }
  return index;
}

void Places::note(py::handle dictionary, Place place) { addFinished(dictionary, place); }

void Places::addMerged(py::handle merged, py::handle first, py::handle second) {
  std::vector<Place> places;
  const auto count = static_cast<std::size_t>(PyDict_Size(merged.ptr()));
  places.reserve(count);
  forFirst(merged.ptr(), count, [&](std::size_t, PyObject* key, PyObject*) {
    const py::handle source = PyDict_Contains(second.ptr(), key) == 1 ? second : first;
    places.push_back(find(source, key).value_or(Place{none, 0}));
  });
  const Place unknown{none, 0};
  const Place place = find(first, {}).value_or(find(second, {}).value_or(unknown));
  store(addFinished(merged, place), places);
}

void Places::store(Record& record, const std::vector<Place>& places) {
  record.width = Width::place;
  const auto* bytes = reinterpret_cast<const unsigned char*>(places.data());
  entries_.insert(entries_.end(), bytes, bytes + places.size() * sizeof(Place));
}

Places::Record& Places::addRecord(py::handle container, Place place, std::size_t count,
                                  std::uint32_t fingerprint) {
  Record& record = records_.emplace_back();
  record.container = py::reinterpret_borrow<py::object>(container);
  record.entries = entries_.size() & ((std::uint64_t{1} << 56) - 1);
  record.width = Width::sameLine;
  record.count = static_cast<std::uint32_t>(count);
  record.fingerprint = fingerprint;
  record.place = place;
  record.parent = none;
  record.position = 0;
  return record;
}

Places::Record& Places::addFinished(py::handle dictionary, Place place) {
  const auto count = static_cast<std::size_t>(PyDict_Size(dictionary.ptr()));
  const auto index = static_cast<std::uint32_t>(records_.size());
  const std::uint32_t fingerprint = fingerprintOf(
      dictionary.ptr(), count, [&](std::size_t position, PyObject* key, PyObject* value) {
        const std::uint32_t child = isContainer(value) ? recordOf(value) : none;
        if (child != none) setParent(child, index, key, position);
      });
  return addRecord(dictionary, place, count, fingerprint);
}

void Places::setParent(std::uint32_t child, std::uint32_t parent, py::handle key,
                       std::size_t position) {
  Record& record = records_[child];
  record.parent = parent;
  record.key = py::reinterpret_borrow<py::object>(key);
  record.position = static_cast<std::uint32_t>(position);
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
  const std::uint32_t fingerprint = fingerprintOf(known.container.ptr(), known.count,
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
    if (overflow != 0 || position < 0 || position >= records_[record].count) return std::nullopt;
    return static_cast<std::uint32_t>(position);
  }
  if (!PyUnicode_Check(key.ptr()) || !positions.ofKeys.contains(key)) return std::nullopt;
  return positions.ofKeys[key].cast<std::uint32_t>();
}

Places::Place Places::entryPlace(const Record& record, std::uint32_t position) const {
  const unsigned char* entries = entries_.data() + record.entries;
  const std::size_t first = 2 * std::size_t{position};
  Place place = record.place;
  if (record.width == Width::byte) {
    place.line += entries[position];
  } else if (record.width == Width::word) {
    place.line += static_cast<std::uint32_t>(entries[first] << 8 | entries[first + 1]);
  } else if (record.width == Width::place) {
    std::memcpy(&place, entries + position * sizeof place, sizeof place);
  }
  return place;
}

std::optional<Places::Place> Places::find(py::handle container, py::handle key) const {
  const std::uint32_t record = recordOf(container.ptr());
  if (record == none) return std::nullopt;
  if (!key || key.is_none()) return records_[record].place;
  const std::optional<std::uint32_t> position = positionOf(record, key);
  return position ? entryPlace(records_[record], *position) : records_[record].place;
}

std::optional<std::string> Places::path(py::handle container, py::handle key) const {
  std::uint32_t index = recordOf(container.ptr());
  if (index == none) return std::nullopt;
  std::vector<py::object> keys;
  if (key && !key.is_none()) keys.push_back(py::reinterpret_borrow<py::object>(key));
  for (; records_[index].parent != none; index = records_[index].parent) {
    const Record& record = records_[index];
    keys.push_back(record.key ? record.key : py::object(py::int_(record.position)));
  }
  std::string path;
  for (auto step = keys.rbegin(); step != keys.rend(); ++step) appendKey(path, *step);
  return path;
}

Places::Step Places::step(std::uint32_t record) const {
  const Record& known = records_[record];
  return {known.parent, known.key, known.position, known.place};
}

std::string Places::text(Place place) const {
  if (place.file == none) return "";
  const std::string& file = files_[place.file];
  return place.line == 0 ? file : file + ':' + std::to_string(place.line);
}

}  // namespace orv
