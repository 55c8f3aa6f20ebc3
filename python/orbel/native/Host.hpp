#ifndef ORBEL_PYTHON_HOST_HPP
#define ORBEL_PYTHON_HOST_HPP

#include <pybind11/pybind11.h>

namespace orbel::python {

// For Module.cpp: adds the functions for the host's modules, packages and catalogue.
void addHost(pybind11::module_& module);

}  // namespace orbel::python

#endif
