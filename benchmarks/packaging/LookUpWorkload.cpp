#include <array>
#include <memory>
#include <random>

#include <absl/container/flat_hash_map.h>

#include <varn/FileRepOrvBridge.hpp>
#include <varn/VarnFileRepository.hpp>

#include "Workloads.hpp"

namespace bench {
namespace {

using Read = const std::string& (Varn::VarnFile::*)() const;

// A string attribute as an object with a virtual operation.
class Attribute {
 public:
  Attribute() = default;
  Attribute(const Attribute&) = delete;
  Attribute& operator=(const Attribute&) = delete;
  virtual ~Attribute() = default;
  virtual const std::string& read(const Varn::VarnFile& file) const = 0;
};

template <Read read_>
class AttributeOf : public Attribute {
 public:
  const std::string& read(const Varn::VarnFile& file) const override { return (file.*read_)(); }
};

template <Read read>
const std::string& readAttribute(const Varn::VarnFile& file) {
  return (file.*read)();
}

struct NamedAttribute {
  std::string name;
  std::unique_ptr<Attribute> object;
  const std::string& (*function)(const Varn::VarnFile&);
};

template <Read read>
NamedAttribute attribute(const char* name) {
  return {name, std::make_unique<AttributeOf<read>>(), &readAttribute<read>};
}

using Attributes = std::array<NamedAttribute, 9>;

Attributes makeAttributes() {
  using F = Varn::VarnFile;
  return {attribute<&F::getNameAscii>("Name"),
          attribute<&F::getBaseName>("BaseName"),
          attribute<&F::getNameWithoutExtension>("NameWithoutExtension"),
          attribute<&F::getType>("Type"),
          attribute<&F::getCreator>("Creator"),
          attribute<&F::getCodeTemplate>("CodeTemplate"),
          attribute<&F::getOutputDirectory>("OutputDirectory"),
          attribute<&F::getGroup>("Group"),
          attribute<&F::getDefinedMacro>("DefinedMacro")};
}

struct Call {
  int file;
  std::size_t name;
};

constexpr std::size_t callCount = 65'536;

// Calls that go to ten of the files, so that large and small repositories touch as much memory;
// `runLength` calls in a row are the same.
std::vector<Call> makeCalls(std::size_t files, std::size_t names, std::size_t runLength) {
  std::mt19937 random;  // NOLINT(cert-msc51-cpp): the same sequence every time
  std::vector<Call> calls;
  while (calls.size() < callCount) {
    const Call call{static_cast<int>(random() % 10 * (files / 10)), random() % names};
    calls.insert(calls.end(), runLength, call);
  }
  return calls;
}

template <typename Perform>
void addCalls(Measurements& measurements, const Subject& subject, const std::vector<Call>& calls,
              const Perform& perform) {
  measurements.addBenchmark(subject, calls.size(), [calls, perform](benchmark::State& state) {
    for (auto step : state) {
      static_cast<void>(step);
      for (const Call& call : calls) perform(call);
    }
  });
}

struct Repository {
  explicit Repository(std::size_t files) {
    for (std::size_t i = 0; i < files; ++i) repository.createGenericFile(Job::fileName(i));
  }

  Varn::VarnFileRepository repository;
  Varn::FileRepOrvBridge& bridge = repository.orvBridge();
};

void addAttributeCalls(Measurements& measurements, const std::string& order,
                       std::size_t runLength) {
  const auto attributes = std::make_shared<const Attributes>(makeAttributes());
  const auto files = std::make_shared<Repository>(10);
  const auto calls = makeCalls(10, attributes->size(), runLength);
  const std::string workload = "attribute by name, " + order;
  const auto map =
      std::make_shared<absl::flat_hash_map<std::string, decltype(NamedAttribute::function)>>();
  for (const NamedAttribute& attribute : *attributes) {
    map->emplace(attribute.name, attribute.function);
  }
  const std::vector<Varn::VarnFile*>& list = files->repository.getFileList();

  addCalls(measurements, {workload, "varn"}, calls, [files, attributes](const Call& call) {
    benchmark::DoNotOptimize(
        files->bridge.getStringAttribute(call.file, (*attributes)[call.name].name));
  });
  addCalls(measurements, {workload, "virtual call"}, calls,
           [files, attributes, &list](const Call& call) {
             const Varn::VarnFile& file = *list[static_cast<std::size_t>(call.file)];
             benchmark::DoNotOptimize((*attributes)[call.name].object->read(file).c_str());
           });
  addCalls(measurements, {workload, "flat_hash_map"}, calls,
           [files, attributes, map, &list](const Call& call) {
             const Varn::VarnFile& file = *list[static_cast<std::size_t>(call.file)];
             const auto found = map->find((*attributes)[call.name].name);
             benchmark::DoNotOptimize(found->second(file).c_str());
           });
}

void addSectionCalls(Measurements& measurements, const std::string& order, std::size_t runLength) {
  const auto files = std::make_shared<Repository>(10);
  const auto calls = makeCalls(10, sectionCount, runLength);
  const std::string workload = "section by name, " + order;
  const auto sections =
      std::make_shared<std::vector<std::array<Varn::FileSection*, sectionCount>>>();
  const auto map = std::make_shared<absl::flat_hash_map<std::string, std::size_t>>();
  for (std::size_t i = 0; i < sectionCount; ++i) map->emplace(sectionNames()[i], i);
  for (Varn::VarnFile* file : files->repository.getFileList()) {
    auto& own = sections->emplace_back();
    std::size_t next = 0;
    for (int kind = Varn::BANNER_SECTION; kind <= Varn::USERBOTTOM_SECTION; ++kind) {
      if (kind == Varn::FORWARD_DECLS_SECTION) continue;
      own.at(next++) = &file->getFileSection(static_cast<Varn::VarnFileSectionKind>(kind));
    }
  }

  addCalls(measurements, {workload, "varn"}, calls, [files](const Call& call) {
    files->bridge.clearSection(call.file, sectionNames()[call.name]);
  });
  addCalls(measurements, {workload, "virtual call"}, calls, [files, sections](const Call& call) {
    (*sections)[static_cast<std::size_t>(call.file)][call.name]->clearContent();
  });
  addCalls(measurements, {workload, "flat_hash_map"}, calls,
           [files, sections, map](const Call& call) {
             const auto found = map->find(sectionNames()[call.name]);
             (*sections)[static_cast<std::size_t>(call.file)][found->second]->clearContent();
           });
}

void addCallsOnFiles(Measurements& measurements, std::size_t count, const char* contender) {
  const auto files = std::make_shared<Repository>(count);
  addCalls(measurements, {"section by name, number of files", contender},
           makeCalls(count, sectionCount, 1), [files](const Call& call) {
             files->bridge.clearSection(call.file, sectionNames()[call.name]);
           });
}

}  // namespace

void addLookUpWorkload(Measurements& measurements, const Scale& scale) {
  addAttributeCalls(measurements, "random order", 1);
  addAttributeCalls(measurements, "runs", 64);
  addSectionCalls(measurements, "random order", 1);
  addSectionCalls(measurements, "runs", 64);
  addCallsOnFiles(measurements, 10, "10 files");
  addCallsOnFiles(measurements, scale.lookUpFiles, "100,000 files");
}

}  // namespace bench
