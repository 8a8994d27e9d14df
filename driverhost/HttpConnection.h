#pragma once

#include "driverhost/HttpRules.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/string_body.hpp>

#include <deque>
#include <functional>
#include <memory>
#include <string>

namespace driverhost {

// One client: its request and the answer to it, or the stream of records until it leaves. It lives
// as long as it has something to wait for.
class HttpConnection : public std::enable_shared_from_this<HttpConnection> {
 public:
  struct Door {
    const HttpRules& rules;
    std::function<HttpAnswer(const std::string& line)> post;
  };

  // `door` lives until the connection is closed. A client that is one too many gets an answer that
  // says so.
  HttpConnection(boost::asio::ip::tcp::socket socket, const Door& door, bool oneTooMany);

  void Start();

  // Sends an event to a client that listens to the traffic. One that does not read is dropped.
  void Send(const std::shared_ptr<const std::string>& event);

  void Close();

 private:
  using Error = boost::system::error_code;
  using Response = boost::beast::http::response<boost::beast::http::string_body>;
  using Handler = void (HttpConnection::*)(Error);

  // A handler that keeps the object alive.
  auto Then(Handler handler);

  void OnHeader(Error error);
  void OnBody(Error error);
  void Answer(const HttpAnswer& answer);
  void OnAnswered(Error error);
  void Drain(Error error);
  void BeginStream();
  void WriteWaiting(Error error);
  void WaitForEnd(Error error);

  const Door& m_Door;
  const bool m_OneTooMany;
  boost::beast::tcp_stream m_Stream;
  boost::beast::flat_buffer m_Buffer;
  boost::beast::http::request_parser<boost::beast::http::string_body> m_Parser;
  Response m_Response;
  char m_Ignored[4096];
  bool m_IsStream = false;
  std::size_t m_Writing = 0;
  std::deque<std::shared_ptr<const std::string>> m_Waiting;
};

}  // namespace driverhost
