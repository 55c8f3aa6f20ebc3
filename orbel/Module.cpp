#include "orbel/Module.hpp"

#include <dlfcn.h>
#include <filesystem>
#include <map>
#include <string.h>
#include <utility>

#include <orbel/ObjectSystem.hpp>

#include "orbel/HostErrors.hpp"

namespace orbel {
namespace {

// Every module that was ever started, by the linker's handle, which stays open.
std::map<void*, std::weak_ptr<Module>>& startedModules() {
  static auto& modules = *new std::map<void*, std::weak_ptr<Module>>;
  return modules;
}

std::filesystem::path ownFolder() {
  static const char own = 0;
  Dl_info info{};
  const bool found = dladdr(&own, &info) != 0 && info.dli_fname != nullptr;
  return found ? std::filesystem::absolute(info.dli_fname).parent_path() : std::filesystem::path();
}

struct ModuleFile {
  std::string name;
  std::string path;
};

std::string withoutPrefixAndSuffix(std::string fileName) {
  if (fileName.compare(0, 3, "lib") == 0) fileName.erase(0, 3);
  return fileName.substr(0, fileName.find(".so"));
}

// The file of a library in a folder: the plain name, which only development packages install, or
// the latest version. Empty if there is none.
std::filesystem::path findLibrary(const std::filesystem::path& folder, const std::string& name) {
  std::error_code ignored;
  if (std::filesystem::exists(folder / name, ignored)) {
    return folder / name;
  }
  std::string latest;
  for (const auto& entry : std::filesystem::directory_iterator(folder, ignored)) {
    std::string found = entry.path().filename().string();
    if (found.compare(0, name.size() + 1, name + '.') == 0 &&
        strverscmp(latest.c_str(), found.c_str()) < 0) {
      latest = std::move(found);
    }
  }
  return latest.empty() ? std::filesystem::path() : folder / latest;
}

ModuleFile locate(const std::string& nameOrPath) {
  if (nameOrPath.find('\0') != std::string::npos) {
    raise("ModuleNotLoaded", {nameOrPath, "the name contains a NUL"});
  }
  if (nameOrPath.find('/') != std::string::npos) {
    return {withoutPrefixAndSuffix(std::filesystem::path(nameOrPath).filename().string()),
            nameOrPath};
  }
  const std::string fileName = "lib" + nameOrPath + ".so";
  const std::filesystem::path neighbour = findLibrary(ownFolder(), fileName);
  return {nameOrPath, neighbour.empty() ? fileName : neighbour.string()};
}

struct LibraryClose {
  void operator()(void* library) const noexcept { dlclose(library); }
};
using Library = std::unique_ptr<void, LibraryClose>;

Library open(const ModuleFile& file) {
  Library library(dlopen(file.path.c_str(), RTLD_NOW | RTLD_LOCAL));
  if (!library) {
    const char* reason = dlerror();
    raise("ModuleNotLoaded", {file.name, reason ? reason : "unknown reason"});
  }
  return library;
}

// Looks exports up and collects those that are missing.
class Exports {
 public:
  explicit Exports(void* library) : library_(library) {}

  template <class F>
  F* function(const std::string& name) {
    return reinterpret_cast<F*>(find(name));
  }

  std::string text(const std::string& name) {
    const auto* pointer = static_cast<const char* const*>(find(name));
    if (pointer == nullptr) return {};
    if (*pointer == nullptr) {
      addMissing(name + " (it is null)");
      return {};
    }
    return *pointer;
  }

  void addMissing(const std::string& name) { missing_ += (missing_.empty() ? "" : ", ") + name; }

  const std::string& missing() const { return missing_; }

 private:
  void* find(const std::string& name) {
    void* symbol = dlsym(library_, name.c_str());
    if (symbol == nullptr) addMissing(name);
    return symbol;
  }

  void* library_;
  std::string missing_;
};

}  // namespace

std::shared_ptr<Module> Module::load(const std::string& nameOrPath) {
  const ModuleFile file = locate(nameOrPath);
  Library library = open(file);
  const auto started = startedModules().find(library.get());
  if (started != startedModules().end()) {
    auto module = started->second.lock();
    if (!module || !module->isOpen()) raise("ModuleSpent", {file.name});
    return module;
  }
  // The constructor is private.
  std::shared_ptr<Module> module(new Module(file.name, library.get(), file.path));
  startedModules().emplace(library.get(), module);
  static_cast<void>(library.release());
  module->initialise();
  return module;
}

Module::Module(std::string name, void* library, const std::string& path) : name_(std::move(name)) {
  Exports exports(library);
  initialise_ = exports.function<void()>("OrbelInitialize_" + name_);
  terminate_ = exports.function<void()>("OrbelTerminate_" + name_);
  const std::string queryName = "QueryOrbelFcnTable_" + name_;
  auto* query = exports.function<const FunctionTable*()>(queryName);
  functions_ = query ? query() : nullptr;
  if (query && (functions_ == nullptr || functions_->entries == nullptr)) {
    exports.addMissing(queryName + " (it gives no table)");
  }
  version_ = exports.text(name_ + "_version");
  buildDate_ = exports.text(name_ + "_build_date");
  relativePath_ = exports.text(name_ + "_relative_path");
  if (!exports.missing().empty()) raise("ModuleIncomplete", {path, exports.missing()});
}

Module::~Module() {
  try {
    close();
  } catch (...) {  // NOLINT(bugprone-empty-catch): destructors do not throw
  }
}

void Module::initialise() {
  const ObjectSystem& system = ObjectSystem::instance();
  const auto before = static_cast<std::ptrdiff_t>(system.packageNames().size());
  initialise_();
  isOpen_ = true;
  packageNames_.assign(system.packageNames().begin() + before, system.packageNames().end());
}

void Module::close() {
  if (isOpen_) {
    isOpen_ = false;
    terminate_();
  }
}

}  // namespace orbel
