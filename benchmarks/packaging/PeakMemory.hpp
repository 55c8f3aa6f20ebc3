#ifndef VARN_BENCHMARKS_PACKAGING_PEAKMEMORY_HPP
#define VARN_BENCHMARKS_PACKAGING_PEAKMEMORY_HPP

#include <functional>

namespace bench {

// The most memory, in bytes, that a process of its own had resident while it ran `work`, over what
// it takes to do nothing. Throws std::runtime_error when `work` fails.
double peakMemory(const std::function<void()>& work);

}  // namespace bench

#endif
