#pragma once

#include "driverhost/io/Readiness.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/steady_timer.hpp>

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <map>

namespace driverhost {

// The one place where the program waits: for descriptors, times, the end of processes, and for a
// signal that asks it to stop.
class Loop {
 public:
  // Requires: CatchInterrupts was called. One loop a program.
  Loop();

  // Kills and reaps whatever the program's children have left.
  ~Loop();
  Loop(const Loop&) = delete;
  Loop& operator=(const Loop&) = delete;

  boost::asio::io_context& Context() { return m_Context; }

  // Runs handlers until `done` holds, or, unless `always`, until a signal asks the program to stop.
  // Returns whether `done` holds.
  bool RunUntil(const std::function<bool()>& done, bool always = false);

  // The same until that time. Returns false when a signal asks the program to stop before.
  bool RunUntil(std::chrono::steady_clock::time_point time);

  // Runs the handlers that wait to be run.
  void Poll();

  // `onExit` is called once, from the loop, with what waitpid tells of that child.
  void WatchChild(pid_t child, std::function<void(int status)> onExit);

 private:
  void WaitForChildren();
  void Reap();

  boost::asio::io_context m_Context;
  boost::asio::signal_set m_ChildSignal;
  Readiness m_Interrupt;
  boost::asio::steady_timer m_Time;
  bool m_TimeIsOver = false;
  std::map<pid_t, std::function<void(int)>> m_Children;
};

}  // namespace driverhost
