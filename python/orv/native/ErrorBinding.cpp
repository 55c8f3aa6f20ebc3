#include <exception>

#include <orbel/Diagnostics.hpp>

#include "python/orbel/native/Errors.hpp"
#include "python/orv/native/Bindings.hpp"

namespace orv {

void raiseDiagnostic(const orbel::HostException& diagnostic) {
  orbel::python::setHostError(diagnostic, "orv.errors", "Diagnostic");
}

void bindErrors() {
  // NOLINTNEXTLINE(performance-unnecessary-value-param): the type that pybind11 requires
  pybind11::register_local_exception_translator([](std::exception_ptr error) {
    try {
      if (error) std::rethrow_exception(error);
    } catch (const orbel::HostException& diagnostic) {
      raiseDiagnostic(diagnostic);
    }
  });
}

}  // namespace orv
