#pragma once

#include "driverhost/io/LineReader.h"
#include "driverhost/io/Loop.h"
#include "driverhost/io/Output.h"
#include "driverhost/live/Player.h"
#include "driverhost/run/DriverRun.h"
#include "driverhost/run/Verdict.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace driverhost {

// A driver with a player and with all others who send session lines. Each line becomes a step when
// it comes, numbered from 1.
class Live {
 public:
  // `player` is the program with its arguments, empty for none; `bindings` gets the traffic before
  // it; `served` says whether there is a page, which then may deliver lines at any time. The rest
  // is borrowed and outlives the object.
  Live(const std::vector<std::string>& player, const PlayerBindings& bindings, bool served,
       Loop& loop, DriverRun& run, Traffic& traffic, Console& console, Verdict& verdict);

  // Runs once: until the player has ended; without player and page, until standard input has; or
  // until a signal comes. `onStarted` is called when the driver and the player have started; the
  // std::runtime_error that it may throw ends the run. Failures go to the verdict.
  void Run(const std::function<void()>& onStarted);

  // Ends the run with this failure.
  void Fail(const std::string& why);

  // The line becomes a step.
  void Deliver(Step step);

  // More lines can be sent ahead.
  void Resume();

  // The lines delivered.
  unsigned long Steps() const { return m_Steps; }

 private:
  // Returns whether more lines are wanted.
  bool Take(const session::LineSplitter::Line& line, From from, const std::string& source);

  void Start(const std::function<void()>& onStarted);
  void OnPlayerEnd(std::optional<int> status);

  // Whether something other than the player's end ends the program.
  bool IsStopped() const;

  Loop& m_Loop;
  DriverRun& m_Run;
  Console& m_Console;
  Verdict& m_Verdict;
  LineReader m_Input;
  std::optional<Player> m_Player;
  unsigned long m_Steps = 0;
  bool m_Failed = false;
  bool m_InputEnded = false;
  bool m_PlayerEnded = false;
  const bool m_Served;
};

}  // namespace driverhost
