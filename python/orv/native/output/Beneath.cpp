#include "python/orv/native/output/Beneath.hpp"

#include <fcntl.h>

#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>

#include "python/orv/native/output/OutputErrors.hpp"

namespace orv {
namespace {

int openInOneStep(int folder, const char* path, int flags) {
  open_how how{};
  how.flags = static_cast<decltype(how.flags)>(flags);
  how.resolve = RESOLVE_BENEATH | RESOLVE_NO_SYMLINKS | RESOLVE_NO_MAGICLINKS;
  return static_cast<int>(syscall(SYS_openat2, folder, path, &how, sizeof how));
}

// Old kernels do not know the call, and sandboxes such as those of containers may refuse it.
bool kernelResolves() {
  static const bool resolves = [] {
    return static_cast<bool>(Descriptor(openInOneStep(AT_FDCWD, ".", O_PATH | O_CLOEXEC)));
  }();
  return resolves;
}

bool isLink(int folder, const std::string& name) {
  struct stat status {};
  return fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 &&
         S_ISLNK(status.st_mode);
}

// Like openat(), but a link is always ELOOP: which error a link gives depends on the flags.
int openComponent(int folder, const std::string& name, int flags) {
  if (name == "..") {
    errno = EXDEV;
    return -1;
  }
  const int opened = openat(folder, name.c_str(), flags | O_NOFOLLOW);
  if (opened < 0 && errno == ENOTDIR && isLink(folder, name)) errno = ELOOP;
  return opened;
}

int openStepByStep(int folder, const std::string& path, int flags) {
  Descriptor parent;
  std::size_t begin = 0;
  if (path.front() == '/') {
    errno = EXDEV;
    return -1;
  }
  for (std::size_t end = path.find('/'); end != std::string::npos; end = path.find('/', begin)) {
    const std::string name = path.substr(begin, end - begin);
    const int from = parent ? parent.get() : folder;
    Descriptor next(openComponent(from, name, O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (!next) return -1;
    parent = std::move(next);
    begin = end + 1;
  }
  return openComponent(parent ? parent.get() : folder, path.substr(begin), flags);
}

}  // namespace

std::pair<std::string, std::string> splitPath(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string::npos) return {"", path};
  return {path.substr(0, slash), path.substr(slash + 1)};
}

std::string joinPath(const std::string& folder, const std::string& name) {
  return folder.empty() ? name : folder + "/" + name;
}

Descriptor findBeneath(int folder, const std::string& path, int flags) {
  const std::string name = path.empty() ? "." : path;
  flags |= O_CLOEXEC;
  Descriptor file(kernelResolves() ? openInOneStep(folder, name.c_str(), flags)
                                   : openStepByStep(folder, name, flags));
  if (!file && errno != ENOENT) throw SystemError(errno, path);
  return file;
}

}  // namespace orv
