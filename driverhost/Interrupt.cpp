#include "driverhost/Interrupt.h"

#include <csignal>
#include <cstdlib>

namespace driverhost {

namespace {

volatile std::sig_atomic_t s_Interrupted = 0;

extern "C" void OnInterrupt(int signal) { s_Interrupted = signal; }

}  // namespace

void CatchInterrupts() {
  struct sigaction action = {};
  action.sa_handler = &OnInterrupt;
  action.sa_flags = static_cast<int>(SA_RESETHAND);
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
}

int Interrupted() { return s_Interrupted; }

void EndByInterrupt() {
  std::signal(s_Interrupted, SIG_DFL);
  std::raise(s_Interrupted);
  std::exit(128 + s_Interrupted);
}

}  // namespace driverhost
