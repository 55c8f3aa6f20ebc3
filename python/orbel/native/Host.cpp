#include "python/orbel/native/Host.hpp"

#include <string>
#include <vector>

#include <orbel/MessageCatalogue.hpp>
#include <orbel/Module.hpp>
#include <orbel/ObjectSystem.hpp>

#include "python/orbel/native/Errors.hpp"
#include "python/orbel/native/FromPython.hpp"
#include "python/orbel/native/HostClass.hpp"
#include "python/orbel/native/Object.hpp"
#include "python/orbel/native/Text.hpp"
#include "python/orbel/native/ToPython.hpp"

namespace orbel::python {
namespace {

namespace py = pybind11;

py::list textList(const std::vector<std::string>& texts) {
  py::list list;
  for (const std::string& text : texts) list.append(checked(newText(text)));
  return list;
}

template <const std::string& (Module::*Getter)() const>
py::object moduleText(const Module& module) {
  return checked(newText((module.*Getter)()));
}

// A free-standing function of a module under its name, as Python calls it.
py::object functionOf(const FunctionEntry& entry) {
  const auto call = [entry](const py::args& arguments) {
    const std::string name = entry.name;
    std::vector<Value> values;
    values.reserve(arguments.size());
    for (const auto& argument : arguments) {
      values.push_back(fromPython(argument.ptr(), Place(name, values.size() + 1)));
    }
    return checked(toPython(entry.call(values), nullptr));
  };
  return py::cpp_function(call, py::name(entry.name));
}

py::dict functionsOf(const Module& module) {
  py::dict functions;
  for (const FunctionEntry* entry = module.functions().entries; entry->name != nullptr; ++entry) {
    functions[checked(newText(entry->name))] = functionOf(*entry);
  }
  return functions;
}

PackageInterface& package(const py::handle& name) {
  const Name id(requireText(name, "orbel.package"));
  return *ObjectSystem::instance().publicClient().getPackage(id);
}

py::object findClass(const py::handle& packageName, const py::handle& name) {
  const ClassInfo* info = package(packageName).findClass(requireText(name, "find_class"));
  return info ? py::reinterpret_borrow<py::object>(reinterpret_cast<PyObject*>(typeOf(*info)))
              : py::none();
}

void replaceMessage(const py::handle& identifier, const py::handle& words) {
  const std::string id = requireText(identifier, "orbel.set_message");
  const auto colon = id.rfind(':');
  if (colon == std::string::npos) {
    throw py::value_error("orbel.set_message needs an identifier of the form Component:Identifier");
  }
  setMessage(id.substr(0, colon), id.substr(colon + 1), requireText(words, "orbel.set_message"));
}

py::object wrap(const py::handle& capsule, const py::handle& owner) {
  constexpr const char* name = "orbel.HandleBase";
  if (PyCapsule_IsValid(capsule.ptr(), name) == 0) {
    raisePython(PyExc_TypeError, std::string("orbel.wrap needs a capsule named \"") + name +
                                     "\", not " + Py_TYPE(capsule.ptr())->tp_name);
  }
  auto* object = static_cast<HandleBase*>(PyCapsule_GetPointer(capsule.ptr(), name));
  const Value value = object->toHostValue();
  const auto* handle = value.get<Handle>();
  if (handle == nullptr) {
    raisePython(PyExc_TypeError, "orbel.wrap was given an object that has no handle");
  }
  return checked(newObject(*handle, owner.ptr()));
}

Object& requireObject(const py::handle& object, const char* caller) {
  Object* known = asObject(object.ptr());
  if (known == nullptr) {
    raisePython(PyExc_TypeError, std::string(caller) + " needs an orbel.Object, not " +
                                     Py_TYPE(object.ptr())->tp_name);
  }
  return *known;
}

}  // namespace

void addHost(py::module_& module) {
  py::class_<Module, std::shared_ptr<Module>>(module, "Module", "A loaded module of the host.")
      .def_property_readonly("name", &moduleText<&Module::name>)
      .def_property_readonly("version", &moduleText<&Module::version>)
      .def_property_readonly("build_date", &moduleText<&Module::buildDate>)
      .def_property_readonly("package_names",
                             [](const Module& self) { return textList(self.packageNames()); })
      .def_property_readonly("functions", &functionsOf)
      .def("close", &Module::close);
  module.def("load",
             [](const py::handle& name) { return Module::load(requireText(name, "orbel.load")); });
  module.def("package_description",
             [](const py::handle& name) { return checked(newText(package(name).description())); });
  module.def("class_names",
             [](const py::handle& name) { return textList(package(name).classNames()); });
  module.def("find_class", &findClass);
  module.def("set_message", &replaceMessage);
  module.def("wrap", &wrap);
  module.def("destroy", [](const py::handle& object) {
    destroyObject(requireObject(object, "orbel.destroy").value);
  });
  module.def("is_valid", [](const py::handle& object) {
    return requireObject(object, "orbel.is_valid").handle().isValid();
  });
}

}  // namespace orbel::python
