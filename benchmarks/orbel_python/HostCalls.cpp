#include "benchmarks/orbel_python/HostCalls.hpp"

#include <chrono>
#include <string>

#include <orbel/Module.hpp>
#include <orbel/ObjectSystem.hpp>
#include <varn/varn_filepackaging.hpp>

namespace direct_binding {
namespace {

using orbel::Value;

const orbel::ClassInfo& classOf(orbel::HandleBase& object) {
  static const auto module = orbel::Module::load("varn_filepackaging");
  return orbel::ObjectSystem::instance().publicClient().getClass(
      object.getFullyQualifiedKoboTypeName());
}

// `call` returns a number that depends on what was called, so that no call is left out.
template <class Call>
double nanoseconds(std::size_t count, const Call& call) {
  using Clock = std::chrono::steady_clock;
  volatile std::size_t sum = 0;
  const auto start = Clock::now();
  for (std::size_t i = 0; i < count; ++i) {
    sum = sum + call();
  }
  const std::chrono::duration<double, std::nano> elapsed = Clock::now() - start;
  return elapsed.count() / static_cast<double>(count);
}

}  // namespace

CallTime timePropertyRead(std::size_t count) {
  Varn::VarnFileRepository repository;
  Varn::VarnFile& file = repository.createGenericFile("model.c");
  file.setType("SystemBody");
  const orbel::Property& property = classOf(file).getProperty("Type");
  const Value handle = file.toHostValue();
  return {nanoseconds(count, [&] { return file.getType().size(); }),
          nanoseconds(count, [&] { return property.get(handle).size(); })};
}

CallTime timeMethodCall(std::size_t count) {
  Varn::FunctionsSection section;
  section.addFunction("step", "void step(void);");
  const orbel::Method& method = classOf(section).getMethod("getFunctionName");
  const Value arguments[] = {section.toHostValue(), Value(std::uint32_t{1})};
  return {nanoseconds(count, [&] { return section.kobo_getFunctionName(1).size(); }),
          nanoseconds(count, [&] {
            return method.invoke({arguments, 2}).size();
          })};
}

}  // namespace direct_binding
