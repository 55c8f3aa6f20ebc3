#include "ProcessCost.hpp"

#include <cerrno>
#include <exception>
#include <malloc.h>
#include <stdexcept>
#include <system_error>
#include <unistd.h>

#include <sys/resource.h>
#include <sys/wait.h>

namespace bench {
namespace {

double nanoseconds(const timeval& time) {
  return static_cast<double>(time.tv_sec) * 1e9 + static_cast<double>(time.tv_usec) * 1e3;
}

ProcessCost costOfChild(const std::function<void()>& work) {
  const pid_t child = ::fork();
  if (child < 0) throw std::system_error(errno, std::generic_category(), "fork");
  if (child == 0) {
    try {
      work();
    } catch (const std::exception&) {
      ::_exit(1);
    }
    ::_exit(0);
  }
  int status = 0;
  rusage usage{};
  if (::wait4(child, &status, 0, &usage) != child) {
    throw std::system_error(errno, std::generic_category(), "wait4");
  }
  if (status != 0) throw std::runtime_error("a process that is measured failed");
  return {static_cast<double>(usage.ru_maxrss) * 1024.0,
          nanoseconds(usage.ru_utime) + nanoseconds(usage.ru_stime)};
}

}  // namespace

ProcessCost costInNewProcess(const std::function<void()>& work) {
  // A child would otherwise reuse free memory of this process first, which is mapped already.
  ::malloc_trim(0);
  const ProcessCost idle = costOfChild([] {});
  const ProcessCost busy = costOfChild(work);
  return {busy.peakMemory - idle.peakMemory, busy.time - idle.time};
}

}  // namespace bench
