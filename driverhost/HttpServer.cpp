#include "driverhost/HttpServer.h"

#include <boost/asio/ip/address.hpp>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdint>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace driverhost {

namespace {

namespace asio = boost::asio;
using asio::ip::tcp;

constexpr std::size_t s_MostClients = 64;
// Up to this number, a client beyond s_MostClients gets an answer that says so; any more
// connections are closed without one.
constexpr std::size_t s_MostConnections = 2 * s_MostClients;

tcp::acceptor Listen(asio::io_context& loop, const tcp::endpoint& address) {
  try {
    return {loop, address};
  } catch (const boost::system::system_error& error) {
    std::ostringstream text;
    text << "cannot listen on " << address << ": " << error.code().message();
    throw std::runtime_error(text.str());
  }
}

}  // namespace

tcp::endpoint ReadEndpoint(const std::string& text) {
  const std::size_t colon = text.rfind(':');
  std::string host = colon == std::string::npos ? "127.0.0.1" : text.substr(0, colon);
  if (host.size() > 2 && host.front() == '[' && host.back() == ']') {
    host = host.substr(1, host.size() - 2);
  }
  boost::system::error_code error;
  const auto address = asio::ip::make_address(host, error);
  if (error) throw std::runtime_error("\"" + host + "\" is not an IP address");
  const std::string digits = colon == std::string::npos ? text : text.substr(colon + 1);
  std::uint16_t port = 0;
  const char* end = digits.data() + digits.size();
  const auto read = std::from_chars(digits.data(), end, port);
  if (read.ec != std::errc() || read.ptr != end) {
    throw std::runtime_error("\"" + digits + "\" is not a port");
  }
  return {address, port};
}

HttpServer::HttpServer(asio::io_context& loop, const HttpOptions& options,
                       std::function<HttpAnswer(const std::string& line)> post)
    : m_Rules(options.pageFolder, options.imageRoot),
      m_Door{m_Rules, std::move(post)},
      m_Acceptor(Listen(loop, options.address)),
      m_Pause(loop) {
  Accept();
}

HttpServer::~HttpServer() {
  for (const auto& client : m_Clients) {
    if (const auto connection = client.lock()) connection->Close();
  }
}

std::string HttpServer::Url() const {
  std::ostringstream url;
  url << "http://" << m_Acceptor.local_endpoint() << '/';
  return url.str();
}

void HttpServer::Send(std::string_view record) {
  if (!HasClients()) return;
  const auto event = std::make_shared<const std::string>("data: " + std::string(record) + "\n\n");
  for (const auto& client : m_Clients) {
    if (const auto connection = client.lock()) connection->Send(event);
  }
}

void HttpServer::Accept() {
  m_Acceptor.async_accept([this](boost::system::error_code error, tcp::socket socket) {
    if (error == asio::error::operation_aborted) return;
    if (!error) {
      Admit(std::move(socket));
      return Accept();
    }
    // Without a free descriptor the next attempt would fail at once.
    m_Pause.expires_after(std::chrono::seconds(1));
    m_Pause.async_wait([this](boost::system::error_code stopped) {
      if (!stopped) Accept();
    });
  });
}

void HttpServer::Admit(tcp::socket socket) {
  const auto left = std::remove_if(m_Clients.begin(), m_Clients.end(),
                                   [](const auto& client) { return client.expired(); });
  m_Clients.erase(left, m_Clients.end());
  if (m_Clients.size() >= s_MostConnections) return;
  const bool oneTooMany = m_Clients.size() >= s_MostClients;
  const auto client = std::make_shared<HttpConnection>(std::move(socket), m_Door, oneTooMany);
  m_Clients.push_back(client);
  client->Start();
}

}  // namespace driverhost
