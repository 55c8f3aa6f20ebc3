// Independent repositories in independent threads. The thread sanitizer runs these tests, too.

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <orbel/Module.hpp>
#include <orbel/ObjectSystem.hpp>
#include <varn/varn_filepackaging.hpp>

#include "support/Streams.hpp"

namespace Varn {
namespace {

using orbel::Value;

Value text(const std::string& characters) { return Value(orbel::CharacterArray(characters)); }

Value call(const Value& object, const char* method, std::vector<Value> arguments) {
  arguments.insert(arguments.begin(), object);
  const orbel::ClassInfo* info = object.get<orbel::Handle>()->identity().classInfo();
  return info->getMethod(method).invoke(arguments);
}

// What a template engine does.
std::string generate(const std::string& name) {
  VarnFileRepository repository;
  VarnFilePackagingManager manager(&repository);
  FileRepOrvBridge& bridge = repository.orvBridge();
  manager.orvBridge().getFileRecIndexForKey("mdl_hdr");
  repository.createModuleHeaderFile(name, {1});
  for (int i = 0; i < 50; ++i) {
    bridge.addSectionContent(1, "Functions", (name + std::to_string(i)).c_str());
  }
  bridge.setAttribute(1, "RequiredIncludes", name.c_str());
  bridge.addCustomSection(1, "Typedefs", name);
  FileRepErrorStatus status;
  for (const char* spelling : {"a.c", "A.c"}) repository.checkForDuplicateEntry(spelling, &status);
  try {
    bridge.clearSection(1, "No such section");
  } catch (const orbel::HostException& error) {
    status.setMessage(status.getMessage() + error.what());
  }
  return status.getMessage() + bytesOf([&](FILE* stream) {
           bridge.writeSection(1, "Includes", stream);
           bridge.writeSection(1, "Functions", stream);
         });
}

// What a host script does, with classes that no thread has used before.
std::string runScript(const std::string& name) {
  orbel::Client& client = orbel::ObjectSystem::instance().publicClient();
  const Value repository = client.construct(client.getClass("Varn.VarnFileRepository"), {});
  const Value file = call(repository, "createGenericFile", {text(name)});
  const Value section = call(file, "getFunctionsSection", {});
  call(section, "addFunction", {text("f"), text(name)});
  const orbel::ClassInfo& info = client.getClass("Varn.VarnFileRepository");
  const Value files = info.getProperty("FileList").get(repository);
  return files.className() + call(section, "getContent", {}).get<orbel::CharacterArray>()->toText();
}

// The results of `run` in several threads that begin together, each with a name of its own.
std::vector<std::string> inThreads(std::string (*run)(const std::string&)) {
  std::vector<std::string> results(4);
  std::atomic<std::size_t> waiting = results.size();
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < results.size(); ++i) {
    threads.emplace_back([&, i] {
      --waiting;
      while (waiting != 0) std::this_thread::yield();
      results[i] = run("file" + std::to_string(i) + ".h");
    });
  }
  for (std::thread& thread : threads) thread.join();
  return results;
}

TEST(Threads, UseRepositoriesOfTheirOwn) {
  const auto results = inThreads(generate);
  for (std::size_t i = 0; i < results.size(); ++i) {
    EXPECT_EQ(results[i], generate("file" + std::to_string(i) + ".h"));
  }
}

TEST(Threads, UseHostClassesForTheFirstTime) {
  const auto module = orbel::Module::load("varn_filepackaging");
  const auto results = inThreads(runScript);
  for (std::size_t i = 0; i < results.size(); ++i) {
    EXPECT_EQ(results[i], "Varn.VarnFilefile" + std::to_string(i) + ".h");
  }
}

}  // namespace
}  // namespace Varn
