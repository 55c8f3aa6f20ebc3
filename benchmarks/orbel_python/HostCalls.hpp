#ifndef VARN_BENCHMARKS_ORBEL_PYTHON_HOSTCALLS_HPP
#define VARN_BENCHMARKS_ORBEL_PYTHON_HOSTCALLS_HPP

#include <cstddef>

namespace direct_binding {

// Nanoseconds for one call, the mean of `count`: a member function called directly, and the same
// member called through the object system.
struct CallTime {
  double direct;
  double throughHost;
};

CallTime timePropertyRead(std::size_t count);
CallTime timeMethodCall(std::size_t count);

}  // namespace direct_binding

#endif
