#pragma once

#include "players/mpd/Connector.h"

#include <boost/asio/steady_timer.hpp>
#include <boost/asio/streambuf.hpp>
#include <mpd/parser.h>

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

namespace mpdplayer {

// Why a connection is of no more use. A handler of a connection may throw it, too.
struct LinkError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// Speaks MPD's protocol over a socket. All that is received is bounded; an answer that stops
// coming ends the connection. Stays alive while the loop has something to do for it.
class Connection : public std::enable_shared_from_this<Connection> {
 public:
  struct Handlers {
    std::function<void()> onGreeting;
    // A pair of an answer; the value of "binary" is the bytes.
    std::function<void(std::string_view name, std::string_view value)> onPair;
    // The end of an answer: the text with which MPD refuses, or an empty one.
    std::function<void(const std::string& refusal)> onEnd;
    std::function<void(const std::string& reason)> onLost;
    std::function<void(std::function<void()> go)> pace;  // calls `go` when more can be taken
  };

  Connection(Socket socket, std::chrono::milliseconds timeout, Handlers handlers);

  void Start();

  // Sends commands, each with a line's end.
  void Send(const std::string& text);

  // Whether an answer is owed, so that it counts when nothing comes.
  void SetExpecting(bool expecting);

  // No handler is called any more.
  void Close();

 private:
  void Guarded(const std::function<void()>& step);
  void Lose(const std::string& reason);
  void Await();
  void Read();
  void OnRead(const boost::system::error_code& error, std::size_t size);
  void Write();
  std::string_view Received() const;
  bool TakeLine();
  bool TakeBinary();
  void OnLine(std::string line);
  void OnPair(std::string_view line);

  Socket m_Socket;
  std::chrono::milliseconds m_Timeout;
  Handlers m_Handlers;
  const std::unique_ptr<mpd_parser, void (*)(mpd_parser*)> m_Parser;
  boost::asio::steady_timer m_Deadline;

  bool m_Greeted = false;
  bool m_Expecting = true;
  bool m_Reading = false;
  boost::asio::streambuf m_In;
  std::size_t m_AnswerSize = 0;
  std::size_t m_BinarySize = 0;
  bool m_InBinary = false;
  std::string m_Out;      // what is to be sent
  std::string m_Sending;  // what the socket is taking
};

}  // namespace mpdplayer
