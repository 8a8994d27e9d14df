#include "driverhost/io/Loop.h"

#include "driverhost/io/Interrupt.h"

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace driverhost {

namespace {

constexpr std::chrono::milliseconds s_ForKilled{500};

// The processes whose parent this one is; without /proc nothing is known of them.
std::vector<pid_t> Children() {
  std::ifstream ids("/proc/self/task/" + std::to_string(getpid()) + "/children");
  return {std::istream_iterator<pid_t>(ids), {}};
}

}  // namespace

// Processes that a child leaves become children of this one, so that their end is noticed, too.
Loop::Loop()
    : m_ChildSignal(m_Context, SIGCHLD),
      m_Interrupt(m_Context, InterruptDescriptor()),
      m_Time(m_Context) {
  prctl(PR_SET_CHILD_SUBREAPER, 1);
  WaitForChildren();
  m_Interrupt.Wait([] {});
}

// A killed process hands its children on to this one, so they are asked for until none is left.
Loop::~Loop() {
  const auto until = std::chrono::steady_clock::now() + s_ForKilled;
  for (auto left = Children(); !left.empty(); left = Children()) {
    for (const pid_t child : left) kill(child, SIGKILL);
    while (waitpid(-1, nullptr, WNOHANG) > 0) {
    }
    if (std::chrono::steady_clock::now() > until) return;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

bool Loop::RunUntil(const std::function<bool()>& done, bool always) {
  while (!done()) {
    if (!always && Interrupted() != 0) return false;
    if (m_Context.stopped()) m_Context.restart();
    m_Context.run_one();
  }
  return true;
}

bool Loop::RunUntil(std::chrono::steady_clock::time_point time) {
  m_TimeIsOver = false;
  m_Time.expires_at(time);
  m_Time.async_wait([this](const boost::system::error_code& error) {
    if (!error) m_TimeIsOver = true;
  });
  return RunUntil([this] { return m_TimeIsOver; });
}

void Loop::Poll() {
  m_Context.restart();
  m_Context.poll();
}

void Loop::WatchChild(pid_t child, std::function<void(int)> onExit) {
  m_Children[child] = std::move(onExit);
}

void Loop::WaitForChildren() {
  m_ChildSignal.async_wait([this](const boost::system::error_code& error, int) {
    if (error) return;
    WaitForChildren();
    Reap();
  });
}

void Loop::Reap() {
  int status = 0;
  for (pid_t ended = 0; (ended = waitpid(-1, &status, WNOHANG)) > 0;) {
    auto child = m_Children.extract(ended);
    if (child) child.mapped()(status);
  }
}

}  // namespace driverhost
