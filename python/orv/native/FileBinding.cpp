#include <array>
#include <string>
#include <string_view>
#include <vector>

#include <boost/function.hpp>
#include <pybind11/stl.h>

#include <orbel/HandleBase.hpp>
#include <varn/FileType.hpp>

#include "python/orv/native/Bindings.hpp"
#include "python/orv/native/Text.hpp"

namespace orv {
namespace {

namespace py = pybind11;

int lastIndex(const PackagedFiles& files) {
  return static_cast<int>(files.repository.getFileList().size()) - 1;
}

// The kinds of files that a template can declare.
constexpr std::array<std::string_view, 9> fileKinds = {
    "generic",       "data_types",    "model",     "model_header", "model_types",
    "module_header", "module_source", "packaging", "text",
};

template <class Names>
py::tuple textTuple(const Names& names) {
  py::list texts;
  for (const std::string_view name : names) texts.append(toPython(name));
  return py::tuple(texts);
}

std::string nameArgument(py::handle name) { return textArgument(name, "a file's name"); }

// A way to make a file of a given name, as a Python method that returns the new file's index.
template <class File>
auto create(File& (Varn::VarnFileRepository::*make)(const std::string&)) {
  return [make](PackagedFiles& files, const py::object& name) {
    (files.repository.*make)(nameArgument(name));
    return lastIndex(files);
  };
}

auto createModelNamed(Varn::VarnGenericFile& (Varn::VarnFileRepository::*make)()) {
  return [make](PackagedFiles& files) {
    (files.repository.*make)();
    return lastIndex(files);
  };
}

auto createModule(Varn::VarnModuleFile& (Varn::VarnFileRepository::*make)(
    const std::string&, const std::vector<int>&)) {
  return [make](PackagedFiles& files, const py::object& name, const std::vector<int>& modules) {
    (files.repository.*make)(nameArgument(name), modules);
    return lastIndex(files);
  };
}

auto findModule(Varn::VarnModuleFile* (Varn::VarnFileRepository::*find)(int) const) {
  return [find](PackagedFiles& files, int module) {
    const Varn::VarnModuleFile* file = (files.repository.*find)(module);
    return file == nullptr ? -1 : files.repository.findFileIndexByName(file->getNameAscii());
  };
}

// The bridge answers with the last file of the repository, which is the key's own file only when
// the call made it: keys that were there before share the file without a name.
int packagingFile(PackagedFiles& files, const py::object& key) {
  const std::string name = textArgument(key, "a packaging key");
  const int last = lastIndex(files);
  try {
    const auto index = static_cast<int>(files.manager.orvBridge().getFileRecIndexForKey(name));
    return index > last ? index : files.repository.findFileIndexByName("");
  } catch (const boost::bad_function_call&) {
    throw py::value_error("the packaging key \"" + name +
                          "\" stands for no file; use \"mdl_hdr\" or \"mdl_src\"");
  }
}

py::tuple registerName(PackagedFiles& files, const py::object& name) {
  std::string registered;
  const bool isNew = files.repository.findDuplicateFileEntry(nameArgument(name), registered);
  return py::make_tuple(isNew, toPython(registered));
}

std::string classOf(PackagedFiles& files, int index) {
  const std::string name = files.file(index).getFullyQualifiedKoboTypeName();
  return name.substr(name.find('.') + 1);
}

// The object that orbel.wrap() makes a host handle of. It owns nothing: the repository must outlive
// it.
py::capsule handle(PackagedFiles& files) {
  return py::capsule(static_cast<orbel::HandleBase*>(&files.repository), "orbel.HandleBase");
}

}  // namespace

void bindFiles(py::module_& module, RepositoryClass& repository) {
  module.attr("FILE_KINDS") = textTuple(fileKinds);
  module.attr("FILE_TYPES") = textTuple(Varn::fileTypeNames);
  using R = Varn::VarnFileRepository;
  repository.def(py::init<>())
      .def("create_generic", create(&R::createGenericFile))
      .def("create_text",
           [](PackagedFiles& files, const py::object& name) {
             files.repository.createGenericFile(nameArgument(name));
             files.makeText(lastIndex(files));
             return lastIndex(files);
           })
      .def("create_data_types", create(&R::createDataTypesFile))
      .def("create_model", create(&R::createModelFile))
      .def("create_model_header", createModelNamed(&R::createModelHeaderFile))
      .def("create_model_types", createModelNamed(&R::createModelTypesFile))
      .def("create_module_header", createModule(&R::createModuleHeaderFile))
      .def("create_module_source", createModule(&R::createModuleSourceFile))
      .def("packaging_file", &packagingFile)
      .def("find",
           [](PackagedFiles& files, const py::object& name) {
             return files.repository.findFileIndexByName(nameArgument(name));
           })
      .def("find_module_header", findModule(&R::getModuleHeaderFileByIndex))
      .def("find_module_source", findModule(&R::getModuleSourceFileByIndex))
      .def("__len__", [](PackagedFiles& files) { return files.repository.getFileList().size(); })
      .def("class_name", &classOf)
      .def("register_name", &registerName)
      .def_property(
          "model_name",
          [](PackagedFiles& files) { return toPython(files.repository.getModelName()); },
          [](PackagedFiles& files, const py::object& name) {
            files.repository.setModelName(textArgument(name, "the model's name"));
          })
      .def("name_file",
           [](PackagedFiles& files, const py::object& type, const py::object& name) {
             files.repository.addFileNameToTable(textArgument(type, "a file type"),
                                                 nameArgument(name));
           })
      .def("file_name",
           [](PackagedFiles& files, const py::object& type) {
             return toPython(
                 files.repository.getFileNameFromTable(textArgument(type, "a file type")));
           })
      .def("handle", &handle);
}

}  // namespace orv
