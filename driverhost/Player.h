#pragma once

#include "driverhost/LineReader.h"
#include "driverhost/Traffic.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/posix/stream_descriptor.hpp>
#include <boost/asio/signal_set.hpp>
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
// gets the bound calls of the driver.
class Player : public TrafficSink {
 public:
  // How the program ended, as waitpid reports it; nothing when it was stopped.
  using OnEnd = std::function<void(std::optional<int> status)>;

  // `loop` outlives the object. `onEnd` is called once, after the last line. By then nothing of the
  // program's process group is left, unless it cannot be killed.
  Player(boost::asio::io_context& loop, std::vector<std::string> command, LineReader::OnLine onLine,
         OnEnd onEnd);
  ~Player() override;

  // Throws std::runtime_error when the program cannot be started.
  void Start();

  // Closes its input, asks it to end, kills it two seconds later. Its lines are no longer taken.
  void Stop();

  void OnStep(unsigned long number, const Step& step) override;
  void OnRecord(const Record& record) override;

 private:
  void WriteWaiting();
  void CloseInput();
  void WaitForChildren();
  void OnChildren();
  void OnEnded();

  // Whether there are processes left.
  bool Signal(int signal) const;
  void Terminate();
  void After(std::chrono::milliseconds time, void (Player::*then)());
  void Kill();
  void GiveUp();

  boost::asio::io_context& m_Loop;
  const std::vector<std::string> m_Command;
  const LineReader::OnLine m_OnLine;
  const OnEnd m_OnEnd;
  boost::asio::posix::stream_descriptor m_Input;
  int m_Output = -1;
  boost::asio::signal_set m_Children;
  boost::asio::steady_timer m_Timer;
  std::optional<LineReader> m_Lines;
  pid_t m_Id = 0;  // of the process and of its group
  unsigned long m_Step = 0;
  std::deque<std::string> m_Waiting;
  std::size_t m_WaitingBytes = 0;
  bool m_Writing = false;
  bool m_Losing = false;
  bool m_Terminating = false;
  bool m_Stopped = false;
  std::optional<int> m_Status;  // once it has ended
};

}  // namespace driverhost
