#pragma once

#include "players/mpd/Address.h"

#include <mpd/parser.h>

#include <chrono>
#include <deque>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace mpdplayer {

using Clock = std::chrono::steady_clock;

// Why a connection is of no more use. A handler of an answer may throw it, too.
struct LinkError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// The argument of a command, in quotes. Throws std::invalid_argument where the protocol has no way
// to write it.
std::string Argument(std::string_view text);

// Joins commands, one a line, into one with one answer.
std::string CommandList(const std::string& commands);

// One command, or a list of them, and what is done with its answer. `onEnd` gets the text with
// which MPD refused it, or an empty one. A "binary" pair's value is the bytes. When the connection
// is lost, neither is called.
struct Request {
  std::string command;
  std::function<void(std::string_view name, std::string_view value)> onPair;
  std::function<void(const std::string& refusal)> onEnd;
};

// Keeps up the connection to MPD, with growing pauses between attempts. Sends one request at a
// time, and `idle` in between. All that is received is bounded; an answer that stops coming ends
// the connection.
class Link {
 public:
  struct Server {
    std::string host;
    unsigned port = 0;
    std::chrono::milliseconds timeout{};
  };
  struct Handlers {
    std::function<void()> onUp;
    std::function<void(const std::string& reason)> onDown;
    std::function<void(std::string_view subsystem)> onChange;
  };

  Link(Server server, Handlers handlers);
  Link(const Link&) = delete;
  Link& operator=(const Link&) = delete;
  ~Link();

  // Only between onUp and onDown.
  void Ask(Request request);
  std::size_t Waiting() const { return m_Requests.size(); }

  // Between attempts to connect.
  bool Away() const { return m_State == State::Away; }

  // For poll: the descriptor, -1 when there is none, and what it waits for.
  int Descriptor() const { return m_Fd; }
  short Events() const;
  Clock::time_point Deadline() const { return m_Deadline; }

  void OnReady(short events);
  void OnDeadline();

 private:
  enum class State { Away, Connecting, Greeting, Asking, Idle, LeavingIdle };

  void Guarded(const std::function<void()>& step);
  void Drop(const std::string& reason);
  void Close();
  void ConnectNext(const std::string& fault);
  void OnConnected();
  void Receive();
  void Write();
  bool TakeLine();
  bool TakeBinary();
  void OnLine(std::string line);
  void OnGreeting(const std::string& line);
  void OnAnswer(std::string line);
  void OnPair(std::string_view name, std::string_view value);
  void Deliver(std::string_view name, std::string_view value);
  void OnEnd(const std::string& refusal);
  void Next();
  void Send(const std::string& text);
  void Expect();

  Server m_Server;
  Handlers m_Handlers;
  const std::unique_ptr<mpd_parser, void (*)(mpd_parser*)> m_Parser;

  State m_State = State::Away;
  int m_Fd = -1;
  std::vector<Address> m_Addresses;
  Clock::time_point m_Deadline;
  Clock::time_point m_UpSince;
  std::chrono::milliseconds m_Pause{};

  std::deque<Request> m_Requests;
  std::vector<std::string> m_Changes;
  std::string m_Out;
  std::string m_In;
  std::size_t m_Taken = 0;
  std::size_t m_AnswerSize = 0;
  std::size_t m_BinarySize = 0;
  bool m_InBinary = false;
};

}  // namespace mpdplayer
