#ifndef ORBEL_PACKAGEINTERFACE_HPP
#define ORBEL_PACKAGEINTERFACE_HPP

#include <atomic>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <orbel/ClassInfo.hpp>
#include <orbel/ClassRegistrar.hpp>
#include <orbel/Export.hpp>
#include <orbel/PackageInfo.hpp>

namespace orbel {

class Client;

// A registered package. Its classes are registered when one of them is first looked up, and each is
// defined when it is first found.
//
// Several threads may look classes up at once, the first look-up included.
class ORBEL_EXPORT PackageInterface final : private ClassRegistrar {
 public:
  explicit PackageInterface(std::unique_ptr<PackageInfo> info);
  PackageInterface(const PackageInterface&) = delete;
  PackageInterface& operator=(const PackageInterface&) = delete;
  ~PackageInterface() override;

  const std::string& name() const { return name_; }
  std::string description() const { return info_->getDescription(); }

  // The simple names, in the order of registration. Defines nothing.
  std::vector<std::string> classNames();

  // The class with the simple name `name`, defined; null when there is none. Propagates what
  // registration and definition throw.
  const ClassInfo* findClass(const std::string& name);
  // The same, but throws "UnknownClass".
  const ClassInfo& getClass(const std::string& name);

  // Withdraws the package from `client`, which no longer finds it or makes objects of its classes.
  // Objects that exist stay usable. Not while another thread uses that client.
  void releaseForClient(Client& client) const;
  bool isAvailableTo(const Client& client) const;

  // Whether the package has a class with the simple name `name`. Defines nothing.
  bool hasClass(const std::string& name);

 private:
  void addClass(std::unique_ptr<ClassInfo> info) override;
  void ensureRegistered();

  std::unique_ptr<PackageInfo> info_;
  std::string name_;
  std::atomic<bool> registered_ = false;
  bool registrationBegun_ = false;
  std::vector<std::unique_ptr<ClassInfo>> classes_;
  std::map<std::string, ClassInfo*> classesByName_;
};

}  // namespace orbel

#endif
