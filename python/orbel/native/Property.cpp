#include <memory>
#include <string>
#include <vector>

#include "python/orbel/native/Documentation.hpp"
#include "python/orbel/native/Errors.hpp"
#include "python/orbel/native/FromPython.hpp"
#include "python/orbel/native/Members.hpp"
#include "python/orbel/native/Object.hpp"
#include "python/orbel/native/ToPython.hpp"

namespace orbel::python {
namespace {

const Property& propertyOf(void* closure) { return *static_cast<const Property*>(closure); }

// The interpreter has checked that `object` is of the type that the descriptor was made for.
PyObject* read(PyObject* object, void* closure) {
  return guarded<PyObject*>(nullptr, [&] {
    auto& self = *reinterpret_cast<Object*>(object);
    return toPython(propertyOf(closure).get(self.value), &self);
  });
}

int assign(PyObject* object, PyObject* value, void* closure) {
  return guarded(-1, [&] {
    const Property& property = propertyOf(closure);
    if (value == nullptr) {
      raisePython(PyExc_AttributeError, property.qualifiedName() + " cannot be deleted");
    }
    const auto& self = *reinterpret_cast<Object*>(object);
    property.set(self.value, fromPython(value, Place(property)));
    return 0;
  });
}

// The state of a descriptor. Never freed, like the host's classes.
struct Definition {
  std::string name;
  std::string documentation;
  PyGetSetDef entry;
};

Definition& keepDefinition(const Property& property) {
  static auto& definitions = *new std::vector<std::unique_ptr<Definition>>;
  definitions.push_back(std::make_unique<Definition>(
      Definition{property.name(), propertyDocumentation(property), {}}));
  return *definitions.back();
}

}  // namespace

pybind11::object newProperty(PyTypeObject* type, const Property& property) {
  Definition& definition = keepDefinition(property);
  definition.entry = {definition.name.c_str(), read, assign, definition.documentation.c_str(),
                      const_cast<Property*>(&property)};
  return checked(PyDescr_NewGetSet(type, &definition.entry));
}

}  // namespace orbel::python
