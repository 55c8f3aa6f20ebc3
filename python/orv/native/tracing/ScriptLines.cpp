#include "python/orv/native/tracing/ScriptLines.hpp"

#include <algorithm>
#include <cstring>
#include <utility>

#include <orbel/CharacterArray.hpp>
#include <varn/IncludesSection.hpp>

#include "python/orbel/native/Errors.hpp"
#include "python/orv/native/Text.hpp"

namespace orv {
namespace {

namespace py = pybind11;
using orbel::python::checked;

// An argument as the library takes it: up to its first NUL.
std::size_t textSize(const orbel::Value& argument) {
  const auto* characters = argument.get<orbel::CharacterArray>();
  if (characters == nullptr) return 0;
  const std::string* text = characters->text();
  return std::strlen(text != nullptr ? text->c_str() : characters->toText().c_str());
}

py::object asObject(PyFrameObject* frame) {
  return py::reinterpret_steal<py::object>(reinterpret_cast<PyObject*>(frame));
}

}  // namespace

ScriptLines::ScriptLines(Trace& trace, const std::string& script, py::function nameOf)
    : trace_(trace),
      nameOf_(std::move(nameOf)),
      script_(trace.addSite({Trace::Kind::script, trace.strings().number(script), 0})) {}

void ScriptLines::called(const orbel::Method& method, orbel::Arguments arguments) {
  const auto& handle = *arguments[0].get<orbel::Handle>();
  auto* section = dynamic_cast<Varn::FileSection*>(handle.object());
  if (section == nullptr) return;
  const std::size_t size = sizeAdded(*section, method.name(), arguments);
  if (size == 0) return;
  Section& known = sections_.try_emplace(&handle.identity(), Section{handle, {}}).first->second;
  known.ranges.append(size, {currentSite(), 0});
}

std::size_t ScriptLines::sizeAdded(Varn::FileSection& section, const std::string& method,
                                   orbel::Arguments arguments) {
  if (method == "addContent") return textSize(arguments[1]);
  if (method == "addFunction") return textSize(arguments[2]);
  auto* includes = dynamic_cast<Varn::IncludesSection*>(&section);
  if (method != "addInclude" || includes == nullptr) return 0;
  const auto* name = arguments[1].get<orbel::CharacterArray>();
  return name == nullptr ? 0 : trace_.newInclude(*includes, name->toText());
}

Trace::Added ScriptLines::added() const {
  Trace::Added added;
  for (const auto& [identity, known] : sections_) {
    const auto* section = dynamic_cast<const Varn::FileSection*>(identity->object());
    if (section != nullptr) added.emplace(section, known.ranges);
  }
  return added;
}

std::uint32_t ScriptLines::currentSite() {
  PyFrameObject* current = PyEval_GetFrame();
  Py_XINCREF(current);
  for (py::object held = asObject(current); held; held = asObject(PyFrame_GetBack(current))) {
    current = reinterpret_cast<PyFrameObject*>(held.ptr());
    const Code& code = codeOf(checked(reinterpret_cast<PyObject*>(PyFrame_GetCode(current))));
    if (code.isUsers) return siteAt(code, PyFrame_GetLasti(current));
  }
  return script_;
}

// The interpreter finds a line by reading the table of lines from its beginning: it is read once
// for each code, so that a long script takes linear time.
const ScriptLines::Code& ScriptLines::codeOf(const py::object& object) {
  const auto known = codes_.find(object.ptr());
  if (known != codes_.end()) return known->second;
  Code code{object, false, 0, {}};
  const py::object name = nameOf_(object.attr("co_filename"));
  if (!name.is_none()) {
    code.isUsers = true;
    code.file = trace_.strings().number(bytesOf(py::str(name)));
    for (const py::handle entry : object.attr("co_lines")()) {
      const auto fields = entry.cast<py::tuple>();
      const bool hasLine = !fields[2].is_none();
      code.lines.push_back({fields[1].cast<int>(), hasLine ? fields[2].cast<std::uint32_t>() : 0});
    }
  }
  return codes_.emplace(object.ptr(), std::move(code)).first->second;
}

std::uint32_t ScriptLines::siteAt(const Code& code, int offset) {
  const auto line =
      std::upper_bound(code.lines.begin(), code.lines.end(), offset,
                       [](int at, const Line& candidate) { return at < candidate.end; });
  const std::uint32_t number = line == code.lines.end() ? 0 : line->number;
  const auto [found, isNew] = sites_.try_emplace({code.file, number});
  if (isNew) found->second = trace_.addSite({Trace::Kind::script, code.file, number});
  return found->second;
}

}  // namespace orv
