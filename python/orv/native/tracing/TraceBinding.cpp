#include <chrono>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

#include "python/orv/native/Bindings.hpp"
#include "python/orv/native/Bytes.hpp"
#include "python/orv/native/Text.hpp"
#include "python/orv/native/tracing/Deltas.hpp"
#include "python/orv/native/tracing/LineUses.hpp"
#include "python/orv/native/tracing/ModelPaths.hpp"
#include "python/orv/native/tracing/ScriptLines.hpp"
#include "python/orv/native/tracing/Trace.hpp"

namespace orv {
namespace {

namespace py = pybind11;

// In the order of Trace::Kind.
constexpr const char* kindNames[] = {"unknown", "text",           "value",       "script",
                                     "guard",   "include",        "blank line",  "final newline",
                                     "linkage", "line directive", "user region", "formatter",
                                     "line",    "marker",         "tag"};

Trace::Kind kindOf(const std::string& name) {
  for (std::size_t kind = 0; kind < std::size(kindNames); ++kind) {
    if (name == kindNames[kind]) return static_cast<Trace::Kind>(kind);
  }
  throw py::value_error("there is no kind of site \"" + name + "\"");
}

py::list stringsOf(const Strings& strings) {
  py::list texts;
  for (const std::string* text : strings.all()) texts.append(toPython(*text));
  return texts;
}

py::list sitesOf(const Trace& trace) {
  py::list sites;
  for (const Trace::Site& site : trace.sites()) {
    sites.append(py::make_tuple(static_cast<int>(site.kind), site.file, site.line));
  }
  return sites;
}

py::list labelsOf(const Links& links) {
  py::list labels;
  for (const Links::Label& label : links.labels()) {
    labels.append(py::make_tuple(label.kind, label.name));
  }
  return labels;
}

// The tables of a trace file that all of its files share, by name.
py::dict tablesOf(Trace& trace, const Places& places) {
  ModelPaths paths(places, trace.strings());
  DeltaTable<4> links;
  const Links& known = trace.links();
  for (std::size_t i = 1; i < known.links().size(); ++i) {
    const Links::Link& link = known.links()[i];
    const std::uint32_t path =
        link.element == 0 ? 0 : paths.add(known.elements()[link.element - 1], known);
    links.append({link.parent, link.site, link.label, path});
  }
  py::dict tables;
  tables["labels"] = labelsOf(known);
  tables["links"] = links.text();
  tables["paths"] = paths.table();
  tables["sites"] = sitesOf(trace);
  tables["strings"] = stringsOf(trace.strings());
  return tables;
}

// How long each template ran, by its name.
py::dict secondsOf(Trace& trace) {
  py::dict seconds;
  for (const auto& [file, time] : trace.times().all()) {
    seconds[toPython(*trace.strings().all()[file])] = std::chrono::duration<double>(time).count();
  }
  return seconds;
}

// The table of a LineUses, for the table of ranges and the bytes of each file.
std::string lineUses(const Trace& trace, const py::iterable& files) {
  LineUses uses(trace);
  for (const py::handle file : files) {
    const auto pair = file.cast<py::tuple>();
    const auto ranges = pair[0].cast<std::string_view>();
    uses.add(ranges, Bytes(pair[1]).view());
  }
  return uses.table();
}

// The ends of the lines of a text, as a table.
std::string lineEnds(const py::object& data) {
  const Bytes bytes(data);
  const std::string_view text = bytes.view();
  DeltaTable<1> ends;
  std::size_t end = 0;
  while (end != text.size()) {
    const std::size_t newline = text.find('\n', end);
    end = newline == text.npos ? text.size() : newline + 1;
    ends.append({static_cast<std::int64_t>(end)});
  }
  return ends.text();
}

// Each column as the bytes of 32-bit integers.
py::list columns(const py::str& text, std::size_t fields) {
  py::list found;
  for (const auto& column : columnsOf(utf8(text, "a table"), fields)) {
    found.append(py::bytes(reinterpret_cast<const char*>(column.data()),
                           column.size() * sizeof(std::int32_t)));
  }
  return found;
}

}  // namespace

void bindTrace(py::module_& module, RepositoryClass& repository) {
  py::class_<Trace, std::shared_ptr<Trace>>(module, "Trace")
      .def(
          "add_site",
          [](Trace& trace, const std::string& kind, const py::str& file, std::uint32_t line,
             std::uint32_t lines) {
            const std::uint32_t label = trace.strings().number(bytesOf(file));
            return trace.addSite({kindOf(kind), label, line, lines});
          },
          py::arg("kind"), py::arg("file"), py::arg("line"), py::arg("lines") = 1)
      .def("add_label",
           [](Trace& trace, const py::str& kind, const py::str& name) {
             Strings& strings = trace.strings();
             const std::uint32_t number = strings.number(bytesOf(kind));
             return trace.links().addLabel({number, strings.number(bytesOf(name))});
           })
      .def("ask", [](Trace& trace, int file, const py::str& header,
                     std::uint32_t site) { trace.ask(file, bytesOf(header), site); })
      .def_property_readonly("depth", [](Trace& trace) { return trace.links().depth(); })
      .def("leave_to", &Trace::leaveTo)
      .def("start_clock", [](Trace& trace) { trace.times().start(); })
      .def_property_readonly("seconds", &secondsOf)
      .def("line_uses", &lineUses)
      .def("tables", &tablesOf);
  py::class_<ScriptLines>(module, "ScriptLines")
      .def(py::init([](Trace& trace, const py::str& script, py::function nameOf) {
             return std::make_unique<ScriptLines>(trace, bytesOf(script), std::move(nameOf));
           }),
           py::keep_alive<1, 2>())
      .def_property_readonly("observer", [](ScriptLines& lines) {
        return py::capsule(static_cast<orbel::python::Observer*>(&lines),
                           orbel::python::Observer::capsuleName);
      });
  repository
      .def("start_trace",
           [](PackagedFiles& files) {
             files.trace = std::make_shared<Trace>();
             return files.trace;
           })
      .def("adopt_script", [](PackagedFiles& files, const ScriptLines& lines) {
        files.trace->adopt(files, lines.script(), lines.added());
      });
  py::tuple kinds(std::size(kindNames));
  for (std::size_t i = 0; i < std::size(kindNames); ++i) kinds[i] = kindNames[i];
  module.attr("SITE_KINDS") = kinds;
  module.def("line_ends", &lineEnds);
  module.def("delta_columns", &columns);
}

}  // namespace orv
