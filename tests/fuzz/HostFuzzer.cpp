// Calls members of the library's host classes with values read from an input, as a script could. A
// call that is refused must have changed nothing, and values must survive their copies.

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include <orbel/Module.hpp>
#include <orbel/ObjectSystem.hpp>
#include <varn/varn_filepackaging.hpp>

#include "fuzz/Input.hpp"

namespace {

using orbel::CellArray;
using orbel::CharacterArray;
using orbel::ClassInfo;
using orbel::Handle;
using orbel::Value;

const std::vector<const ClassInfo*>& classes() {
  static const auto module = orbel::Module::load("varn_filepackaging");
  static const auto all = [] {
    std::vector<const ClassInfo*> found;
    const auto package =
        orbel::ObjectSystem::instance().publicClient().getPackage(orbel::Name("Varn"));
    for (const std::string& name : package->classNames()) found.push_back(&package->getClass(name));
    return found;
  }();
  return all;
}

class Run {
 public:
  explicit Run(fuzz::Input input) : input_(input) {
    objects_.push_back(construct(*classes().back(), {}));
  }

  void execute() {
    while (!input_.isEmpty()) {
      const std::string before = state();
      if (!succeeds() && state() != before) fail("a refused call changed the files");
    }
  }

 private:
  [[noreturn]] static void fail(const char* what) {
    std::fprintf(stderr, "%s\n", what);
    std::abort();
  }

  static Value construct(const ClassInfo& info, const std::vector<Value>& arguments) {
    return orbel::ObjectSystem::instance().publicClient().construct(info, arguments);
  }

  const Value& object() { return objects_[input_.choice(objects_.size())]; }

  Value value(int depth = 0) {
    switch (input_.choice(depth < 3 ? 10 : 7)) {
      case 0:
        return {};
      case 1:
        return Value(input_.flag());
      case 2:
        return Value(static_cast<std::uint32_t>(input_.byte() % 5));
      case 3:
        return Value(static_cast<double>(input_.byte()) / 2 - 3);
      case 4:
        return Value(orbel::StringArray({input_.text(), input_.text()}));
      case 5:
        return object();
      case 6:
        return Value(CharacterArray(
            std::u16string(input_.byte() % 9, static_cast<char16_t>(0xD700 + input_.byte()))));
      case 7: {
        std::vector<Value> elements(input_.choice(4));
        for (Value& element : elements) element = value(depth + 1);
        return Value(CellArray(std::move(elements)));
      }
      default:
        return Value(CharacterArray(input_.text()));
    }
  }

  bool succeeds() {
    try {
      keep(perform());
      return true;
    } catch (const orbel::HostException& error) {
      if (std::string(error.message()).empty()) fail("an error without a message");
      return false;
    }
  }

  Value perform() {
    const ClassInfo& info = *classes()[input_.choice(classes().size())];
    std::vector<Value> arguments(input_.choice(4));
    for (Value& argument : arguments) argument = value();
    const std::size_t action = input_.choice(8);
    if (action == 0) return construct(info, arguments);
    if (action == 1 && objects_.size() > 1) {
      const std::size_t last = objects_.size() - 1;
      if (input_.flag()) orbel::destroyObject(objects_[last]);
      objects_.pop_back();
      return {};
    }
    if (action < 4 && !info.properties().empty()) {
      const auto& property = *info.properties()[input_.choice(info.properties().size())];
      if (action == 2) return property.get(object());
      property.set(object(), value());
      return {};
    }
    if (info.methods().empty()) return {};
    const auto& method = *info.methods()[input_.choice(info.methods().size())];
    if (!arguments.empty()) arguments[0] = object();
    return method.invoke(arguments);
  }

  void keep(const Value& result) {
    const Value copy = result;
    if (copy != result || copy.size() != result.size() || copy.className() != result.className()) {
      fail("a copy differs");
    }
    if (objects_.size() < 50 && result.get<Handle>() != nullptr) objects_.push_back(result);
  }

  // What scripts can see of the files of the first repository.
  std::string state() const {
    auto& repository =
        dynamic_cast<Varn::VarnFileRepository&>(*objects_[0].get<Handle>()->object());
    std::string text;
    for (const Varn::VarnFile* file : repository.getFileList()) {
      text += file->getNameAscii() + '|' + file->getType() + '|' + file->getGroup() + '|';
      for (const std::string& system : file->getSystemsInFile()) text += system + ',';
      for (int kind = 0; kind <= Varn::USERBOTTOM_SECTION; ++kind) {
        text += file->getFileSection(static_cast<Varn::VarnFileSectionKind>(kind)).getContent();
        text += '|';
      }
    }
    return text;
  }

  fuzz::Input input_;
  // The first is a repository and stays.
  std::vector<Value> objects_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Run(fuzz::Input(data, size)).execute();
  return 0;
}
