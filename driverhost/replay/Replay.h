#pragma once

#include "driverhost/io/Loop.h"
#include "driverhost/io/Output.h"
#include "driverhost/replay/Session.h"
#include "driverhost/run/DriverRun.h"
#include "driverhost/run/Verdict.h"

#include <chrono>
#include <string>

namespace driverhost {

struct ReplayOptions {
  unsigned long repeat = 1;
  double pace = 0;      // how many times as fast as the lines' times say; 0: as fast as it goes
  bool served = false;  // at the end of the session it waits until it is to end
  bool asCase = false;  // the lines that are no steps are shown, too
};

// Plays a session's lines, in each round, between a driver's creation and its destruction.
class Replay {
 public:
  // Everything is borrowed and outlives the object.
  Replay(const ReplayOptions& options, Session& session, Loop& loop, DriverRun& run,
         Console& console, Verdict& verdict);

  // Runs once. Failures go to the verdict.
  void Run();

  // The lines played, in all rounds, the skipped ones too.
  unsigned long Lines() const { return m_Lines; }

  // The number of the step that was played last.
  unsigned long LastStep() const { return m_LastStep; }

 private:
  // Whether a signal, the driver, or standard output ends the replay before the session does.
  bool IsStopped() const;

  // These return false when the replay has to end.
  bool PlayRounds();
  bool PlayRound();
  bool PlayLine(const session::LineSplitter::Line& line);
  bool WaitFor(const Step& step);

  // Before the first step, for which `start` is what the driver gets.
  bool Start(const session::Start& start);
  void ShowComment(std::string_view text);

  const ReplayOptions& m_Options;
  Session& m_Session;
  Loop& m_Loop;
  DriverRun& m_Run;
  Console& m_Console;
  Verdict& m_Verdict;
  std::chrono::steady_clock::time_point m_RoundBegan;
  bool m_HasStarted = false;
  std::string m_Comments;  // before the first step
  unsigned long m_LastStep = 0;
  unsigned long m_Lines = 0;
  unsigned long m_Before = 0;  // the lines of the rounds before this one
};

}  // namespace driverhost
