#include "python/orv/native/output/RegionBinding.hpp"

#include <map>
#include <string>
#include <vector>

#include <pybind11/stl.h>

#include "python/orv/native/Bindings.hpp"
#include "python/orv/native/Bytes.hpp"
#include "python/orv/native/Text.hpp"
#include "python/orv/native/output/TextHash.hpp"

namespace orv {
namespace {

namespace py = pybind11;

Regions find(const Markers& markers, const py::object& data) {
  try {
    return markers.find(Bytes(data).view());
  } catch (const RegionDamage& damage) {
    throw py::value_error("line " + std::to_string(damage.line()) + ": " + damage.what());
  }
}

py::list ids(const Regions& regions) {
  py::list found;
  for (const Region& region : regions) found.append(toPython(region.id));
  return found;
}

std::size_t lineOf(const Regions& regions, const py::str& id) {
  const std::string wanted = bytesOf(id);
  for (const Region& region : regions) {
    if (region.id == wanted) return region.line;
  }
  throw py::key_error(wanted);
}

py::dict hashes(const py::object& data, const Regions& regions) {
  const Bytes bytes(data);
  py::dict found;
  for (const Region& region : regions) {
    found[toPython(region.id)] = textHash(region.textIn(bytes.view()));
  }
  return found;
}

py::dict texts(const py::object& data, const Regions& regions) {
  const Bytes bytes(data);
  py::dict found;
  for (const Region& region : regions) {
    const std::string_view text = region.textIn(bytes.view());
    found[toPython(region.id)] = py::bytes(text.data(), text.size());
  }
  return found;
}

py::bytes replaced(const py::object& data, const Regions& regions,
                   const std::map<std::string, std::string>& given, bool returns) {
  RegionTexts wanted;
  for (const auto& [id, text] : given) wanted.emplace(id, text);
  return withRegions(Bytes(data).view(), regions, wanted, returns);
}

}  // namespace

void bindRegions(py::module_& module) {
  py::class_<Regions>(module, "Regions")
      .def(py::init<>())
      .def("__len__", [](const Regions& regions) { return regions.size(); })
      .def_property_readonly("ids", &ids)
      .def("line_of", &lineOf);
  py::class_<Markers>(module, "Markers")
      .def(py::init<std::string>())
      .def_property_readonly("pattern",
                             [](const Markers& markers) { return toPython(markers.pattern()); })
      .def("lines",
           [](const Markers& markers, const py::str& id) {
             const std::string written = bytesOf(id);
             return py::make_tuple(toPython(markers.beginning(written)),
                                   toPython(markers.ending(written)));
           })
      .def("find", &find);
  module.def("byte_hash",
             [](const py::object& data) { return py::bytes(byteHash(Bytes(data).view())); });
  module.def(
      "frame_hash",
      [](const py::object& data, const Regions& regions) {
        return frameHash(Bytes(data).view(), regions);
      },
      py::arg("data"), py::arg("regions") = Regions());
  module.def("region_hashes", &hashes);
  module.def("region_texts", &texts);
  module.def("with_regions", &replaced);
}

}  // namespace orv
