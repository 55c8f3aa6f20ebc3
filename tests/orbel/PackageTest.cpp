#include <atomic>
#include <chrono>
#include <functional>
#include <string>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <orbel/ObjectSystem.hpp>

#include "RaisedText.hpp"
#include "sample/Sample.hpp"

namespace {

using orbel::Name;
using testing::ElementsAre;

orbel::ObjectSystem& objects() { return orbel::ObjectSystem::instance(); }

// A class whose declaration each test supplies.
class Declared final : public orbel::HandleClass<sample::Item> {
 public:
  using Declaration = std::function<void(Declared&)>;
  Declared(const std::string& name, Declaration declaration)
      : HandleClass(name, ""), declaration_(std::move(declaration)) {}
  void define() override { declaration_(*this); }
  using ClassInfo::addSuperclass;
  using HandleClass::addConstructor;
  using HandleClass::addMethod;
  using HandleClass::addProperty;

 private:
  Declaration declaration_;
};

class ListedPackage final : public orbel::PackageInfo {
 public:
  using Classes = std::vector<std::pair<std::string, Declared::Declaration>>;
  ListedPackage(std::string name, Classes classes)
      : name_(std::move(name)), classes_(std::move(classes)) {}
  std::string getName() const override { return name_; }
  void registerClasses(orbel::ClassRegistrar& registrar) override {
    for (const auto& [name, declaration] : classes_) {
      registrar.addClass(std::make_unique<Declared>(name, declaration));
    }
  }

