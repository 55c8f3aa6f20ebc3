#ifndef WAYLAND_PENDINGFILE_HPP
#define WAYLAND_PENDINGFILE_HPP

#include <cstdio>
#include <string>

namespace wayland {

// A file on its way to the disk: written beside its place under another name, then moved there in
// one step, so that nobody ever sees half of it. One that is not moved is removed.
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

  // Flushes and closes: after that all bytes are there.
  void close();
  // Puts the closed file in its place, instead of what was there.
  void commit();

 private:
  std::string path_;
  std::string temporaryPath_;  // empty once it is not ours to remove
  FILE* stream_ = nullptr;
};

}  // namespace wayland

#endif
