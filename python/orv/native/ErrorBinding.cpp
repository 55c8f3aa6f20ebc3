#include <exception>
#include <string>
#include <variant>

#include <orbel/Diagnostics.hpp>

#include "python/orv/native/Bindings.hpp"
#include "python/orv/native/Text.hpp"

namespace orv {
namespace {

namespace py = pybind11;

py::object toArgument(const orbel::MessageArgument& argument) {
  if (const auto* text = std::get_if<std::string>(&argument)) return toPython(*text);
  const double number = std::get<double>(argument);
  const auto whole = static_cast<long long>(number);
  if (static_cast<double>(whole) == number) return py::int_(whole);
  return py::float_(number);
}

}  // namespace

void raiseDiagnostic(const orbel::HostException& diagnostic) {
  py::list arguments;
  for (const orbel::MessageArgument& argument : diagnostic.arguments()) {
    arguments.append(toArgument(argument));
  }
  const py::object type = py::module_::import("orv.errors").attr("Diagnostic");
  const py::object error = type(toPython(diagnostic.component() + ":" + diagnostic.identifier()),
                                py::tuple(arguments), toPython(diagnostic.what()));
  PyErr_SetObject(type.ptr(), error.ptr());
}

void bindErrors() {
  // NOLINTNEXTLINE(performance-unnecessary-value-param): the type that pybind11 asks for
  py::register_local_exception_translator([](std::exception_ptr error) {
    try {
      if (error) std::rethrow_exception(error);
    } catch (const orbel::HostException& diagnostic) {
      raiseDiagnostic(diagnostic);
    }
  });
}

}  // namespace orv
