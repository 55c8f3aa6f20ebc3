#include "python/orv/native/tracing/ModelPaths.hpp"

#include <algorithm>

namespace orv {

namespace py = pybind11;

std::uint32_t ModelPaths::add(const LoopElement& element, const Links& links) {
  switch (element.kind) {
    case LoopElement::Kind::container:
      return addRecord(places_.recordOf(static_cast<PyObject*>(element.holder)));
    case LoopElement::Kind::item:
      return addEntry(element, py::int_(element.position));
    case LoopElement::Kind::entry:
      return addEntry(element, links.key(element));
    case LoopElement::Kind::xml:
      return addXml(*static_cast<const XmlModel*>(element.holder), element.position);
    case LoopElement::Kind::unknown:
      break;
  }
  return 0;
}

std::uint32_t ModelPaths::addRecord(std::uint32_t record) {
  if (record == Places::none) return 0;
  if (record >= byRecord_.size()) {
    byRecord_.resize(std::max<std::size_t>(record + 1, 2 * byRecord_.size()));
  }
  if (byRecord_[record] != 0) return byRecord_[record] - 1;
  const Places::Step step = places_.step(record);
  std::uint32_t number = 0;
  // The model itself has no way to it.
  if (step.parent != Places::none) {
    std::string text;
    if (step.key) appendKey(text, step.key);
    number = append(addRecord(step.parent), text, step.key ? 0 : step.position, step.place);
  }
  byRecord_[record] = number + 1;
  return number;
}

std::uint32_t ModelPaths::addEntry(const LoopElement& element, py::handle key) {
  auto* container = static_cast<PyObject*>(element.holder);
  const std::uint32_t record = places_.recordOf(container);
  if (record == Places::none) return 0;
  std::string text;
  const bool isItem = element.kind == LoopElement::Kind::item;
  if (!isItem) appendKey(text, key);
  return append(addRecord(record), text, isItem ? element.position : 0,
                places_.find(container, key));
}

// The steps to an element from the root are those to the children that hold it.
std::uint32_t ModelPaths::addXml(const XmlModel& model, XmlDocument::Position wanted) {
  const XmlDocument& document = model.document();
  const std::uint32_t file = strings_.number(model.label());
  XmlDocument::Position at = XmlDocument::root;
  std::uint32_t number = byNode_[{&model, at}];
  if (number == 0) {
    number = append(0, document.names()[document.tag(at)], 0, file, document.line(at));
    byNode_[{&model, at}] = number;
  }
  while (at != wanted) {
    const std::vector<Child>& children = childrenOf({&model, at});
    const auto after = std::upper_bound(children.begin(), children.end(), wanted,
                                        [](XmlDocument::Position position, const Child& child) {
                                          return position < child.position;
                                        });
    const Child& child = *(after - 1);
    at = child.position;
    std::uint32_t& known = byNode_[{&model, at}];
    if (known == 0) known = append(number, child.step, 0, file, document.line(at));
    number = known;
  }
  return number;
}

const std::vector<ModelPaths::Child>& ModelPaths::childrenOf(const Node& parent) {
  const auto [entry, isNew] = children_.try_emplace(parent);
  std::vector<Child>& children = entry->second;
  if (!isNew) return children;
  const XmlDocument& document = parent.first->document();
  std::unordered_map<std::uint32_t, std::size_t> counts;
  const auto forEach = [&](auto visit) {
    const XmlDocument::Position end = document.after(parent.second);
    for (auto node = parent.second + 1; node < end; node = document.after(node)) {
      if (!document.isText(node)) visit(node);
    }
  };
  forEach([&](XmlDocument::Position node) { ++counts[document.tag(node)]; });
  std::unordered_map<std::uint32_t, std::size_t> seen;
  forEach([&](XmlDocument::Position node) {
    const std::uint32_t tag = document.tag(node);
    std::string step = '/' + document.names()[tag];
    if (counts[tag] > 1) step += '[' + std::to_string(++seen[tag]) + ']';
    children.push_back({node, std::move(step)});
  });
  return children;
}

std::uint32_t ModelPaths::append(std::uint32_t parent, const std::string& step,
                                 std::uint32_t position, std::optional<Places::Place> place) {
  if (!place || place->file == Places::none) return append(parent, step, position, 0, 0);
  while (files_.size() <= place->file) {
    files_.push_back(strings_.number(places_.file(static_cast<std::uint32_t>(files_.size()))));
  }
  return append(parent, step, position, files_[place->file], place->line);
}

std::uint32_t ModelPaths::append(std::uint32_t parent, const std::string& step,
                                 std::uint32_t position, std::uint32_t file, std::uint32_t line) {
  const std::uint32_t text = step.empty() ? 0 : strings_.number(step);
  table_.append({parent, text, position, file, line});
  return ++count_;
}

}  // namespace orv
