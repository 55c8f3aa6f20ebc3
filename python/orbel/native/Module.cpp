#include <exception>

#include <pybind11/pybind11.h>

#include "python/orbel/native/Arrays.hpp"
#include "python/orbel/native/Errors.hpp"
#include "python/orbel/native/Host.hpp"
#include "python/orbel/native/HostClass.hpp"
#include "python/orbel/native/Members.hpp"
#include "python/orbel/native/Object.hpp"

PYBIND11_MODULE(_native, module) {
  module.doc() = "The host object system, as the Python package orbel is built on it.";
  pybind11::register_local_exception_translator([](std::exception_ptr error) {
    orbel::python::guarded(false, [&]() -> bool { std::rethrow_exception(error); });
  });
  orbel::python::findArrayTypes();
  orbel::python::addObjectType(module);
  orbel::python::addClassType(module);
  orbel::python::addMethodType(module);
  orbel::python::addHost(module);
}
