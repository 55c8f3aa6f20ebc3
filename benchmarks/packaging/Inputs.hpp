#ifndef VARN_BENCHMARKS_PACKAGING_INPUTS_HPP
#define VARN_BENCHMARKS_PACKAGING_INPUTS_HPP

#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace bench {

// The sizes of the workloads. A smoke run is small enough to be a test, and measures nothing.
struct Scale {
  bool isSmoke;
  // How often each contender runs in a new process.
  int newProcesses;
  std::size_t pieces;
  std::size_t files;
  std::size_t manyFiles;
  std::size_t nearlyEmptyFiles;
  std::size_t lookUpFiles;
  std::vector<std::size_t> includes;
};

extern const Scale fullScale;
extern const Scale smokeScale;

// `count` pieces of C-like text, the same at every call. A `size` of 0 mixes sizes as generators
// do: half of them below 60 bytes, 91 on average, 2000 at most.
std::vector<std::string> makePieces(std::size_t count, std::size_t size);

std::string concatenate(const std::vector<std::string>& pieces);

constexpr std::size_t sectionCount = 21;

// The names of the sections that are reached by name, in the order of their kinds.
const std::array<std::string, sectionCount>& sectionNames();

// The text that a run generates: files of 220 pieces, spread over all sections in a random order
// that is the same for each file.
class Job {
 public:
  static constexpr std::size_t piecesPerFile = 220;

  explicit Job(std::size_t files);

  std::size_t files() const { return files_; }
  static std::string fileName(std::size_t file);
  const char* piece(std::size_t file, std::size_t position) const {
    return texts_[(file * 37 + position) % texts_.size()].c_str();
  }
  std::size_t section(std::size_t position) const { return sections_[position]; }

 private:
  std::size_t files_;
  std::vector<std::string> texts_;
  std::array<std::size_t, piecesPerFile> sections_;
};

}  // namespace bench

#endif
