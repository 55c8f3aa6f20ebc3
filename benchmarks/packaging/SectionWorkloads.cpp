#include <memory>
#include <stdexcept>

#include <varn/FileSection.hpp>

#include "ProcessCost.hpp"
#include "Workloads.hpp"
#include "peers/LiteralForm.hpp"
#include "peers/Sections.hpp"

namespace bench {
namespace {

using Pieces = std::shared_ptr<const std::vector<std::string>>;

class VarnSection {
 public:
  void append(const std::string& text) { section_.addContent(text); }
  const std::string& text() const { return section_.getContent(); }
  void write(FILE* stream) const { section_.writeToFile(stream); }

 private:
  Varn::FileSection section_;
};

template <typename Section>
void fill(Section& section, const std::vector<std::string>& pieces) {
  for (const std::string& piece : pieces) section.append(piece);
}

struct Case {
  Measurements& measurements;
  const ScratchFolder& folder;
  std::string size;
  Pieces pieces;

  std::string workload(const char* name) const { return std::string(name) + ", " + size; }
  std::size_t count() const { return pieces->size(); }
};

template <typename Section>
std::string written(const Case& c) {
  const std::string path = c.folder.path("section");
  {
    Section section;
    fill(section, *c.pieces);
    section.write(openForWriting(path).get());
  }
  std::string text = readWhole(path);
  c.folder.clear();
  return text;
}

template <typename Section>
void checkBytes(const Case& c, const char* contender) {
  if (written<Section>(c) != concatenate(*c.pieces)) {
    throw std::logic_error(std::string(contender) + " gives other bytes: " + c.size);
  }
}

template <typename Section>
void addAppending(const Case& c, const char* contender) {
  checkBytes<Section>(c, contender);
  const Subject subject{c.workload("append a piece"), contender};
  c.measurements.addBenchmark(subject, c.count(), [pieces = c.pieces](benchmark::State& state) {
    for (auto step : state) {
      static_cast<void>(step);
      auto section = std::make_unique<Section>();
      fill(*section, *pieces);
      benchmark::DoNotOptimize(section.get());
      state.PauseTiming();
      section.reset();
      state.ResumeTiming();
    }
  });
}

template <typename Section>
void addMemory(const Case& c, const char* contender) {
  const double text = static_cast<double>(concatenate(*c.pieces).size());
  const ProcessCost cost = costInNewProcess([&c] {
    Section section;
    fill(section, *c.pieces);
  });
  c.measurements.addMemory({c.workload("memory of a piece over its text"), contender},
                           (cost.peakMemory - text) / static_cast<double>(c.count()));
}

template <typename Section>
void addWholeText(const Case& c, const char* contender) {
  const Subject subject{c.workload("whole text"), contender};
  c.measurements.addBenchmark(subject, 1, [pieces = c.pieces](benchmark::State& state) {
    Section section;
    fill(section, *pieces);
    for (auto step : state) {
      static_cast<void>(step);
      const auto& text = section.text();
      benchmark::DoNotOptimize(text.data());
    }
  });
}

template <typename Section>
void addWriting(const Case& c, const char* contender) {
  const Subject subject{c.workload("write all pieces"), contender};
  c.measurements.addBenchmark(subject, 1,
                              [pieces = c.pieces, &folder = c.folder](benchmark::State& state) {
                                Section section;
                                fill(section, *pieces);
                                for (auto step : state) {
                                  static_cast<void>(step);
                                  section.write(openForWriting(folder.path("section")).get());
                                  state.PauseTiming();
                                  folder.clear();
                                  state.ResumeTiming();
                                }
                              });
}

}  // namespace

void addSectionWorkloads(Measurements& measurements, const Scale& scale,
                         const ScratchFolder& folder) {
  const struct {
    const char* name;
    std::size_t size;
  } sizes[] = {{"8 B", 8}, {"64 B", 64}, {"mixed", 0}};
  for (const auto& [name, size] : sizes) {
    const auto pieces =
        std::make_shared<const std::vector<std::string>>(makePieces(scale.pieces, size));
    const Case c{measurements, folder, name, pieces};
    addMemory<VarnSection>(c, "varn");
    addMemory<literal::Section>(c, "literal");
    addAppending<VarnSection>(c, "varn");
    addAppending<literal::Section>(c, "literal");
    addAppending<StringSection>(c, "string");
    addAppending<OstringstreamSection>(c, "ostringstream");
    addWholeText<VarnSection>(c, "varn");
    addWholeText<literal::Section>(c, "literal");
    addWholeText<CopiedStringSection>(c, "string");
    addWriting<VarnSection>(c, "varn");
    addWriting<literal::Section>(c, "literal");
    addWriting<StringSection>(c, "string");
  }
}

}  // namespace bench
