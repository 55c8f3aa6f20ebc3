#include "python/orv/native/output/Temporary.hpp"

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <vector>

#include <sys/file.h>
#include <sys/random.h>
#include <sys/stat.h>

#include "python/orv/native/output/OutputErrors.hpp"
#include "python/orv/native/output/OutputName.hpp"

namespace orv {
namespace {

std::string randomName() {
  std::uint64_t number = 0;
  if (getrandom(&number, sizeof number, 0) != sizeof number) throw SystemError(errno, "");
  std::array<char, 32> name{};
  static_cast<void>(std::snprintf(name.data(), name.size(), ".orv-%016llx.tmp",
                                  static_cast<unsigned long long>(number)));
  return name.data();
}

bool isRemoved(const Descriptor& file) {
  struct stat status {};
  return fstat(file.get(), &status) == 0 && status.st_nlink == 0;
}

struct FolderCloser {
  void operator()(DIR* folder) const noexcept { static_cast<void>(closedir(folder)); }
};

std::vector<std::string> temporaryNames(int folder) {
  std::vector<std::string> names;
  Descriptor listed(openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!listed) return names;
  const std::unique_ptr<DIR, FolderCloser> stream(fdopendir(listed.get()));
  if (!stream) return names;
  static_cast<void>(listed.release());
  // NOLINTNEXTLINE(concurrency-mt-unsafe): the stream is this function's own
  for (const dirent* entry = readdir(stream.get()); entry != nullptr;
       entry = readdir(stream.get())) {
    if (isTemporaryName(static_cast<const char*>(entry->d_name))) {
      names.emplace_back(static_cast<const char*>(entry->d_name));
    }
  }
  return names;
}

// Whether it is a plain file that no writer holds. The lock keeps a new writer from using it.
bool isAbandoned(const Descriptor& file) {
  struct stat status {};
  return file && fstat(file.get(), &status) == 0 && S_ISREG(status.st_mode) &&
         flock(file.get(), LOCK_EX | LOCK_NB) == 0;
}

}  // namespace

Temporary::Temporary(int folder, mode_t mode) : folder_(folder) {
  do {
    name_ = randomName();
    file_ = Descriptor(
        openat(folder, name_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode));
    if (!file_) throw SystemError(errno, name_);
    // File systems without locks have no clean-up either.
    static_cast<void>(flock(file_.get(), LOCK_EX));
  } while (isRemoved(file_));
}

Temporary::~Temporary() {
  if (!name_.empty()) static_cast<void>(unlinkat(folder_, name_.c_str(), 0));
}

void Temporary::write(std::string_view data) {
  while (!data.empty()) {
    const ssize_t written = ::write(file_.get(), data.data(), data.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) throw SystemError(errno, name_);
    data.remove_prefix(static_cast<std::size_t>(written));
  }
}

void Temporary::setMode(mode_t mode) {
  if (fchmod(file_.get(), mode) != 0) throw SystemError(errno, name_);
}

void Temporary::sync() {
  if (fsync(file_.get()) != 0) throw SystemError(errno, name_);
}

void Temporary::replace(const std::string& name) {
  // Some file systems report a failed write only when a descriptor is closed. Closing a copy of it
  // keeps the lock.
  const int copy = fcntl(file_.get(), F_DUPFD_CLOEXEC, 0);
  if (copy < 0 || ::close(copy) != 0) throw SystemError(errno, name_);
  if (renameat(folder_, name_.c_str(), folder_, name.c_str()) != 0) throw SystemError(errno, name);
  name_.clear();
}

void removeAbandoned(int folder) {
  for (const std::string& name : temporaryNames(folder)) {
    const Descriptor file(
        openat(folder, name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (isAbandoned(file)) static_cast<void>(unlinkat(folder, name.c_str(), 0));
  }
}

}  // namespace orv
