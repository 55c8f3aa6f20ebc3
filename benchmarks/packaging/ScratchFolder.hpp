#ifndef VARN_BENCHMARKS_PACKAGING_SCRATCHFOLDER_HPP
#define VARN_BENCHMARKS_PACKAGING_SCRATCHFOLDER_HPP

#include <cstdio>
#include <memory>
#include <string>

namespace bench {

// A new folder under `parent`, removed with its contents by the destructor.
class ScratchFolder {
 public:
  explicit ScratchFolder(const std::string& parent);
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;
  ~ScratchFolder();

  std::string path(const std::string& name) const { return folder_ + '/' + name; }

  // Removes its contents.
  void clear() const;

 private:
  std::string folder_;
};

struct StreamCloser {
  void operator()(FILE* stream) const noexcept;
};
using Stream = std::unique_ptr<FILE, StreamCloser>;

// A new file to write to. Throws std::system_error.
Stream openForWriting(const std::string& path);

std::string readWhole(const std::string& path);

}  // namespace bench

#endif
