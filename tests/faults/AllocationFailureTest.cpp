#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>
#include <sstream>
#include <string>
#include <vector>

#include <boost/make_shared.hpp>
#include <gtest/gtest.h>

#include <orbel/Module.hpp>
#include <orbel/ObjectSystem.hpp>
#include <varn/varn_filepackaging.hpp>

#include "support/Streams.hpp"

namespace {

// The number of live allocations, and how many more succeed (negative: all). Then one fails, or
// all.
long aliveAllocations = 0;
long allocationsLeft = -1;
bool failsOnce = false;

}  // namespace

// Kept out of line: inlined, one of the pair looks to the compiler like a mismatch of the other.
[[gnu::noinline]] void* operator new(std::size_t size, std::align_val_t alignment) {
  if (allocationsLeft == 0) {
    if (failsOnce) allocationsLeft = -1;
    throw std::bad_alloc();
  }
  const auto unit = static_cast<std::size_t>(alignment);
  void* memory = std::aligned_alloc(unit, (size / unit + 1) * unit);
  if (memory == nullptr) throw std::bad_alloc();
  if (allocationsLeft > 0) --allocationsLeft;
  ++aliveAllocations;
  return memory;
}
// NOLINTNEXTLINE(misc-new-delete-overloads): the array and sized forms end here.
void* operator new(std::size_t size) {
  return ::operator new (size, std::align_val_t{alignof(std::max_align_t)});
}
[[gnu::noinline]] void operator delete(void* memory) noexcept {
  if (memory != nullptr) --aliveAllocations;
  std::free(memory);
}
void operator delete(void* memory, std::size_t /*size*/) noexcept { ::operator delete(memory); }
void operator delete(void* memory, std::align_val_t /*alignment*/) noexcept {
  ::operator delete(memory);
}

namespace Varn {
namespace {

const char* const longText = "a text that is too long for a string to hold without allocating";
const std::vector<std::string> longNames{"s", longText};
const std::vector<int> indices{2, 3, 4, 3};

// A call of a script to the repository.
orbel::Value callByScript(VarnFileRepository& repository, const char* method) {
  static const auto module = orbel::Module::load("varn_filepackaging");
  static const orbel::ClassInfo& info =
      orbel::ObjectSystem::instance().publicClient().getClass("Varn.VarnFileRepository");
  return info.getMethod(method).invoke(
      std::vector{repository.toHostValue(), orbel::Value(orbel::CharacterArray(longText))});
}

// One non-empty object of each class that can be changed.
struct World {
  VarnFileRepository repository;
  VarnFilePackagingManager manager{&repository};
  FileRepOrvBridge& bridge = repository.orvBridge();
  VarnGenericFile& file = repository.createGenericFile("a.c");
  IncludesSection& includes = dynamic_cast<IncludesSection&>(file.getIncludesSection());
  FunctionsSection& functions = dynamic_cast<FunctionsSection&>(file.getFunctionsSection());
  CustomContents otherContents{"a file with a long name, which is in the messages"};
  VarnFileNameTable table, otherTable;
  VarnFilePackagingOrvBridge otherPackaging = manager.orvBridge();
  FileRepErrorStatus status, otherStatus;
  std::string registered;
  std::unique_ptr<FileSection> clone;
  FILE* sink = std::fopen("/dev/null", "w");

