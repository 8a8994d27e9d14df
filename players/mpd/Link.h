#pragma once

#include "players/mpd/Connection.h"
#include "players/mpd/Connector.h"
#include "players/mpd/Gate.h"

#include <boost/asio/steady_timer.hpp>

#include <chrono>
#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace mpdplayer {

// How a request ended.
struct Outcome {
  enum class Kind { Done, Refused, Lost };
  Kind kind = Kind::Done;
  std::string why;

  bool Done() const { return kind == Kind::Done; }
};
using Ended = std::function<void(const Outcome& outcome)>;

// Whether MPD takes a text as an argument of a command.
bool IsArgument(std::string_view text);

// The argument of a command, in quotes. Throws std::invalid_argument where it is none.
std::string Argument(std::string_view text);

// Joins commands, one a line, into one with one answer.
std::string CommandList(const std::string& commands);

// One command, or a list of them, and what is done with its answer. A "binary" pair's value is the
// bytes. `onEnd` is called once, also when the connection is lost. Both may throw LinkError.
struct Request {
  std::string command;
  std::function<void(std::string_view name, std::string_view value)> onPair;
  Ended onEnd;
};

// Keeps up the connection to MPD, with growing pauses between attempts. Sends one request at a
// time, and `idle` in between.
class Link {
 public:
  struct Handlers {
    std::function<void()> onUp;
    std::function<void(const std::string& reason)> onDown;
    std::function<void(std::string_view subsystem)> onChange;
    std::function<void(std::function<void()> go)> pace;  // calls `go` when more can be taken
  };

  Link(boost::asio::io_context& loop, const Server& server, Handlers handlers);

  void Start() { Connect(); }

  // Only between onUp and onDown.
  void Ask(Request request);

  // The same; but what is asked where a request ends comes before all that waits, so that the steps
  // of one command are not parted by other commands.
  void AskNext(Request request);

  // Calls `go` when not too many requests are waiting.
  void WhenRoom(std::function<void()> go) { m_Room.Pass(std::move(go)); }

  // Between attempts to connect.
  bool Away() const { return m_State == State::Away; }
  bool Resolving() const { return m_Connector.Resolving(); }

 private:
  enum class State { Away, Connecting, Greeting, Asking, Idle, LeavingIdle };

  void Connect();
  void OnConnected(Socket socket);
  void OnGreeting();
  void OnLost(const std::string& reason);
  void OnPair(std::string_view name, std::string_view value);
  void OnEnd(const std::string& refusal);
  void OnIdleEnd(const std::string& refusal);
  void OnRequestEnd(const std::string& refusal);
  void Next();

  Handlers m_Handlers;
  std::chrono::milliseconds m_Timeout;
  Connector m_Connector;
  boost::asio::steady_timer m_Pausing;
  Gate m_Room;

  State m_State = State::Away;
  std::shared_ptr<Connection> m_Connection;
  std::chrono::steady_clock::time_point m_UpSince;
  std::chrono::milliseconds m_Pause{};
  std::deque<Request> m_Requests;
  std::optional<std::ptrdiff_t> m_Asked;  // how many were to come next, where a request ends
  std::vector<std::string> m_Changes;
};

}  // namespace mpdplayer
