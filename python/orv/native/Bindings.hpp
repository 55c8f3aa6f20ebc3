// The areas of the native module; each adds its classes or operations.
#ifndef ORV_BINDINGS_HPP
#define ORV_BINDINGS_HPP

#include <memory>

#include <pybind11/pybind11.h>

#include <orbel/Diagnostics.hpp>

#include "python/orv/native/PackagedFiles.hpp"

namespace orv {

using RepositoryClass = pybind11::class_<PackagedFiles, std::shared_ptr<PackagedFiles>>;

// Turns the library's diagnostics into the Python exception orv.errors.Diagnostic.
void bindErrors();
// Sets that exception, for code that the interpreter calls without pybind11.
void raiseDiagnostic(const orbel::HostException& diagnostic);

// The operations of the class Repository, area by area. A file is named by its index; an index that
// no file has is the library's diagnostic "InvalidFileIndex". The first two also add tables of
// names to the module.
void bindFiles(pybind11::module_& module, RepositoryClass& repository);
void bindAttributes(pybind11::module_& module, RepositoryClass& repository);
void bindSections(RepositoryClass& repository);
void bindCustomSections(RepositoryClass& repository);

void bindPrinter(pybind11::module_& module);
void bindOperations(pybind11::module_& module);
void bindAlarm(pybind11::module_& module);
void bindComposer(pybind11::module_& module, RepositoryClass& repository);
void bindModels(pybind11::module_& module);
void bindOutput(pybind11::module_& module);
void bindRegions(pybind11::module_& module);
void bindTextFilters(pybind11::module_& module);
void bindTrace(pybind11::module_& module, RepositoryClass& repository);

}  // namespace orv

#endif