  World() {
    repository.createModuleHeaderFile("a.h", {1, 2});
    repository.checkForDuplicateEntry("known_by_its_long_name.c", nullptr);
    callByScript(repository, "findFileByName");
    functions.addFunction("f", "f();");
    bridge.addSectionContent(0, "UserTop", std::string(70'000, 'x').c_str());
    includes.addInclude("i.h", false);
    for (const char* name : {"A", "B", "C"}) bridge.addCustomSection(0, "Enums", name);
    file.getCustomContent().addContentToSection("A", longText);
    otherContents.addCustomSection("D", BANNER_SECTION);
    otherStatus.setHadError(true);
    otherStatus.setMessage(longText);
    otherTable.addFileNameToTable(ModelDataFile, longText);
    table.addFileNameToTable(ModelTypesFile, longText);
  }
  World(const World&) = delete;
  World& operator=(const World&) = delete;
  ~World() { static_cast<void>(std::fclose(sink)); }
};

// The observable state of a file, with its custom sections placed.
void show(std::ostream& os, VarnFile& file) {
  os << file.getNameAscii() << '|' << file.getType() << '|' << file.getGroup() << '|';
  for (const auto& name : file.getSystemsInFile()) os << name << ',';
  for (int kind = BANNER_SECTION; kind <= USERBOTTOM_SECTION; ++kind) {
    const auto sectionKind = static_cast<VarnFileSectionKind>(kind);
    FileSection unplaced;
    file.getCustomContent().appendMissingTokens(unplaced, sectionKind);
    os << testing::PrintToString(writesOf(file.getFileSection(sectionKind))) << unplaced.isEmpty()
       << unplaced.getContent();
  }
}

std::string stateOf(World& world) {
  std::ostringstream os;
  for (VarnFile* file : world.repository.getFileList()) show(os, *file);
  for (int i = 0; i < 5; ++i) {
    const VarnFile* header = world.repository.getModuleHeaderFileByIndex(i);
    os << (header != nullptr ? header->getNameAscii() : "none") << ',';
  }
  os << world.repository.findFileIndexByName(longText) << world.functions.getNumberOfFunctionNames()
     << world.registered << world.status.hadError() << world.status.getMessage()
     << world.table.getFileNameFromTable(ModelDataFile)
     << world.table.getFileNameFromTable(ModelTypesFile) << world.otherContents.isCustomSection("A")
     << world.otherContents.isCustomSection("D")
     << (world.clone ? world.clone->getContent() : "no clone");
  for (const char* name : {"NEW.C", longText}) {
    std::string spelling;
    os << world.repository.findDuplicateFileEntry(name, spelling) << spelling;
  }
  os << world.otherPackaging.getFileRecIndexForKey("mdl_src");
  return os.str();
}

struct Operation {
  const char* title;
  void (*run)(World&);
  // An operation in steps may fail between them; repeating it gives the same result.
  bool inSteps = false;
};

const Operation operations[] = {
    {"generic file", [](World& w) { w.repository.createGenericFile(longText); }},
    {"data types file", [](World& w) { w.repository.createDataTypesFile(longText); }},
    {"module file", [](World& w) { w.repository.createModuleHeaderFile(longText, indices); }},
    {"model file", [](World& w) { w.repository.createModelHeaderFile(); }},
    {"file by script", [](World& w) { callByScript(w.repository, "createGenericFile"); }},
    {"data file by script", [](World& w) { callByScript(w.repository, "createDataTypesFile"); }},
    {"file by key", [](World& w) { w.manager.orvBridge().getFileRecIndexForKey("mdl_hdr"); }},
    {"file by new key",
     [](World& w) {
       try {
         w.manager.orvBridge().getFileRecIndexForKey(longText);
       } catch (const boost::bad_function_call&) {
         w.registered = "no attributes";
       }
     }},
    {"duplicate",
     [](World& w) { w.repository.checkForDuplicateEntry("KNOWN_BY_ITS_LONG_NAME.C", &w.status); }},
    {"new name", [](World& w) { w.repository.checkForDuplicateEntry("new.c", &w.status); }},
    {"new name out", [](World& w) { w.repository.findDuplicateFileEntry(longText, w.registered); }},
    {"table entry", [](World& w) { w.repository.addFileNameToTable(ModelDataFile, longText); }},
    {"attribute", [](World& w) { w.bridge.setAttribute(0, "Group", longText); }},
    {"system", [](World& w) { w.bridge.setAttribute(0, "SystemsInFile", longText); }},
    {"systems", [](World& w) { w.file.setSystemsInFile(longNames); }},
    {"required", [](World& w) { w.bridge.setAttribute(0, "RequiredIncludes", longText); }},
    {"utility list", [](World& w) { w.includes.setUtilityIncludes(longNames); }},
    {"include", [](World& w) { w.includes.addInclude(longText, true); }},
    {"function", [](World& w) { w.functions.addFunction(longText, std::string(5000, 'x')); }},
    {"text", [](World& w) { w.bridge.addSectionContent(0, "Functions", longText); }},
    {"long text",
     [](World& w) { w.bridge.addSectionContent(0, "Functions", std::string(5000, 'x').c_str()); }},
    {"text of the next page", [](World& w) { w.bridge.addSectionContent(0, "UserTop", "y"); }},
    {"many texts",
     [](World& w) {
       w.bridge.clearSection(0, "Functions");
       for (int i = 0; i < 100; ++i) w.bridge.addSectionContent(0, "Functions", longText);
     },
     true},
    {"first text", [](World& w) { w.bridge.addSectionContent(0, "Banner", longText); }},
    {"fragment",
     [](World& w) {
       const auto fragment = boost::make_shared<StringFileSectionFragment>(longText);
       w.bridge.addSectionContent(0, "Functions", fragment);
     }},
    {"copy of content",
     [](World& w) {
       VarnFileContent source;
       source.setSection(INCLUDES_SECTION, std::unique_ptr<FileSection>(w.includes.clone()));
       w.clone.reset(VarnFileContent(source).getSection(INCLUDES_SECTION).clone());
     }},
    {"clone", [](World& w) { w.clone.reset(w.functions.clone()); }},
    {"clone includes", [](World& w) { w.clone.reset(w.includes.clone()); }},
    {"new custom section", [](World& w) { w.bridge.addCustomSection(0, "Banner", longText); }},
    {"custom section", [](World& w) { w.bridge.addCustomSection(0, "Enums", longText); }},
    {"custom text", [](World& w) { w.file.getCustomContent().addContentToSection("B", longText); }},
    {"retrieve", [](World& w) { w.file.getCustomContent().getCustomSectionContent("A", "r"); }},
    {"token", [](World& w) { w.file.getCustomContent().setCustomTokenInUse("A"); }},
    {"append", [](World& w) { w.bridge.appendMissingTokens(0, "Enums"); }, true},
    {"write", [](World& w) { w.bridge.writeSection(0, "Enums", w.sink); }, true},
    {"write includes", [](World& w) { w.bridge.writeSection(0, "Includes", w.sink); }},
    {"assigned contents", [](World& w) { w.otherContents = w.file.getCustomContent(); }},
    {"assigned status", [](World& w) { w.status = w.otherStatus; }},
    {"assigned table", [](World& w) { w.table = w.otherTable; }},
    {"assigned packaging", [](World& w) { w.otherPackaging = w.manager.orvBridge(); }},
};

// Whether `run` succeeds when only its first `allocations` allocations do, or all but the next one.
bool runsWith(long allocations, const Operation& operation, World& world, bool once = false) {
  failsOnce = once;
  allocationsLeft = allocations;
  bool passed = true;
  try {
    operation.run(world);
  } catch (const std::bad_alloc&) {
    passed = false;
  }
  allocationsLeft = -1;
  return passed;
}

class AllocationFailure : public testing::TestWithParam<Operation> {};

TEST_P(AllocationFailure, HasNoEffect) {
  const Operation& operation = GetParam();
  const auto stateAfter = [&operation](bool runs) {
    World world;
    if (runs) operation.run(world);
    return stateOf(world);
  };
  const std::string before = stateAfter(false);
  const std::string after = stateAfter(true);
  for (long allocations = 0; allocations < 1000; ++allocations) {
    const long aliveAtFirst = aliveAllocations;
    bool passed = false;
    {
      World world;
      passed = runsWith(allocations, operation, world);
      if (!passed && !operation.inSteps) {
        ASSERT_EQ(before, stateOf(world)) << operation.title << ", allocation " << allocations;
      }
    }
    {
      World world;
      const bool survived = runsWith(allocations, operation, world, true);
      if (survived || !operation.inSteps) {
        ASSERT_EQ(survived ? after : before, stateOf(world))
            << operation.title << ", only allocation " << allocations;
      }
    }
    {
      World world;
      if (!runsWith(allocations, operation, world)) operation.run(world);
      ASSERT_EQ(after, stateOf(world)) << operation.title << ", allocation " << allocations;
    }
    ASSERT_EQ(aliveAtFirst, aliveAllocations) << operation.title << ", allocation " << allocations;
    if (passed) return;
  }
  FAIL() << "fails for ever";
}

TEST(SectionMemory, ServesAgainWhatIsClearedClonedOrShown) {
  World world;
  const auto refill = [&world] {
    for (const int count : {1, 5, 20, 60}) {
      for (int i = 0; i < count; ++i) {
        world.bridge.addSectionContent(0, "Functions", longText);
        world.bridge.addSectionContent(0, "Banner", longText);
      }
      world.clone.reset(world.functions.clone());
      world.functions.getFunction(0);
      for (const char* section : {"Functions", "Banner"}) world.bridge.clearSection(0, section);
    }
    world.clone.reset();
  };
  refill();
  const long aliveAfterOneRun = aliveAllocations;
  for (int i = 0; i < 200; ++i) refill();
  EXPECT_EQ(aliveAfterOneRun, aliveAllocations);
}

INSTANTIATE_TEST_SUITE_P(, AllocationFailure, testing::ValuesIn(operations), [](const auto& test) {
  std::string title = test.param.title;
  for (char& character : title) character = character == ' ' ? '_' : character;
  return title;
});

}  // namespace
}  // namespace Varn
