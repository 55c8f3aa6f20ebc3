#include <string>

#include <varn/FileAttribute.hpp>

#include "python/orv/native/Bindings.hpp"
#include "python/orv/native/Text.hpp"

namespace orv {
namespace {

namespace py = pybind11;

py::object getAttribute(PackagedFiles& files, int index, const py::object& name) {
  const Varn::FileRepOrvBridge& bridge = files.bridge();
  const std::string attribute = textArgument(name, "an attribute's name");
  if (bridge.isBooleanAttribute(attribute)) {
    return py::bool_(bridge.getBooleanAttribute(index, attribute));
  }
  if (!bridge.isStringArrayAttribute(attribute)) {
    return toPython(bridge.getStringAttribute(index, attribute));
  }
  py::list values;
  for (const std::string& value : bridge.getStringArrayAttribute(index, attribute)) {
    values.append(toPython(value));
  }
  return std::move(values);
}

// The library takes a text for a string and for one more element of a list.
void setAttribute(PackagedFiles& files, int index, const py::object& name,
                  const py::object& value) {
  const std::string attribute = textArgument(name, "an attribute's name");
  if (PyBool_Check(value.ptr())) {
    files.bridge().setAttribute(index, attribute, value.ptr() == Py_True);
  } else {
    const std::string what = "the value of " + attribute;
    files.bridge().setAttribute(index, attribute, utf8WithoutNul(value, what.c_str()).data());
  }
}

const char* kindName(Varn::FileAttribute::Kind kind) {
  using Kind = Varn::FileAttribute::Kind;
  if (kind == Kind::boolean) return "flag";
  return kind == Kind::string ? "text" : "list";
}

// (name, kind, whether it can be set) for each attribute.
py::tuple attributeTable() {
  py::tuple table(Varn::fileAttributes.size());
  for (std::size_t i = 0; i < table.size(); ++i) {
    const Varn::FileAttribute& attribute = Varn::fileAttributes[i];
    table[i] =
        py::make_tuple(toPython(attribute.name), kindName(attribute.kind), attribute.isSettable);
  }
  return table;
}

}  // namespace

void bindAttributes(py::module_& module, RepositoryClass& repository) {
  module.attr("ATTRIBUTES") = attributeTable();
  repository.def("get_attribute", &getAttribute).def("set_attribute", &setAttribute);
}

}  // namespace orv
