// Measures the library and other ways to do the same, interleaved in one run, and prints the
// medians and the goals.
//
//   varn_benchmarks [--smoke] [--folder=FOLDER] [options of Google Benchmark]
//
// Files are written under FOLDER, which should be on a memory file system; by default /dev/shm, or
// the folder for temporary files where that is not writable.
// --smoke runs everything once on a small scale and prints no figures.

#include <cstdio>
#include <exception>
#include <filesystem>
#include <limits>
#include <malloc.h>
#include <string>
#include <unistd.h>
#include <vector>

#include "Goals.hpp"
#include "Workloads.hpp"

namespace {

// Keeps released memory for the next repetition: whether the C library's allocator returns memory
// to the system depends on what other contenders have allocated, so that some would get new memory
// and others not. The cost of new memory is measured in new processes.
void keepReleasedMemory() {
  ::mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max());
  ::mallopt(M_MMAP_MAX, 0);
}

std::string defaultFolder() {
  static const char* const memoryFolder = "/dev/shm";
  const bool isWritable = ::access(memoryFolder, W_OK | X_OK) == 0;
  return isWritable ? memoryFolder : std::filesystem::temp_directory_path().string();
}

struct Options {
  bool isSmoke = false;
  std::string folder = defaultFolder();
  // The last option on the command line wins.
  std::vector<std::string> forBenchmark = {"--benchmark_enable_random_interleaving=true",
                                           "--benchmark_repetitions=9", "--benchmark_min_time=0.1"};
};

Options parse(int argc, char** argv) {
  static const std::string folderOption = "--folder=";
  Options options;
  options.forBenchmark.insert(options.forBenchmark.begin(), argv[0]);
  for (int i = 1; i < argc; ++i) {
    const std::string argument = argv[i];
    if (argument == "--smoke") {
      options.isSmoke = true;
      options.forBenchmark.insert(options.forBenchmark.end(),
                                  {"--benchmark_repetitions=1", "--benchmark_min_time=0"});
    } else if (argument.compare(0, folderOption.size(), folderOption) == 0) {
      options.folder = argument.substr(folderOption.size());
    } else {
      options.forBenchmark.push_back(argument);
    }
  }
  return options;
}

int run(Options options) {
  std::vector<char*> arguments;
  for (std::string& argument : options.forBenchmark) arguments.push_back(argument.data());
  int count = static_cast<int>(arguments.size());
  benchmark::Initialize(&count, arguments.data());
  if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 2;

  const bench::ScratchFolder folder(options.folder);
  const bench::Scale& scale = options.isSmoke ? bench::smokeScale : bench::fullScale;
  bench::Measurements measurements;
  bench::addRunWorkload(measurements, scale, folder);
  bench::addSectionWorkloads(measurements, scale, folder);
  bench::addIncludesWorkload(measurements, scale);
  bench::addLookUpWorkload(measurements, scale);
  benchmark::RunSpecifiedBenchmarks(&measurements);
  if (options.isSmoke) return 0;
  measurements.printTable();
  std::printf("\n");
  bench::printGoals(measurements);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  keepReleasedMemory();
  try {
    return run(parse(argc, argv));
  } catch (const std::exception& error) {
    std::fprintf(stderr, "varn_benchmarks: %s\n", error.what());
    return 1;
  }
}
