#include "Inputs.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>

#include <varn/VarnFileSectionKind.hpp>

namespace bench {
namespace {

// A mix of sizes around a median of 60 whose mean is 91.
std::size_t mixedSize(std::mt19937& random) {
  std::lognormal_distribution<double> distribution(std::log(60.0), 0.91);
  return static_cast<std::size_t>(std::clamp(distribution(random), 1.0, 2000.0));
}

std::string makePiece(std::mt19937& random, std::size_t size) {
  static const char line[] = "  extern_value[index] = compute_step(model, index + 1);\n";
  std::string piece;
  std::size_t position = random() % (sizeof(line) - 1);
  while (piece.size() < size) {
    piece += line[position];
    position = (position + 1) % (sizeof(line) - 1);
  }
  return piece;
}

}  // namespace

const Scale fullScale = {false,  9,      100'000, 1'000,
                         10'000, 10'000, 100'000, {10, 100, 1'000, 5'000}};
const Scale smokeScale = {true, 1, 1'000, 10, 20, 10, 100, {10, 50}};

std::vector<std::string> makePieces(std::size_t count, std::size_t size) {
  std::mt19937 random;  // NOLINT(cert-msc51-cpp): the same sequence every time
  std::vector<std::string> pieces;
  pieces.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    pieces.push_back(makePiece(random, size == 0 ? mixedSize(random) : size));
  }
  return pieces;
}

std::string concatenate(const std::vector<std::string>& pieces) {
  std::string text;
  for (const std::string& piece : pieces) text += piece;
  return text;
}

const std::array<std::string, sectionCount>& sectionNames() {
  static const std::array<std::string, sectionCount> names = [] {
    std::array<std::string, sectionCount> found;
    std::size_t next = 0;
    for (int kind = Varn::BANNER_SECTION; kind <= Varn::USERBOTTOM_SECTION; ++kind) {
      std::string name =
          Varn::getOrvSectionNameFromEnum(static_cast<Varn::VarnFileSectionKind>(kind));
      if (!name.empty()) found.at(next++) = std::move(name);
    }
    return found;
  }();
  return names;
}

Job::Job(std::size_t files) : files_(files), texts_(makePieces(4096, 0)), sections_{} {
  for (std::size_t i = 0; i < piecesPerFile; ++i) sections_[i] = i % sectionCount;
  std::mt19937 random;  // NOLINT(cert-msc51-cpp): the same sequence every time
  std::shuffle(sections_.begin(), sections_.end(), random);
}

std::string Job::fileName(std::size_t file) { return "module_" + std::to_string(file) + ".c"; }

}  // namespace bench
