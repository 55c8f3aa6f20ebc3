#include "PendingFile.hpp"

#include <cerrno>
#include <system_error>
#include <unistd.h>
#include <utility>

#include <sys/stat.h>

namespace wayland {
namespace {

[[noreturn]] void fail(const std::string& path) {
  throw std::system_error(errno, std::generic_category(), path);
}

// The mode of an ordinary new file; temporary files are private to their owner.
mode_t newFileMode() {
  const mode_t mask = umask(0);
  umask(mask);
  return 0666 & ~mask;
}

}  // namespace

PendingFile::PendingFile(const std::string& folder, const std::string& name)
    : path_(folder + "/" + name) {
  std::string temporary = folder + "/." + name + ".XXXXXX";
  const int descriptor = mkstemp(temporary.data());
  if (descriptor == -1) fail(path_);
  if (fchmod(descriptor, newFileMode()) == 0) stream_ = fdopen(descriptor, "wb");
  if (stream_ == nullptr) {
    const int error = errno;
    ::close(descriptor);
    unlink(temporary.c_str());
    errno = error;
    fail(path_);
  }
  temporaryPath_ = std::move(temporary);
}

PendingFile::PendingFile(PendingFile&& source) noexcept
    : path_(std::move(source.path_)),
      temporaryPath_(std::exchange(source.temporaryPath_, {})),
      stream_(std::exchange(source.stream_, nullptr)) {}

PendingFile::~PendingFile() {
  if (stream_ != nullptr) std::fclose(stream_);
  if (!temporaryPath_.empty()) unlink(temporaryPath_.c_str());
}

void PendingFile::close() {
  if (std::fclose(std::exchange(stream_, nullptr)) != 0) fail(path_);
}

void PendingFile::commit() {
  if (std::rename(temporaryPath_.c_str(), path_.c_str()) != 0) fail(path_);
  temporaryPath_.clear();
}

}  // namespace wayland
