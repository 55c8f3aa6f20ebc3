#ifndef WAYLAND_PENDINGFILE_HPP
#define WAYLAND_PENDINGFILE_HPP

#include <cstdio>
#include <string>

namespace wayland {

// A file that is replaced atomically: written under a temporary name in the same folder, then
// renamed. Removed by the destructor when it was not renamed.
//
// Every operation throws std::system_error with the path of the final file.
class PendingFile {
 public:
  // Opens a new file in `folder`, for `name` in there.
  PendingFile(const std::string& folder, const std::string& name);
  PendingFile(PendingFile&& source) noexcept;
  PendingFile(const PendingFile&) = delete;
  PendingFile& operator=(const PendingFile&) = delete;
  PendingFile& operator=(PendingFile&&) = delete;
  ~PendingFile();

  const std::string& path() const { return path_; }
  // Open until close().
  FILE* stream() const { return stream_; }

  // Flushes and closes; failures are reported here.
  void close();
  // Renames the closed file to its name, replacing an existing file.
  void commit();

 private:
  std::string path_;
  std::string temporaryPath_;  // empty after the rename
  FILE* stream_ = nullptr;
};

}  // namespace wayland

#endif
