// A second module for the Python tests: a package "Sample" of boxes that own parts, with names that
// Python keeps for itself, and free functions.

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <orbel/Export.hpp>
#include <orbel/FunctionTable.hpp>
#include <orbel/HandleClass.hpp>
#include <orbel/ObjectSystem.hpp>

namespace {

std::uint32_t livingObjects = 0;

class Thing : public orbel::HandleBase {
 public:
  explicit Thing(std::string label) : label_(std::move(label)) { ++livingObjects; }
  Thing(const Thing&) = delete;
  Thing& operator=(const Thing&) = delete;
  ~Thing() override { --livingObjects; }

  std::string label() const { return label_; }
  void setLabel(const std::string& label) { label_ = label; }

 private:
  std::string label_;
};

class Part final : public Thing {
 public:
  using Thing::Thing;
  std::string getFullyQualifiedKoboTypeName() const override { return "Sample.Part"; }
};

class Box final : public Thing {
 public:
  using Thing::Thing;
  std::string getFullyQualifiedKoboTypeName() const override { return "Sample.Box"; }

  Part& makePart(const std::string& label) {
    return *parts_.emplace_back(std::make_unique<Part>(label));
  }
  void dropParts() { parts_.clear(); }
  Part* lastPart() const { return parts_.empty() ? nullptr : parts_.back().get(); }
  bool holds(const Part& part) const { return !parts_.empty() && parts_.back().get() == &part; }
  Box& itself() { return *this; }
  std::uint32_t size() const { return static_cast<std::uint32_t>(parts_.size()); }
  void fail() { throw std::runtime_error("the box is stuck"); }

 private:
  std::vector<std::unique_ptr<Part>> parts_;
};

template <class T>
class Exposed : public orbel::HandleClass<T> {
 public:
  using orbel::HandleClass<T>::HandleClass;
  bool exposesLibraryObjects() const override { return true; }
};

class ThingClass final : public Exposed<Thing> {
 public:
  using Exposed::Exposed;
  bool isAbstract() const override { return true; }
  void define() override {
    addSuperclass("orbel.mixin.Heterogeneous", false);
    addProperty("Label", &Thing::label, &Thing::setLabel);
  }
};

class PartClass final : public Exposed<Part> {
 public:
  using Exposed::Exposed;
  void define() override {
    addSuperclass("Sample.Thing", true);
    addSuperclass("orbel.mixin.Heterogeneous", false);
    addConstructor<std::string>({"char"});
  }
};

class BoxClass final : public Exposed<Box> {
 public:
  using Exposed::Exposed;
  void define() override {
    // In an order that Python does not allow for bases.
    addSuperclass("orbel.mixin.Heterogeneous", false);
    addSuperclass("Sample.Thing", true);
    addProperty("__len__", &Box::size);
    addMethod("import", {"Sample.Part", "Sample.Box", "char"}, &Box::makePart);
    addMethod("import_", {"void", "Sample.Box"}, &Box::dropParts);
    addMethod("last", {"Sample.Part", "Sample.Box"}, &Box::lastPart);
    addMethod("holds", {"logical scalar", "Sample.Box", "Sample.Part"}, &Box::holds);
    addMethod("itself", {"Sample.Box", "Sample.Box"}, &Box::itself);
    addMethod("fail", {"void", "Sample.Box"}, &Box::fail);
    addConstructor<std::string>({"char"});
  }
};

class SamplePackage final : public orbel::PackageInfo {
 public:
  std::string getName() const override { return "Sample"; }
  std::string getDescription() const override { return "Boxes and parts"; }
  void registerClasses(orbel::ClassRegistrar& registrar) override {
    registrar.addClass(std::make_unique<ThingClass>("Thing", "What has a label"));
    registrar.addClass(std::make_unique<PartClass>("Part", "A part of a box"));
    registrar.addClass(std::make_unique<BoxClass>("Box", "A box of parts"));
  }
};

orbel::Value living(orbel::Arguments /*arguments*/) { return orbel::Value(livingObjects); }

orbel::Value echo(orbel::Arguments arguments) {
  return arguments.size() == 0 ? orbel::Value() : arguments[0];
}

}  // namespace

extern "C" {

ORBEL_EXPORT extern const char* const orbel_zoo_version;
ORBEL_EXPORT extern const char* const orbel_zoo_build_date;
ORBEL_EXPORT extern const char* const orbel_zoo_relative_path;
const char* const orbel_zoo_version = "0.1.2.3";
const char* const orbel_zoo_build_date = "Jan  1 2024";
const char* const orbel_zoo_relative_path = "orbel_zoo.so";

ORBEL_EXPORT void OrbelInitialize_orbel_zoo() {
  orbel::ObjectSystem::instance().addPackage(std::make_unique<SamplePackage>());
}

ORBEL_EXPORT void OrbelTerminate_orbel_zoo() {
  orbel::ObjectSystem& host = orbel::ObjectSystem::instance();
  host.findPackage(orbel::Name("Sample"))->releaseForClient(host.publicClient());
}

ORBEL_EXPORT const orbel::FunctionTable* QueryOrbelFcnTable_orbel_zoo() {
  static const orbel::FunctionEntry entries[] = {
      {"living", living}, {"echo", echo}, {nullptr, nullptr}};
  static const orbel::FunctionTable table = {entries};
  return &table;
}

// A box that the library keeps, for clients that hold objects in C++.
ORBEL_EXPORT orbel::HandleBase* makeLibraryBox() { return new Box("kept by the library"); }
ORBEL_EXPORT void deleteLibraryBox(orbel::HandleBase* box) { delete box; }

}  // extern "C"
