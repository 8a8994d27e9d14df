#include "driverhost/io/Interrupt.h"

#include <sys/eventfd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <initializer_list>

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

void CatchInterrupts() {
  s_Event = eventfd(0, EFD_CLOEXEC);
  struct sigaction action = {};
  action.sa_handler = &OnInterrupt;
  action.sa_flags = static_cast<int>(SA_RESETHAND);
  for (const int signal : {SIGINT, SIGTERM}) sigaction(signal, &action, nullptr);
  struct sigaction before = {};
  sigaction(SIGHUP, nullptr, &before);
  if (before.sa_handler != SIG_IGN) sigaction(SIGHUP, &action, nullptr);  // nohup has asked for it
}

int InterruptDescriptor() { return s_Event; }

int Interrupted() { return s_Interrupted; }

void ForgetInterrupt() { s_Interrupted = 0; }

void EndByInterrupt() {
  std::signal(s_Interrupted, SIG_DFL);
  std::raise(s_Interrupted);
  std::exit(128 + s_Interrupted);
}

}  // namespace driverhost
