#pragma once

#include <boost/asio/generic/stream_protocol.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>

#include <chrono>
#include <deque>
#include <functional>
#include <string>

namespace mpdplayer {

using Socket = boost::asio::generic::stream_protocol::socket;

// Where MPD is, and how long it may take to answer.
struct Server {
  std::string host;  // a path is a Unix socket, @NAME an abstract one, all else is looked up
  unsigned port = 0;
  std::chrono::milliseconds timeout{};
};

// Looks MPD up and connects to it, to one address after the other.
class Connector {
 public:
  struct Handlers {
    std::function<void(Socket socket)> onConnected;
    std::function<void(const std::string& reason)> onFault;
  };

  Connector(boost::asio::io_context& loop, Server server, Handlers handlers);

  // Calls one of the handlers later, once. Only when the attempt before has ended.
  void Start();

  // The loop cannot be destroyed before a name server has answered.
  bool Resolving() const { return m_Resolving > 0; }

 private:
  using Endpoint = boost::asio::generic::stream_protocol::endpoint;

  void Resolve();
  void ConnectNext(const std::string& fault);
  void Fail(const std::string& reason);

  void Expect(std::function<void()> onTimeout);

  Server m_Server;
  Handlers m_Handlers;
  boost::asio::ip::tcp::resolver m_Resolver;
  Socket m_Socket;
  boost::asio::steady_timer m_Deadline;
  std::deque<Endpoint> m_Endpoints;
  unsigned m_Attempt = 0;
  int m_Resolving = 0;
};

}  // namespace mpdplayer
