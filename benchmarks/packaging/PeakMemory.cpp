#include "PeakMemory.hpp"

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

double peakOfChild(const std::function<void()>& work) {
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
  if (status != 0) throw std::runtime_error("a process that measures memory failed");
  return static_cast<double>(usage.ru_maxrss) * 1024.0;
}

}  // namespace

double peakMemory(const std::function<void()>& work) {
  // A child would otherwise fill free memory of this process first, unseen.
  ::malloc_trim(0);
  return peakOfChild(work) - peakOfChild([] {});
}

}  // namespace bench
