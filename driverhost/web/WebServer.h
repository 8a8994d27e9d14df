#pragma once

#include "driverhost/web/LineTurns.h"
#include "driverhost/web/Objects.h"

#include <boost/asio/ip/tcp.hpp>

#include <memory>
#include <string>
#include <string_view>
#include <thread>

namespace driverhost {

struct WebOptions {
  boost::asio::ip::tcp::endpoint address;  // port 0: a free one
  std::string pageFolder;
  std::string imageRoot;
};

// Serves the page, the pictures and the traffic, and takes session lines. All this happens on a
// thread of the server's own, so that nobody waits for its clients. Knows nothing of drivers.
class WebServer {
 public:
  // `post` gets one line of a client at a time, on the server's thread, where it may be read; who
  // hands it to another thread does so with a Handover. `done` may be called on any thread, also
  // when the server is gone. Throws std::runtime_error when the address cannot be used
  // or the page is missing.
  WebServer(const WebOptions& options, LineTurns::Post post);

  // Sends what the clients have not got yet, for a second at most.
  ~WebServer();

  WebServer(const WebServer&) = delete;
  WebServer& operator=(const WebServer&) = delete;

  // Where a browser finds the page: "http://127.0.0.1:8080/".
  std::string Url() const;

  // Keeps an object of the traffic, JSON on one line that comes in two pieces, and tells it to all
  // who listen. May be called on any thread, and waits for nobody.
  void Send(std::string_view head, std::string_view rest) noexcept;

  // What is told first to all who listen, and again when it changes.
  void SetAbout(const About& about);

 private:
  class Core;
  std::shared_ptr<Core> m_Core;
  std::thread m_Thread;
};

}  // namespace driverhost
