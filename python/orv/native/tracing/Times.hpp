#ifndef ORV_TRACING_TIMES_HPP
#define ORV_TRACING_TIMES_HPP

#include <chrono>
#include <cstdint>
#include <map>

namespace orv {

// How long each template ran without those that it called. Told of what happens in a run: whenever
// something is printed, entered or left, the template that runs is known. A template is a number of
// a trace's strings. Nothing is measured until start().
class Times {
 public:
  using Clock = std::chrono::steady_clock;

  void start() {
    isStarted_ = true;
    last_ = Clock::now();
  }
  // The template has run since the last event.
  void ran(std::uint32_t file) {
    if (!isStarted_) return;
    current_ = file;
    count();
  }
  // What ran since the last event has returned to the template.
  void returned(std::uint32_t file) {
    if (!isStarted_) return;
    count();
    current_ = file;
  }

  const std::map<std::uint32_t, Clock::duration>& all() const { return times_; }

 private:
  void count() {
    const Clock::time_point now = Clock::now();
    times_[current_] += now - last_;
    last_ = now;
  }

  bool isStarted_ = false;
  std::uint32_t current_ = 0;
  Clock::time_point last_;
  std::map<std::uint32_t, Clock::duration> times_;
};

}  // namespace orv

#endif
