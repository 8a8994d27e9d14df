#include "driverhost/CallGuard.h"

#include <sys/time.h>
#include <unistd.h>

#include <array>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string_view>

namespace driverhost {

using namespace std::literals;

namespace {

struct Deadly {
  int signal;
  std::string_view told;
  struct sigaction before;
};

// What the handlers below need; they may use nothing that allocates.
std::array<Deadly, 5> s_Deadly = {{{SIGSEGV, "crashed (SIGSEGV)", {}},
                                   {SIGBUS, "crashed (SIGBUS)", {}},
                                   {SIGFPE, "crashed (SIGFPE)", {}},
                                   {SIGILL, "crashed (SIGILL)", {}},
                                   {SIGABRT, "crashed (SIGABRT)", {}}}};
Output* s_Output = nullptr;
volatile std::sig_atomic_t s_InCall = 0;
volatile std::sig_atomic_t s_TimerRuns = 0;
double s_Seconds = 0;
double s_CallBegan = 0;
std::array<char, 60> s_Late;      // "did not return within 10 s"
std::array<char, 200> s_Step;     // "step 12, notify NEW_LIST"
std::array<char, 65536> s_Stack;  // for when the usual one has overflowed

double Now() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

// Writes "driverhost: the driver WHAT in step 12, notify NEW_LIST".
void Tell(std::string_view what) {
  s_Output->Flush();
  std::array<char, 400> line;
  std::size_t size = 0;
  for (const std::string_view piece :
       {"driverhost: the driver "sv, what, " in "sv, std::string_view(s_Step.data()), "\n"sv}) {
    size += piece.copy(line.data() + size, line.size() - size);
  }
  [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, line.data(), size);
}

// A fault comes again when the handler returns; a signal that somebody sent is sent again.
void OnDeadly(int signal, siginfo_t* info, void*) {
  for (const Deadly& deadly : s_Deadly) {
    if (deadly.signal != signal) continue;
    if (s_InCall != 0) Tell(deadly.told);
    sigaction(signal, &deadly.before, nullptr);
  }
  s_InCall = 0;
  if (info->si_code <= 0) raise(signal);
}

void StartTimer(double seconds) {
  itimerval time{};
  time.it_value.tv_sec = static_cast<time_t>(seconds);
  time.it_value.tv_usec = static_cast<suseconds_t>((seconds - std::floor(seconds)) * 1e6) + 1;
  setitimer(ITIMER_REAL, &time, nullptr);
  s_TimerRuns = 1;
}

// The timer is started once for many calls, so it may fire in a call that has only begun.
void OnTimer(int) {
  s_TimerRuns = 0;
  if (s_InCall == 0) return;
  const double left = s_CallBegan + s_Seconds - Now();
  if (left > 0) return StartTimer(left);
  Tell(s_Late.data());
  _exit(1);
}

void OnExit() {
  if (s_InCall == 0) return;
  Tell("called exit");
  _exit(1);
}

}  // namespace

void CallGuard::Install(Output& output, double seconds) {
  s_Output = &output;
  s_Seconds = seconds;
  std::snprintf(s_Late.data(), s_Late.size(), "did not return within %g s", seconds);
  std::atexit(&OnExit);
  stack_t stack{};
  stack.ss_sp = s_Stack.data();
  stack.ss_size = s_Stack.size();
  sigaltstack(&stack, nullptr);
  struct sigaction action = {};
  action.sa_flags = SA_SIGINFO | SA_ONSTACK;
  action.sa_sigaction = &OnDeadly;
  for (Deadly& deadly : s_Deadly) sigaction(deadly.signal, &action, &deadly.before);
  struct sigaction timer = {};
  timer.sa_flags = SA_RESTART;
  timer.sa_handler = &OnTimer;
  sigaction(SIGALRM, &timer, nullptr);
}

CallGuard::CallGuard(unsigned long step, const std::string& title) {
  const std::string text = "step " + std::to_string(step) + ", " + title;
  const std::size_t size = text.copy(s_Step.data(), s_Step.size() - 1);
  s_Step[size] = '\0';
  s_CallBegan = s_Seconds > 0 ? Now() : 0;
  s_InCall = 1;
  if (s_Seconds > 0 && s_TimerRuns == 0) StartTimer(s_Seconds);
}

CallGuard::~CallGuard() { s_InCall = 0; }

}  // namespace driverhost
