#include "driverprocess/LastSignal.h"

#include <execinfo.h>
#include <ucontext.h>

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace driverprocess {

namespace {

constexpr std::array<int, 7> s_Signals = {SIGSEGV, SIGBUS, SIGFPE, SIGILL,
                                          SIGABRT, SIGSYS, SIGTRAP};
constexpr int s_MostFrames = 100;

// What the handler needs: it may use nothing that allocates.
std::array<struct sigaction, s_Signals.size()> s_Before;
std::array<char, std::size_t{128} << 10U> s_Stack;  // for when the usual one has overflowed
int s_Socket = -1;

void Write(std::string_view text) {
  while (!text.empty()) {
    const ssize_t size = send(s_Socket, text.data(), text.size(), MSG_NOSIGNAL);
    if (size <= 0) return;
    text.remove_prefix(static_cast<std::size_t>(size));
  }
}

void WriteAddress(std::uintptr_t address) {
  std::array<char, 2 * sizeof address + 1> text;
  std::size_t at = text.size();
  text[--at] = ' ';
  do {
    text[--at] = "0123456789abcdef"[address % 16];
    address /= 16;
  } while (address != 0);
  Write({text.data() + at, text.size() - at});
}

// The process's maps as part of a JSON text.
void WriteMaps() {
  const int maps = open("/proc/self/maps", O_RDONLY | O_CLOEXEC);
  std::array<char, 4096> part;
  ssize_t size = 0;
  while (maps >= 0 && (size = read(maps, part.data(), part.size())) > 0) {
    std::string_view text(part.data(), static_cast<std::size_t>(size));
    while (!text.empty()) {
      const std::size_t plain = std::min(text.find_first_of("\n\"\\"), text.size());
      Write(text.substr(0, plain));
      text.remove_prefix(plain);
      if (text.empty()) break;
      Write(text[0] == '\n' ? "\\n" : text[0] == '"' ? "\\\"" : "\\\\");
      text.remove_prefix(1);
    }
  }
}

// Where the signal has interrupted the thread.
std::uintptr_t InterruptedAt(const ucontext_t& context) {
#if defined(__x86_64__)
  return static_cast<std::uintptr_t>(context.uc_mcontext.gregs[REG_RIP]);
#elif defined(__i386__)
  return static_cast<std::uintptr_t>(context.uc_mcontext.gregs[REG_EIP]);
#elif defined(__aarch64__)
  return context.uc_mcontext.pc;
#elif defined(__arm__)
  return context.uc_mcontext.arm_pc;
#else
  return 0;
#endif
}

// The stack without the frames of the signal's own handling, which are two where they are not
// known.
void WriteStack(int signal, const ucontext_t& context) {
  std::array<void*, s_MostFrames> frames;
  void** const end = frames.data() + backtrace(frames.data(), s_MostFrames);
  void** frame = std::find_if(frames.data(), end, [&context](const void* address) {
    return reinterpret_cast<std::uintptr_t>(address) == InterruptedAt(context);
  });
  if (frame == end) frame = std::min(end, frames.data() + 2);
  Write("\n");
  Write(R"({"stack":")");
  for (; frame != end; ++frame) WriteAddress(reinterpret_cast<std::uintptr_t>(*frame));
  Write(R"(","signal":")");
  WriteAddress(static_cast<std::uintptr_t>(signal));
  Write(R"(","maps":")");
  WriteMaps();
  Write(R"("})");
  Write("\n");
}

// A fault comes again when the handler returns; a signal that somebody sent is sent again.
void OnLastSignal(int signal, siginfo_t* info, void* context) {
  for (std::size_t at = 0; at < s_Signals.size(); ++at)
    sigaction(s_Signals[at], &s_Before[at], nullptr);
  WriteStack(signal, *static_cast<const ucontext_t*>(context));
  if (info->si_code <= 0 && info->si_pid != getpid()) _exit(1);
  if (info->si_code <= 0) raise(signal);
}

}  // namespace

void ReportLastSignal(int socket) {
  s_Socket = socket;
  std::array<void*, 1> frame;
  backtrace(frame.data(), 1);  // loads what it needs now, while memory can be had
  stack_t stack{};
  stack.ss_sp = s_Stack.data();
  stack.ss_size = s_Stack.size();
  sigaltstack(&stack, nullptr);
  struct sigaction action = {};
  action.sa_flags = SA_SIGINFO | SA_ONSTACK;
  action.sa_sigaction = &OnLastSignal;
  for (std::size_t at = 0; at < s_Signals.size(); ++at) {
    sigaction(s_Signals[at], &action, &s_Before[at]);
  }
}

}  // namespace driverprocess
