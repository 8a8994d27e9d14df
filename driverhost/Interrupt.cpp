#include "driverhost/Interrupt.h"

#include <sys/eventfd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>

namespace driverhost {

namespace {

volatile std::sig_atomic_t s_Interrupted = 0;

int s_Event = -1;

extern "C" void OnInterrupt(int signal) {
  const int before = errno;
  s_Interrupted = signal;
  eventfd_write(s_Event, 1);
  errno = before;
}

}  // namespace

int CatchInterrupts() {
  s_Event = eventfd(0, EFD_CLOEXEC);
  struct sigaction action = {};
  action.sa_handler = &OnInterrupt;
  action.sa_flags = static_cast<int>(SA_RESETHAND);
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
  return s_Event;
}

int Interrupted() { return s_Interrupted; }

void ForgetInterrupt() { s_Interrupted = 0; }

void EndByInterrupt() {
  std::signal(s_Interrupted, SIG_DFL);
  std::raise(s_Interrupted);
  std::exit(128 + s_Interrupted);
}

}  // namespace driverhost
