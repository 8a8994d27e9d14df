#include "driverhost/text/EndOfProcess.h"

#include <sys/wait.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstring>

namespace driverhost {

std::string EndOfProcess(int status) {
  if (WIFEXITED(status)) return "exit status " + std::to_string(WEXITSTATUS(status));
  const char* name = sigabbrev_np(WTERMSIG(status));  // those for real time have none
  return name ? std::string("SIG") + name : "signal " + std::to_string(WTERMSIG(status));
}

bool IsCrash(int status) {
  constexpr std::array<int, 7> crashes = {SIGSEGV, SIGBUS, SIGFPE, SIGILL,
                                          SIGABRT, SIGSYS, SIGTRAP};
  return WIFSIGNALED(status) &&
         std::find(crashes.begin(), crashes.end(), WTERMSIG(status)) != crashes.end();
}

}  // namespace driverhost