 private:
  std::string name_;
  Classes classes_;
};

std::shared_ptr<orbel::PackageInterface> add(const std::string& name,
                                             ListedPackage::Classes classes) {
  objects().addPackage(std::make_unique<ListedPackage>(name, std::move(classes)));
  return objects().publicClient().getPackage(Name(name));
}

TEST(Package, DefinesEachClassOnceWhenItIsFirstNeeded) {
  int definitions = 0;
  const auto package = add("Lazy", {{"A", [&](Declared&) { ++definitions; }}});
  EXPECT_THAT(package->classNames(), ElementsAre("A"));
  EXPECT_EQ(definitions, 0);
  EXPECT_EQ(&package->getClass("A"), objects().findClass("Lazy.A"));
  EXPECT_EQ(definitions, 1);
  EXPECT_EQ(raisedText([&] { package->getClass("B"); }),
            "Orbel:UnknownClass: There is no class \"Lazy.B\".");
  EXPECT_EQ(raisedText([] { objects().publicClient().getClass("NoPoint"); }),
            "Orbel:UnknownPackage: There is no package \"\".");
}

TEST(Package, DefinesAClassOnceForSeveralThreads) {
  int definitions = 0;
  const auto slowly = [&](Declared&) {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    ++definitions;
  };
  const auto package = add("Shared", {{"A",
                                       [&](Declared& info) {
                                         info.addSuperclass("Shared.B", true);
                                         slowly(info);
                                       }},
                                      {"B", slowly}});
  std::atomic<int> found = 0;
  std::vector<std::thread> threads;
  threads.reserve(6);
  for (int i = 0; i < 6; ++i) {
    threads.emplace_back([&, first = i % 2 == 0 ? "A" : "B"] {
      found += static_cast<int>(package->getClass(first).derivesFrom("Shared.B"));
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(found, 6);
  EXPECT_EQ(definitions, 2);
}

TEST(Package, AFailedDefinitionLeavesNothingBehind) {
  const auto property = [](Declared& info) { info.addProperty("P", &sample::Item::label); };
  const auto method = [](Declared& info) {
    info.addMethod("P", {"char", "Retry.A"}, &sample::Item::describe);
  };
  const std::vector<Declared::Declaration> repeated[] = {
      {property, property}, {method, method}, {property, method}, {method, property}};
  std::vector<Declared::Declaration> members;
  const auto package = add("Retry", {{"A", [&](Declared& info) {
                                        for (const auto& declare : members) declare(info);
                                      }}});
  for (const auto& twice : repeated) {
    members = twice;
    EXPECT_EQ(raisedText([&] { package->getClass("A"); }),
              "Orbel:MemberExists: The class Retry.A declares \"P\" twice.");
  }
  members = {property};
  EXPECT_EQ(package->getClass("A").properties().size(), 1U);
}

TEST(Package, RefusesSignaturesThatDoNotFit) {
  const std::pair<Declared::Declaration, const char*> rows[] = {
      {[](Declared& c) {
         c.addMethod("m", {"void", "Bad.A"}, &sample::Item::describe);
       },
       "m does not fit what it calls: the result is declared \"void\", but is \"char vector\"."},
      {[](Declared& c) { c.addMethod("m", {}, &sample::Item::describe); },
       "m does not fit what it calls: the result is declared \"\", which is no type."},
      {[](Declared& c) {
         c.addMethod("m", {"char", "Bad.B"}, &sample::Item::describe);
       },
       "m does not fit what it calls: the class itself, \"Bad.A\", must be the first argument."},
      {[](Declared& c) {
         c.addMethod("m", {"void", "Bad.A"}, &sample::Item::setHidden);
       },
       "m does not fit what it calls: 0 argument(s) are declared, but there are 1."},
      {[](Declared& c) {
         c.addMethod("m", {"void", "Bad.A", "cell"}, &sample::Item::setHidden);
       },
       "m does not fit what it calls: argument 1 is declared \"cell\", but is \"logical scalar\"."},
      {[](Declared& c) {
         c.addMethod("m", {"logical scalar", "Bad.A", "char"}, &sample::Item::isSameAs);
       },
       "m does not fit what it calls: argument 1 is declared \"char\", but is \"a qualified class "
       "name\"."},
      {[](Declared& c) {
         c.addMethod("m", {"logical scalar", "Bad.A", "Bad.B"}, &sample::Item::isSameAs);
       },
       "m does not fit what it calls: there is no class \"Bad.B\"."},
      {[](Declared& c) {
         c.addMethod("m", {"logical scalar", "Bad.A", "No.Such"}, &sample::Item::isSameAs);
       },
       "m does not fit what it calls: there is no class \"No.Such\"."},
      {[](Declared& c) { c.addConstructor<std::string>({"int"}); },
       "A does not fit what it calls: argument 1 is declared \"int\", which is no type."},
  };
  Declared::Declaration declaration;
  const auto package = add("Bad", {{"A", [&](Declared& info) { declaration(info); }}});
  for (const auto& [faulty, error] : rows) {
    declaration = faulty;
    EXPECT_EQ(raisedText([&] { package->getClass("A"); }),
              std::string("Orbel:SignatureMismatch: The declaration of Bad.A.") + error);
  }
}

TEST(Package, RefusesUnknownAndCircularSuperclasses) {
  const auto package =
      add("Family",
          {{"A", [](Declared& info) { info.addSuperclass("Family.B", true); }},
           {"B", [](Declared& info) { info.addSuperclass("Family.A", true); }},
           {"C", [](Declared& info) { info.addSuperclass("No.Such", false); }},
           {"D", [](Declared& info) { info.addSuperclass("orbel.mixin.Heterogeneous", true); }}});
  EXPECT_EQ(raisedText([&] { package->getClass("A"); }),
            "Orbel:SuperclassCycle: The class Family.A is among its own superclasses.");
  EXPECT_EQ(raisedText([&] { package->getClass("C"); }),
            "Orbel:UnknownClass: There is no class \"No.Such\".");
  EXPECT_EQ(raisedText([&] { package->getClass("D"); }),
            "Orbel:UnknownClass: There is no class \"orbel.mixin.Heterogeneous\".");
}

TEST(Package, NamesAreTakenOnce) {
  const auto package = add("Twice", {{"A", [](Declared&) {}}, {"A", [](Declared&) {}}});
  EXPECT_EQ(raisedText([] { add("Twice", {}); }),
            "Orbel:PackageExists: A package \"Twice\" was added before.");
  EXPECT_EQ(raisedText([&] { package->classNames(); }),
            "Orbel:ClassExists: The package Twice has a class \"A\" already.");
  EXPECT_THAT(package->classNames(), ElementsAre("A"));
}

TEST(Package, KeepsLibraryObjectsFromScriptsUnlessTold) {
  const auto package =
      add("Sealed", {{"A", [](Declared& info) { info.addProperty("P", &sample::Item::label); }}});
  class Sealed final : public sample::Item {
   public:
    std::string getFullyQualifiedKoboTypeName() const override { return "Sealed.A"; }
  };
  Sealed object;
  EXPECT_EQ(raisedText([&] { package->getClass("A").getProperty("P").get(object.toHostValue()); }),
            "Orbel:LibraryObjectHidden: Scripts can only use objects of the class Sealed.A that "
            "they made themselves.");
  EXPECT_EQ(raisedText([&] { objects().publicClient().construct(package->getClass("A"), {}); }),
            "Orbel:NoConstructor: Scripts cannot make objects of the class Sealed.A.");
}

}  // namespace
