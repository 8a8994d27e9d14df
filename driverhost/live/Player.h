#pragma once

#include "driverhost/io/Descriptor.h"
#include "driverhost/io/LineReader.h"
#include "driverhost/io/Loop.h"
#include "driverhost/run/PlayerBindings.h"
#include "driverhost/run/Traffic.h"

#include <boost/asio/posix/stream_descriptor.hpp>
#include <boost/asio/steady_timer.hpp>

#include <sys/types.h>

#include <chrono>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace driverhost {

// A program that is the bound device: its standard output is lines of a session, its standard input
// gets the driver's calls to the bindings that it has made.
class Player : public TrafficSink {
 public:
  // How the program ended, as waitpid reports it; nothing when it was stopped.
  using OnEnd = std::function<void(std::optional<int> status)>;

  // `loop` and `bindings` outlive the object. `onEnd` is called once, after the last line. By then
  // nothing of the program's process group is left, unless it cannot be killed.
  Player(Loop& loop, std::vector<std::string> command, const PlayerBindings& bindings,
         LineReader::OnLine onLine, OnEnd onEnd);
  ~Player() override;

  // Throws std::runtime_error when the program cannot be started.
  void Start();

  // Closes its input, asks it to end, kills it two seconds later. Its lines are no longer taken.
  void Stop();

  // Its lines wait until Resume is called.
  void Pause();
  void Resume();

  void OnRecord(const Step& step, const session::Record& record) override;

 private:
  void WriteWaiting();
  void CloseInput();
  void OnEnded();

  // Whether there are processes left.
  bool Signal(int signal) const;
  void Terminate();
  void After(std::chrono::milliseconds time, void (Player::*then)());
  void Kill();
  void GiveUp();

  Loop& m_Loop;
  const std::vector<std::string> m_Command;
  const PlayerBindings& m_Bindings;
  const LineReader::OnLine m_OnLine;
  const OnEnd m_OnEnd;
  boost::asio::posix::stream_descriptor m_Input;
  Descriptor m_Output;
  boost::asio::steady_timer m_Timer;
  std::optional<LineReader> m_Lines;
  pid_t m_Id = 0;  // of the process and of its group
  std::deque<std::string> m_Waiting;
  std::size_t m_WaitingBytes = 0;
  bool m_Writing = false;
  bool m_Losing = false;
  bool m_Terminating = false;
  bool m_Stopped = false;
  std::optional<int> m_Status;  // once it has ended
};

}  // namespace driverhost
