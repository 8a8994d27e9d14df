#include "driverhost/Interrupt.h"

#include <csignal>

namespace driverhost {

namespace {

volatile std::sig_atomic_t s_Interrupted = 0;

extern "C" void OnInterrupt(int) { s_Interrupted = 1; }

}  // namespace

void CatchInterrupts() {
  struct sigaction action = {};
  action.sa_handler = &OnInterrupt;
  action.sa_flags = static_cast<int>(SA_RESETHAND);
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
}

bool Interrupted() { return s_Interrupted != 0; }

}  // namespace driverhost
