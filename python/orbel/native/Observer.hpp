#ifndef ORBEL_PYTHON_OBSERVER_HPP
#define ORBEL_PYTHON_OBSERVER_HPP

#include <orbel/Arguments.hpp>
#include <orbel/Method.hpp>

namespace orbel::python {

// Is told which methods scripts call. Other native modules implement it; they pass it to observe()
// of this module as a capsule, and it must live until something else is observed.
class Observer {
 public:
  static constexpr const char* capsuleName = "orbel.Observer";

  Observer() = default;
  Observer(const Observer&) = delete;
  Observer& operator=(const Observer&) = delete;
  virtual ~Observer() = default;

  // A call has succeeded, of a method that makes no object; `arguments` begin with the object. What
  // this throws, the script sees as the failure of its call.
  virtual void called(const Method& method, Arguments arguments) = 0;
};

}  // namespace orbel::python

#endif
