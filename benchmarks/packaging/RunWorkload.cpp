#include <cerrno>
#include <fcntl.h>
#include <memory>
#include <stdexcept>
#include <system_error>
#include <unistd.h>

#include <boost/make_shared.hpp>

#include <varn/FileRepOrvBridge.hpp>
#include <varn/StringFileSectionFragment.hpp>
#include <varn/VarnFileRepository.hpp>

#include "ProcessCost.hpp"
#include "Workloads.hpp"
#include "peers/LiteralForm.hpp"
#include "peers/Sections.hpp"
#include "peers/SectionsByName.hpp"

namespace bench {
namespace {

class VarnRun {
 public:
  void createFile(const std::string& name) { repository_.createGenericFile(name); }
  void add(std::size_t file, const std::string& section, const char* text) {
    bridge_.addSectionContent(static_cast<int>(file), section, text);
  }
  void write(std::size_t file, const std::string& section, FILE* stream) {
    bridge_.writeSection(static_cast<int>(file), section, stream);
  }

 private:
  Varn::VarnFileRepository repository_;

 protected:
  Varn::FileRepOrvBridge& bridge_ = repository_.orvBridge();
};

// Every piece passed as a separate fragment object.
class VarnObjectsRun : public VarnRun {
 public:
  void add(std::size_t file, const std::string& section, const char* text) {
    bridge_.addSectionContent(static_cast<int>(file), section,
                              boost::make_shared<Varn::StringFileSectionFragment>(text));
  }
};

template <typename Run>
void generate(const Job& job, const ScratchFolder& folder) {
  Run run;
  for (std::size_t file = 0; file < job.files(); ++file) run.createFile(Job::fileName(file));
  for (std::size_t file = 0; file < job.files(); ++file) {
    for (std::size_t i = 0; i < Job::piecesPerFile; ++i) {
      run.add(file, sectionNames()[job.section(i)], job.piece(file, i));
    }
  }
  for (std::size_t file = 0; file < job.files(); ++file) {
    const Stream stream = openForWriting(folder.path(Job::fileName(file)));
    for (const std::string& section : sectionNames()) run.write(file, section, stream.get());
  }
}

// The lower bound of every representation: each byte copied once, and each file opened, written
// with one call and closed. The pieces come in the order of the file.
void generateAtTheLimit(const Job& job, const ScratchFolder& folder) {
  std::vector<std::size_t> order;
  for (std::size_t section = 0; section < sectionCount; ++section) {
    for (std::size_t i = 0; i < Job::piecesPerFile; ++i) {
      if (job.section(i) == section) order.push_back(i);
    }
  }
  std::string text;
  for (std::size_t file = 0; file < job.files(); ++file) {
    text.clear();
    for (const std::size_t i : order) text += job.piece(file, i);
    const std::string path = folder.path(Job::fileName(file));
    const int descriptor = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    const ssize_t count = ::write(descriptor, text.data(), text.size());
    if (::close(descriptor) != 0 || count != static_cast<ssize_t>(text.size())) {
      throw std::system_error(errno, std::generic_category(), path);
    }
  }
}

using Generate = void (*)(const Job&, const ScratchFolder&);

std::string writtenBy(Generate generate, const Job& job, const ScratchFolder& folder) {
  generate(job, folder);
  std::string text;
  for (std::size_t file = 0; file < job.files(); ++file) {
    text += readWhole(folder.path(Job::fileName(file)));
  }
  folder.clear();
  return text;
}

void addRun(Measurements& measurements, const Subject& subject, Generate generate,
            std::size_t files, const ScratchFolder& folder) {
  measurements.addBenchmark(subject, files, [=, &folder](benchmark::State& state) {
    const Job job(files);
    for (auto step : state) {
      static_cast<void>(step);
      generate(job, folder);
      state.PauseTiming();
      folder.clear();
      state.ResumeTiming();
    }
  });
}

// A file with one piece of 30 bytes in each of three sections.
template <typename Run>
void makeNearlyEmptyFiles(std::size_t files) {
  Run run;
  for (std::size_t file = 0; file < files; ++file) {
    run.createFile(Job::fileName(file));
    for (const char* section : {"Banner", "Typedefs", "Functions"}) {
      run.add(file, section, "/* thirty bytes of comment. */");
    }
  }
}

template <typename Run>
void addNearlyEmptyFile(Measurements& measurements, const char* contender, std::size_t files) {
  const ProcessCost cost = costInNewProcess([files] { makeNearlyEmptyFiles<Run>(files); });
  measurements.addMemory({"memory of a nearly empty file", contender},
                         cost.peakMemory / static_cast<double>(files));
}

}  // namespace

void addRunWorkload(Measurements& measurements, const Scale& scale, const ScratchFolder& folder) {
  const struct {
    const char* name;
    Generate generate;
  } contenders[] = {
      {"varn", generate<VarnRun>},
      {"varn, pieces as objects", generate<VarnObjectsRun>},
      {"literal", generate<literal::Repository>},
      {"strings", generate<SectionsByName<StringSection>>},
      {"strings, the library's look-up", generate<SectionsByName<StringSection, TableLookUp>>},
      {"ostringstream", generate<SectionsByName<OstringstreamSection>>},
      {"Cord", generate<SectionsByName<CordSection>>},
      {"Printer", generate<SectionsByName<PrinterSection>>},
      {"Printer, raw", generate<SectionsByName<RawPrinterSection>>},
      {"limit", generateAtTheLimit},
  };
  // New processes run first: later they would share memory that this process has allocated.
  const Job job(scale.files);
  for (int repetition = 0; repetition < scale.newProcesses; ++repetition) {
    addNearlyEmptyFile<VarnRun>(measurements, "varn", scale.nearlyEmptyFiles);
    addNearlyEmptyFile<literal::Repository>(measurements, "literal", scale.nearlyEmptyFiles);
    for (const auto& [name, generate] : contenders) {
      const ProcessCost cost = costInNewProcess([&, run = generate] { run(job, folder); });
      folder.clear();
      const auto files = static_cast<double>(scale.files);
      measurements.addMemory({"memory of a run's file", name}, cost.peakMemory / files);
      measurements.addTime({"run in a new process, a file of 1,000", name}, cost.time / files);
    }
  }
  const std::string expected = writtenBy(generateAtTheLimit, job, folder);
  for (const auto& [name, generate] : contenders) {
    if (writtenBy(generate, job, folder) != expected) {
      throw std::logic_error(std::string(name) + " gives other bytes: run");
    }
  }
  for (const auto& [name, generate] : contenders) {
    addRun(measurements, {"run, a file of 1,000", name}, generate, scale.files, folder);
  }
  addRun(measurements, {"run, a file of 10,000", "varn"}, generate<VarnRun>, scale.manyFiles,
         folder);
}

}  // namespace bench
