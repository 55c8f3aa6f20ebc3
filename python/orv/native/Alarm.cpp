// Ends a run that takes too long. The interpreter handles signals between two steps of a program; a
// step that does not end, such as comparing two values that hold the same list exponentially often,
// is ended here together with the process.

#include <atomic>
#include <cerrno>
#include <csignal>
#include <string>
#include <unistd.h>

#include "python/orv/native/Bindings.hpp"

namespace orv {
namespace {

namespace py = pybind11;

// What the signal handler reads is set before the handler is installed, and never destroyed.
struct Alarm {
  std::atomic<int> unhandled = 0;
  int mostUnhandled = 0;
  bool isWithinStep = false;
  std::string message;
};

Alarm& theAlarm() {
  static auto& made = *new Alarm;
  return made;
}

void handle(int signal, void (*handler)(int)) {
  struct sigaction action = {};
  action.sa_handler = handler;
  action.sa_flags = SA_NODEFER;
  static_cast<void>(sigaction(signal, &action, nullptr));
}

void endWithMessage(int /*signal*/) {
  const std::string& message = theAlarm().message;
  static_cast<void>(!write(STDERR_FILENO, message.data(), message.size()));
  _exit(1);
}

// Has the handler in Python end the process. The step may have been anywhere in the interpreter:
// when the handler crashes or hangs, the next signal ends the process.
void endStep() {
  constexpr unsigned patience = 10;
  handle(SIGALRM, &endWithMessage);
  handle(SIGSEGV, &endWithMessage);
  alarm(patience);
  theAlarm().isWithinStep = true;
  if (PyGILState_Check() != 0) PyErr_CheckSignals();
  endWithMessage(SIGALRM);
}

void onAlarm(int signal) {
  const int saved = errno;
  static_cast<void>(PyErr_SetInterruptEx(signal));
  if (theAlarm().unhandled.fetch_add(1) >= theAlarm().mostUnhandled) endStep();
  errno = saved;
}

void enforceAlarm(const py::bytes& message, int mostUnhandled) {
  theAlarm().message = message;
  theAlarm().mostUnhandled = mostUnhandled;
  theAlarm().unhandled = 0;
  handle(SIGALRM, &onAlarm);
}

bool alarmHandled() {
  theAlarm().unhandled = 0;
  return theAlarm().isWithinStep;
}

}  // namespace

void bindAlarm(py::module_& module) {
  module.def("enforce_alarm", &enforceAlarm);
  module.def("alarm_handled", &alarmHandled);
}

}  // namespace orv
