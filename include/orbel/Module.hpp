#ifndef ORBEL_MODULE_HPP
#define ORBEL_MODULE_HPP

#include <memory>
#include <string>
#include <vector>

#include <orbel/Export.hpp>
#include <orbel/FunctionTable.hpp>

namespace orbel {

// A shared library that adds packages to the object system. Under its name N it exports, with C
// linkage:
//
//   void OrbelInitialize_N();                                called once, when it is loaded
//   void OrbelTerminate_N();                                 called once, when it is closed
//   const orbel::FunctionTable* QueryOrbelFcnTable_N();
//   extern const char* const N_version;                      NUL-terminated 8-bit texts
//   extern const char* const N_build_date;
//   extern const char* const N_relative_path;
//
// A module starts and stops at most once in a process, and its code stays in memory to the end.
// Modules are loaded and closed while no other thread uses the object system.
class ORBEL_EXPORT Module {
 public:
  // Loads and initialises a module, by the path of its file (anything with a "/") or by its name
  // N: libN.so, or else its latest version (libN.so.1), in the folder of the host's own library,
  // or libN.so wherever the dynamic linker looks. A module that is loaded already is returned as it
  // is.
  //
  // Throws "ModuleNotLoaded" (with the linker's reason), "ModuleIncomplete" (naming every export
  // that is missing), "ModuleSpent" for a module that was closed or failed to initialise before,
  // and propagates what the initialisation throws.
  static std::shared_ptr<Module> load(const std::string& nameOrPath);

  Module(const Module&) = delete;
  Module& operator=(const Module&) = delete;
  // Closes the module; what its termination throws is lost.
  ~Module();

  // Terminates the module, if that was not done yet.
  void close();

  // False once the module was closed.
  bool isOpen() const { return isOpen_; }

  const std::string& name() const { return name_; }
  const std::string& version() const { return version_; }
  const std::string& buildDate() const { return buildDate_; }
  const std::string& relativePath() const { return relativePath_; }
  const FunctionTable& functions() const { return *functions_; }

  // The packages that its initialisation added, in that order.
  const std::vector<std::string>& packageNames() const { return packageNames_; }

 private:
  Module(std::string name, void* library, const std::string& path);
  void initialise();

  std::string name_;
  std::string version_;
  std::string buildDate_;
  std::string relativePath_;
  const FunctionTable* functions_ = nullptr;
  void (*initialise_)() = nullptr;
  void (*terminate_)() = nullptr;
  std::vector<std::string> packageNames_;
  bool isOpen_ = false;
};

}  // namespace orbel

#endif
