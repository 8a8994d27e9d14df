#pragma once

#include "driverhost/Life.h"
#include "driverhost/Output.h"
#include "driverhost/Session.h"
#include "driverhost/Verdict.h"

#include <chrono>
#include <functional>

namespace driverhost {

struct ReplayOptions {
  unsigned long repeat = 1;
  bool served = false;  // waits before each line, and at the end until it is to end
  double pace = 0;      // how many times as fast as the lines' times say; 0: as fast as it goes
};

// Plays a session's lines, in each round, between a driver's creation and its destruction.
class Replay {
 public:
  // Waits until that time. Returns false when the replay has to end before.
  using Wait = std::function<bool(std::chrono::steady_clock::time_point)>;

  // Everything is borrowed and outlives the object. `comment`, which may be empty, gets each line
  // of the first round that is no step.
  Replay(const ReplayOptions& options, Session& session, Life& life, Output& output,
         Verdict& verdict, Wait wait, std::function<void(std::string_view)> comment);

  // Runs once. Failures go to the verdict.
  void Run();

  // The lines played, in all rounds, the skipped ones too.
  unsigned long Lines() const { return m_Lines; }

 private:
  // Whether a signal, or standard output, ends the replay before the session does.
  bool Stopped() const;

  // These return false when the replay has to end.
  bool PlayRounds();
  bool PlayRound();
  bool PlayLine(const LineSplitter::Line& line);
  bool WaitFor(const Step& step);

  const ReplayOptions& m_Options;
  Session& m_Session;
  Life& m_Life;
  Output& m_Output;
  Verdict& m_Verdict;
  const Wait m_Wait;
  const std::function<void(std::string_view)> m_Comment;
  std::chrono::steady_clock::time_point m_RoundBegan;
  unsigned long m_Lines = 0;
  unsigned long m_Before = 0;  // the lines of the rounds before this one
};

}  // namespace driverhost
