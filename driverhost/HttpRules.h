#pragma once

#include <boost/asio/ip/tcp.hpp>
#include <boost/beast/http/fields.hpp>
#include <boost/beast/http/message.hpp>
#include <boost/beast/http/status.hpp>

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace driverhost {

using HttpHeader = boost::beast::http::request_header<>;

struct HttpAnswer {
  boost::beast::http::status status;
  std::string type;
  std::string body;
};

// An answer of one line of text, to which the line break is added.
HttpAnswer PlainAnswer(boost::beast::http::status status, const std::string& text);

// Says what is served and what is refused; knows nothing of connections.
class HttpRules {
 public:
  // Reads the page's files below `pageFolder`; throws std::runtime_error when there are none.
  HttpRules(const std::string& pageFolder, std::string imageRoot);

  // The answer that refuses the request, whatever it asks for; nothing for one that is let in.
  // `served` is the address that the client has reached.
  std::optional<HttpAnswer> Refusal(const HttpHeader& header,
                                    const boost::asio::ip::tcp::endpoint& served) const;

  // The page's files and the pictures. The path is the request's target as it came.
  HttpAnswer Get(std::string_view target) const;

 private:
  HttpAnswer Picture(const std::string& path) const;

  std::map<std::string, HttpAnswer, std::less<>> m_Files;
  std::string m_ImageRoot;
};

}  // namespace driverhost
