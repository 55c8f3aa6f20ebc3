#ifndef VARN_BENCHMARKS_PACKAGING_PROCESSCOST_HPP
#define VARN_BENCHMARKS_PACKAGING_PROCESSCOST_HPP

#include <functional>

namespace bench {

// The cost of a new process.
struct ProcessCost {
  // The largest resident size, in bytes.
  double peakMemory;
  // Nanoseconds of CPU time, user and system.
  double time;
};

// The cost of `work` in a new process, less the cost of a process that does nothing. Throws
// std::runtime_error when `work` fails.
ProcessCost costInNewProcess(const std::function<void()>& work);

}  // namespace bench

#endif
