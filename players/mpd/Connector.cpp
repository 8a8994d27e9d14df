#include "players/mpd/Connector.h"

#include <boost/asio/local/stream_protocol.hpp>

#include <utility>

namespace mpdplayer {

namespace {

namespace asio = boost::asio;
using boost::system::error_code;

bool IsPath(const std::string& host) { return host.front() == '/' || host.front() == '@'; }

asio::local::stream_protocol::endpoint UnixEndpoint(std::string path) {
  if (path.front() == '@') path.front() = '\0';
  return {path};
}

}  // namespace

Connector::Connector(asio::io_context& loop, Server server, Handlers handlers)
    : m_Server(std::move(server)),
      m_Handlers(std::move(handlers)),
      m_Resolver(loop),
      m_Socket(loop),
      m_Deadline(loop) {}

void Connector::Start() {
  m_Endpoints.clear();
  if (!IsPath(m_Server.host)) return Resolve();
  try {
    m_Endpoints = {UnixEndpoint(m_Server.host)};
  } catch (const boost::system::system_error& error) {
    return Fail(error.code().message());
  }
  ConnectNext({});
}

void Connector::Expect(std::function<void()> onTimeout) {
  m_Deadline.expires_after(m_Server.timeout);
  m_Deadline.async_wait([onTimeout = std::move(onTimeout)](const error_code& error) {
    if (!error) onTimeout();
  });
}

// What is asked of a name server cannot be taken back: an answer that comes too late is not heard.
void Connector::Resolve() {
  Expect([this] {
    ++m_Attempt;
    Fail("the name server does not answer");
  });
  ++m_Resolving;
  m_Resolver.async_resolve(m_Server.host, std::to_string(m_Server.port),
                           [this, attempt = m_Attempt](const error_code& error, const auto& found) {
                             --m_Resolving;
                             if (attempt != m_Attempt) return;
                             for (const auto& each : found) m_Endpoints.push_back(each.endpoint());
                             ConnectNext(error.message());
                           });
}

// `fault` says why the previous address failed.
void Connector::ConnectNext(const std::string& fault) {
  error_code ignored;
  m_Socket.close(ignored);
  if (m_Endpoints.empty()) return Fail(fault);
  const Endpoint endpoint = m_Endpoints.front();
  m_Endpoints.pop_front();
  Expect([this] {
    error_code alsoIgnored;
    m_Socket.close(alsoIgnored);
  });
  m_Socket.async_connect(endpoint, [this](const error_code& error) {
    if (!m_Socket.is_open()) return ConnectNext("no answer");
    if (error) return ConnectNext(error.message());
    m_Deadline.cancel();
    m_Handlers.onConnected(std::move(m_Socket));
  });
}

void Connector::Fail(const std::string& reason) {
  m_Deadline.cancel();
  m_Handlers.onFault(reason);
}

}  // namespace mpdplayer
