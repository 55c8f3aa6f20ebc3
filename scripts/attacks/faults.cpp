// Preloaded into a program (LD_PRELOAD): counts its calls that use the disk and, when the armed one
// comes, makes it fail, kills the program, or swaps a folder for a link.

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

#include <sys/file.h>
#include <sys/stat.h>
#include <sys/types.h>

namespace {

struct Plan {
  long call = 0;       // 0: nothing is armed
  bool lasts = false;  // whether later calls fail, too
  int error = 0;       // 0: no call fails
  int signal = 0;      // 0: no signal is sent
  const char* folder = nullptr;
  const char* moved = nullptr;
  const char* target = nullptr;
};

Plan plan;
long calls = 0;

template <class F>
F* next(F* /*own*/, const char* name) {
  return reinterpret_cast<F*>(dlsym(RTLD_NEXT, name));
}

void swapFolder() {
  static const auto rename = next(&::rename, "rename");
  if (rename(plan.folder, plan.moved) == 0) static_cast<void>(::symlink(plan.target, plan.folder));
}

// Whether the call that is about to be made fails; then errno is set.
bool strikes() {
  ++calls;
  if (plan.call == 0 || calls < plan.call || (calls > plan.call && !plan.lasts)) return false;
  if (plan.signal != 0) ::kill(::getpid(), plan.signal);
  if (plan.folder != nullptr) swapFolder();
  errno = plan.error;
  return plan.error != 0;
}

}  // namespace

extern "C" {

void faults_arm(long call, bool lasts, int error, int signal, const char* folder, const char* moved,
                const char* target) {
  calls = 0;
  plan = {call, lasts, error, signal, folder, moved, target};
}

long faults_calls() { return calls; }

#define FAULTS_CALL(result, name, parameters, arguments) \
  result name parameters {                               \
    static const auto real = next(&::name, #name);       \
    return strikes() ? -1 : real arguments;              \
  }

FAULTS_CALL(ssize_t, read, (int file, void* data, size_t size), (file, data, size))
ssize_t write(int file, const void* data, size_t size) {
  static const auto real = next(&::write, "write");
  const bool isMessage = file <= STDERR_FILENO;
  return !isMessage && strikes() ? -1 : real(file, data, size);
}
FAULTS_CALL(int, rename, (const char* from, const char* to) noexcept, (from, to))
FAULTS_CALL(int, renameat, (int from, const char* name, int to, const char* other) noexcept,
            (from, name, to, other))
FAULTS_CALL(int, mkdir, (const char* path, mode_t mode) noexcept, (path, mode))
FAULTS_CALL(int, mkdirat, (int folder, const char* path, mode_t mode) noexcept,
            (folder, path, mode))
FAULTS_CALL(int, unlink, (const char* path) noexcept, (path))
FAULTS_CALL(int, unlinkat, (int folder, const char* path, int flags) noexcept,
            (folder, path, flags))
FAULTS_CALL(int, fsync, (int file), (file))
FAULTS_CALL(int, fchmod, (int file, mode_t mode) noexcept, (file, mode))
FAULTS_CALL(int, flock, (int file, int operation) noexcept, (file, operation))

#define FAULTS_OPEN(name, parameters, arguments)   \
  int name parameters {                            \
    static const auto real = next(&::name, #name); \
    va_list rest;                                  \
    va_start(rest, flags);                         \
    const mode_t mode = va_arg(rest, mode_t);      \
    va_end(rest);                                  \
    return strikes() ? -1 : real arguments;        \
  }

FAULTS_OPEN(open, (const char* path, int flags, ...), (path, flags, mode))
FAULTS_OPEN(open64, (const char* path, int flags, ...), (path, flags, mode))
FAULTS_OPEN(openat, (int folder, const char* path, int flags, ...), (folder, path, flags, mode))
FAULTS_OPEN(openat64, (int folder, const char* path, int flags, ...), (folder, path, flags, mode))

// openat2() has no function of its own.
long syscall(long number, ...) noexcept {
  static const auto real = next(&::syscall, "syscall");
  va_list rest;
  va_start(rest, number);
  long arguments[6];
  for (long& argument : arguments) argument = va_arg(rest, long);
  va_end(rest);
  if (strikes()) return -1;
  return real(number, arguments[0], arguments[1], arguments[2], arguments[3], arguments[4],
              arguments[5]);
}
}
