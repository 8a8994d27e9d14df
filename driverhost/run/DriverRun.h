#pragma once

#include "driverhost/io/Output.h"
#include "driverhost/run/DriverProcess.h"
#include "driverhost/run/Step.h"
#include "driverhost/run/Traffic.h"
#include "driverhost/run/Verdict.h"

#include <boost/asio/steady_timer.hpp>

#include <chrono>
#include <cstddef>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>

namespace driverhost {

// One life of a driver in its process: it is loaded, created, gets lines, is destroyed, unloaded.
// Lines are sent ahead, so that both processes work; what comes back is handed on step by step.
// What the driver does wrong goes to the verdict, and ends this life alone.
class DriverRun {
 public:
  // Everything is borrowed and outlives the object. `seconds` is how long the driver may take for a
  // call, 0 for ever. `onProgress` is called, from the loop, whenever HasRoom, IsIdle or HasEnded
  // may have changed.
  DriverRun(
      Loop& loop, const DriverProcessOptions& options, double seconds, Traffic& traffic,
      Verdict& verdict, Console& console, std::function<void()> onProgress = [] {});

  // Starts the process and the driver in it: step 0. Throws std::runtime_error when the process
  // cannot be started.
  void Start(const session::Start& start = {});

  // Whether another line can be sent ahead.
  bool HasRoom() const;

  // The line becomes a step; it is dropped when the driver is no longer there to take it.
  void Deliver(Step step);

  // The driver is destroyed after the lines that have been sent: the last step.
  void End(unsigned long number);

  // Whether all steps so far are over.
  bool IsIdle() const { return m_Owed.empty(); }

  // Whether the driver takes lines: it has not thrown and has not ended.
  bool TakesLines() const { return m_TakesLines; }

  // Whether the process is gone and all of it has been told.
  bool HasEnded() const { return m_HasEnded; }

  // The steps that made a call into the driver, without creation and destruction.
  unsigned long Messages() const { return m_Messages; }

  // Host objects that the driver held when its destruction began.
  const std::string& ObjectsHeld() const { return m_ObjectsHeld; }

 private:
  using Clock = std::chrono::steady_clock;
  enum class Phase { Loading, Running, Unloading, Unloaded };
  // Where a restart is, all of which is one step: the driver is asked for its state, destroyed,
  // made anew with that state, bound again.
  enum class Restart { None, Asking, Destroying, Creating, Binding };

  void Owe(Step step);
  void Owe(session::Line line, unsigned long number);
  void BeginStep();
  void EndStep();
  void FinishStep();
  void OnLine(std::string_view line);
  void OnPause();
  void OnRecord(std::string_view line);
  void OnReport(std::string_view line);
  void OnThrown(const std::string& what);
  void StartProcess();
  void ContinueRestart();
  void RememberForRestart(const session::Line& line);
  void OnNonsense();
  void OnExit(int status);
  void OnPrinted(std::string_view line, bool output);
  void StopTakingLines();

  // "in step 12, notify NEW_LIST", "while it was loaded".
  std::string Where() const;
  void Tell(const std::string& what);

  // The timer, which runs while the process owes an answer.
  void StartTimer();
  void OnTimer();

  Loop& m_Loop;
  const DriverProcessOptions& m_Options;
  const double m_Seconds;
  Traffic& m_Traffic;
  Verdict& m_Verdict;
  Console& m_Console;
  const std::function<void()> m_OnProgress;
  boost::asio::steady_timer m_Timer;
  Clock::time_point m_OwedSince;
  std::optional<Clock::time_point> m_HandlingSince;  // what has come; this is not the driver's time
  std::deque<Step> m_Owed;                           // the first is the one that the driver is at
  Step m_Last;                                       // the newest that is over
  std::size_t m_OwedBytes = 0;
  bool m_HasBegun = false;  // the first of them
  std::size_t m_RecordsOfStep = 0;
  std::size_t m_BytesOfStep = 0;
  Reads m_Reads;
  std::map<std::string, Reads> m_LastReads;  // by kind and name
  Phase m_Phase = Phase::Loading;
  Restart m_Restart = Restart::None;
  session::Start m_Start;                  // what the driver was initialized with
  std::vector<session::Line> m_HostState;  // the rooms and the bindings that exist, in their order
  std::size_t m_HostLinesOwed = 0;
  bool m_TakesLines = true;
  bool m_Destroying = false;
  bool m_HasEnded = false;
  bool m_Told = false;  // why the process ends
  std::string m_Why;
  std::string m_Stack;  // as the process reported it
  std::string m_Maps;
  int m_Signal = 0;  // that it reported it for
  unsigned long m_Messages = 0;
  std::string m_ObjectsHeld;
  std::optional<DriverProcess> m_Process;
};

}  // namespace driverhost
