#include "python/orv/native/tracing/Links.hpp"

#include <algorithm>

namespace orv {
namespace {

namespace py = pybind11;

bool isContainer(py::handle value) {
  return PyDict_CheckExact(value.ptr()) || PyList_CheckExact(value.ptr());
}

bool isPlain(py::handle value) {
  return PyUnicode_CheckExact(value.ptr()) || PyLong_CheckExact(value.ptr()) || value.is_none();
}

// The dictionary behind `items()`, `keys()` and `values()`, or null.
py::handle viewed(py::handle value) {
  if (!PyDictViewSet_Check(value.ptr()) && !PyDictValues_Check(value.ptr())) return {};
  return reinterpret_cast<PyObject*>(
      reinterpret_cast<const _PyDictViewObject*>(value.ptr())->dv_dict);
}

}  // namespace

std::uint32_t Strings::number(std::string_view text) {
  const auto next = static_cast<std::uint32_t>(texts_.size());
  const auto [entry, isNew] = numbers_.try_emplace(std::string(text), next);
  if (isNew) texts_.push_back(&entry->first);
  return entry->second;
}

Links::Links() : links_(1), labels_(1) {}

std::uint32_t Links::addLabel(Label label) {
  const auto found = std::find(labels_.begin(), labels_.end(), label);
  const auto number = static_cast<std::uint32_t>(found - labels_.begin());
  if (found == labels_.end()) labels_.push_back(label);
  return number;
}

void Links::enterLoop(std::uint32_t site, py::object element, py::object iterated,
                      std::int64_t position) {
  frames_.push_back({site, loopLabel_, 0, std::move(element), std::move(iterated), position});
}

void Links::leaveTo(std::size_t depth) {
  while (frames_.size() > depth) frames_.pop_back();
}

std::uint32_t Links::make() {
  const auto unmade =
      std::find_if(frames_.begin(), frames_.end(), [](const Frame& f) { return f.link == 0; });
  std::uint32_t parent = unmade == frames_.begin() ? 0 : (unmade - 1)->link;
  for (auto frame = unmade; frame != frames_.end(); ++frame) {
    std::uint32_t element = 0;
    if (frame->element) {
      const LoopElement found = elementOf(*frame);
      if (found.kind != LoopElement::Kind::unknown) {
        elements_.push_back(found);
        element = static_cast<std::uint32_t>(elements_.size());
      }
    }
    frame->link = static_cast<std::uint32_t>(links_.size());
    links_.push_back({parent, frame->site, frame->label, element});
    parent = frame->link;
  }
  return parent;
}

LoopElement Links::keep(py::handle container) {
  containers_.push_back(py::reinterpret_borrow<py::object>(container));
  return {LoopElement::Kind::container, 0, container.ptr()};
}

LoopElement Links::elementOf(const Frame& frame) {
  const py::handle element = frame.element;
  if (isContainer(element)) return keep(element);
  if (!isPlain(element) && py::isinstance<Element>(element)) {
    const auto& xml = element.cast<const Element&>();
    if (std::find(models_.begin(), models_.end(), xml.model()) == models_.end()) {
      models_.push_back(xml.model());
    }
    return {LoopElement::Kind::xml, xml.position(), const_cast<XmlModel*>(xml.model().get())};
  }
  if (PyTuple_Check(element.ptr())) {
    for (Py_ssize_t i = 0; i < PyTuple_GET_SIZE(element.ptr()); ++i) {
      const py::handle part = PyTuple_GET_ITEM(element.ptr(), i);
      if (!isContainer(part) && (isPlain(part) || !py::isinstance<Element>(part))) continue;
      return elementOf({0, 0, 0, py::reinterpret_borrow<py::object>(part), {}, -1});
    }
  }
  if (!frame.iterated) return {};
  if (PyList_CheckExact(frame.iterated.ptr()) && frame.position >= 0) {
    LoopElement item = keep(frame.iterated);
    item.kind = LoopElement::Kind::item;
    item.position = static_cast<std::uint32_t>(frame.position);
    return item;
  }
  const py::handle view = viewed(frame.iterated);
  const py::handle dictionary = view ? view : py::handle(frame.iterated);
  const bool isPair = PyTuple_Check(element.ptr()) && PyTuple_GET_SIZE(element.ptr()) != 0;
  if (!PyDict_CheckExact(dictionary.ptr()) || PyDictValues_Check(frame.iterated.ptr())) return {};
  LoopElement entry = keep(dictionary);
  entry.kind = LoopElement::Kind::entry;
  entry.position = static_cast<std::uint32_t>(keys_.size());
  keys_.push_back(isPair ? py::reinterpret_borrow<py::object>(PyTuple_GET_ITEM(element.ptr(), 0))
                         : frame.element);
  return entry;
}

}  // namespace orv
