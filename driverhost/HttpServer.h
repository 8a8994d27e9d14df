#pragma once

#include "driverhost/HttpConnection.h"
#include "driverhost/HttpRules.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace driverhost {

struct HttpOptions {
  boost::asio::ip::tcp::endpoint address;  // port 0: a free one
  std::string pageFolder;
  std::string imageRoot;
};

// Reads "[ADDRESS:]PORT"; without an address it is 127.0.0.1. Throws std::runtime_error, whose text
// says what is wrong.
boost::asio::ip::tcp::endpoint ReadEndpoint(const std::string& text);

// Serves the page, the pictures and the traffic, and takes session lines, within `loop`.
class HttpServer {
 public:
  // `post` gets the body of each request for a session line and answers it. Throws
  // std::runtime_error when the address cannot be used or the page is missing.
  HttpServer(boost::asio::io_context& loop, const HttpOptions& options,
             std::function<HttpAnswer(const std::string& line)> post);
  ~HttpServer();

  HttpServer(const HttpServer&) = delete;
  HttpServer& operator=(const HttpServer&) = delete;

  // Where the page is: "http://127.0.0.1:8080/".
  std::string Url() const;

  // Whether there is anybody to send to.
  bool HasClients() const { return !m_Clients.empty(); }

  // A traffic record, as a line of JSON, for all clients that listen.
  void Send(std::string_view record);

 private:
  void Accept();
  void Admit(boost::asio::ip::tcp::socket socket);

  const HttpRules m_Rules;
  const HttpConnection::Door m_Door;
  boost::asio::ip::tcp::acceptor m_Acceptor;
  boost::asio::steady_timer m_Pause;
  std::vector<std::weak_ptr<HttpConnection>> m_Clients;
};

}  // namespace driverhost
