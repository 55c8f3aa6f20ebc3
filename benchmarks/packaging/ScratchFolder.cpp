#include "ScratchFolder.hpp"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdlib.h>
#include <system_error>

namespace bench {

ScratchFolder::ScratchFolder(const std::string& parent) : folder_(parent + "/varn_bench.XXXXXX") {
  if (::mkdtemp(folder_.data()) == nullptr) {
    throw std::system_error(errno, std::generic_category(), folder_);
  }
}

ScratchFolder::~ScratchFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

void ScratchFolder::clear() const {
  for (const auto& entry : std::filesystem::directory_iterator(folder_)) {
    std::filesystem::remove(entry.path());
  }
}

void StreamCloser::operator()(FILE* stream) const noexcept {
  static_cast<void>(std::fclose(stream));
}

Stream openForWriting(const std::string& path) {
  Stream stream(std::fopen(path.c_str(), "w"));
  if (!stream) throw std::system_error(errno, std::generic_category(), path);
  return stream;
}

std::string readWhole(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw std::system_error(errno, std::generic_category(), path);
  return {std::istreambuf_iterator<char>(in), {}};
}

}  // namespace bench
