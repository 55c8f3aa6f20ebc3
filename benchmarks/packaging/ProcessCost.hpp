#ifndef VARN_BENCHMARKS_PACKAGING_PROCESSCOST_HPP
#define VARN_BENCHMARKS_PACKAGING_PROCESSCOST_HPP

#include <functional>

namespace bench {

// What a process of its own took.
struct ProcessCost {
  // The most bytes that it had resident.
  double peakMemory;
  // Nanoseconds of CPU time, its own and the system's for it.
  double time;
};

// What it takes to do `work` in a new process, whose memory is all untouched, over what it takes to
// do nothing there. Throws std::runtime_error when `work` fails.
ProcessCost costInNewProcess(const std::function<void()>& work);

}  // namespace bench

#endif
