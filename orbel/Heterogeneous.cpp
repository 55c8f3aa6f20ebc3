#include "orbel/Heterogeneous.hpp"

namespace orbel {
namespace {

class Heterogeneous final : public ClassInfo {
 public:
  const std::string& getName() const override { return name_; }
  const std::string& getDescription() const override { return description_; }
  void define() override {}
  bool isAbstract() const override { return true; }

 private:
  std::string name_ = "Heterogeneous";
  std::string description_ = "Lets an object array hold objects of different subclasses";
};

class MixinPackage final : public PackageInfo {
 public:
  std::string getName() const override { return "orbel.mixin"; }
  std::string getDescription() const override { return "Classes to derive other classes from"; }
  void registerClasses(ClassRegistrar& registrar) override {
    registrar.addClass(std::make_unique<Heterogeneous>());
  }
};

}  // namespace

std::unique_ptr<PackageInfo> makeMixinPackage() { return std::make_unique<MixinPackage>(); }

}  // namespace orbel
