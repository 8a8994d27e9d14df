#pragma once

#include "driverhost/io/Descriptor.h"
#include "driverhost/io/Loop.h"
#include "session/LineSplitter.h"

#include <boost/asio/posix/stream_descriptor.hpp>

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace driverhost {

struct DriverProcessOptions {
  std::string program;  // driverprocess
  std::string driver;   // the plug-in
  unsigned long id = 1;
  std::string imageRoot;    // with its separator at the end
  std::string wrapper;      // a shell's words that start the program; mostly empty
  bool terminal = false;    // the wrapper gets the program's terminal
  bool lookAlways = false;  // after each step, for what the driver leaves in its process
};

// A process in which a driver lives, with all that connects it with this one: lines go to it, lines
// come from it, and what it prints. Knows nothing of what the lines say.
class DriverProcess {
 public:
  struct Events {
    std::function<void(std::string_view line)> onLine;
    std::function<void()> onPause;  // for now no more lines have come
    // A line that the driver wrote to standard output or error.
    std::function<void(std::string_view line, bool output)> onPrinted;
    // The last event: what waitpid tells.
    std::function<void(int status)> onExit;
  };

  // Starts the process. `loop` is borrowed and outlives the object. Throws std::runtime_error.
  DriverProcess(Loop& loop, const DriverProcessOptions& options, Events events);

  // Kills the process.
  ~DriverProcess();
  DriverProcess(const DriverProcess&) = delete;
  DriverProcess& operator=(const DriverProcess&) = delete;

  // Sends a line, without its line break, when there is room for it.
  void Send(std::string line);

  // No more lines come.
  void EndInput();

  // The bytes that wait to be sent.
  std::size_t Waiting() const { return m_WaitingBytes; }

  // Sends a signal to the process.
  void Signal(int signal) const;

  // Kills the process and what is in its group. `onExit` is called later.
  void Kill() const;

  // Whether something has come that has not been read.
  bool HasUnread();

 private:
  // What the process prints, as lines.
  struct Printed {
    boost::asio::posix::stream_descriptor stream;
    session::LineSplitter lines;
    bool output;
  };

  void Write();
  void WaitForLines();
  // Returns whether there was something.
  bool ReadLines();
  void WaitForPrinted(Printed& printed);
  bool ReadPrinted(Printed& printed);
  void ReadAllPrinted(Printed& printed);
  void OnExit(int status);

  Loop& m_Loop;
  const Events m_Events;
  boost::asio::posix::stream_descriptor m_Socket;
  std::deque<Printed> m_Printed;
  session::LineSplitter m_Lines;
  std::deque<std::string> m_ToSend;
  std::size_t m_Sent = 0;  // of the first of them
  std::size_t m_WaitingBytes = 0;
  bool m_Writing = false;
  bool m_InputEnds = false;
  pid_t m_Id = 0;  // 0 when it has ended
};

}  // namespace driverhost
