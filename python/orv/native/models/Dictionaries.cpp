#include "python/orv/native/models/Dictionaries.hpp"

#include <algorithm>

namespace orv {
namespace {

namespace py = pybind11;

// Instances of a class share no more keys than about thirty.
constexpr std::size_t mostShared = 24;

void set(const py::object& dictionary, const py::object& key, const py::object& value) {
  if (PyDict_SetItem(dictionary.ptr(), key.ptr(), value.ptr()) != 0) throw py::error_already_set();
}

// The attributes of an instance of a new class, whose keys its copies share. The interpreter leaves
// room for attributes to come, but less with each instance that there was; at last for one.
py::object sharing(const std::vector<py::object>& keys) {
  const py::object type = py::reinterpret_borrow<py::object>(
      reinterpret_cast<PyObject*>(&PyType_Type))("Keys", py::tuple(), py::dict());
  const auto addKeys = [&](const py::object& attributes) {
    for (const py::object& key : keys) set(attributes, key, py::none());
    return attributes;
  };
  addKeys(type().attr("__dict__"));
  for (std::size_t i = 0; i < 32; ++i) type();
  return addKeys(type().attr("__dict__"));
}

}  // namespace

py::object Dictionaries::make(const py::object* keys, const py::object* values, std::size_t count,
                              std::uint32_t fingerprint) {
  Shape& shape = shapes_[fingerprint % shapes_.size()];
  const bool isKnown =
      count != 0 && std::equal(keys, keys + count, shape.keys.begin(), shape.keys.end(),
                               [](const auto& a, const auto& b) { return a.is(b); });
  if (isKnown && !shape.pattern) shape.pattern = sharing(shape.keys);
  py::object made =
      py::reinterpret_steal<py::object>(isKnown ? PyDict_Copy(shape.pattern.ptr()) : PyDict_New());
  if (!made) throw py::error_already_set();
  for (std::size_t i = 0; i < count; ++i) set(made, keys[i], values[i]);
  if (!isKnown && !shape.pattern && count <= mostShared &&
      static_cast<std::size_t>(PyDict_GET_SIZE(made.ptr())) == count) {
    shape.keys.assign(keys, keys + count);
  }
  return made;
}

}  // namespace orv
