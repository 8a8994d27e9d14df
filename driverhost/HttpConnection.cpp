#include "driverhost/HttpConnection.h"

#include <boost/asio/buffer.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/http/error.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/write.hpp>

#include <algorithm>
#include <chrono>
#include <sstream>
#include <utility>
#include <vector>

namespace driverhost {

namespace {

namespace asio = boost::asio;
namespace http = boost::beast::http;

constexpr std::uint64_t s_LargestBody = std::uint64_t{1} << 20U;
constexpr std::size_t s_MostWaiting = 1000;
constexpr std::size_t s_MostAtOnce = 64;
constexpr std::chrono::seconds s_ForRequest{10};
constexpr std::chrono::seconds s_ForAnswer{30};
constexpr std::chrono::seconds s_ForFarewell{2};

constexpr char s_Policy[] =
    "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self'; connect-src 'self'; "
    "base-uri 'none'; form-action 'none'; frame-ancestors 'none'";

void SetFields(http::response_header<>& header, const std::string& type) {
  header.version(11);
  header.set(http::field::content_type, type);
  header.set(http::field::cache_control, "no-store");
  header.set(http::field::connection, "close");
  header.set("Content-Security-Policy", s_Policy);
  header.set("Cross-Origin-Resource-Policy", "same-origin");
  header.set("Referrer-Policy", "no-referrer");
  header.set("X-Content-Type-Options", "nosniff");
}

// The answer to a request that cannot be read; nothing when nobody waits for one.
std::optional<HttpAnswer> AnswerTo(boost::system::error_code error) {
  if (error == http::error::body_limit) {
    return PlainAnswer(http::status::payload_too_large, "the body is over 1 MiB");
  }
  if (error == http::error::header_limit) {
    return PlainAnswer(http::status::request_header_fields_too_large, "the header is too large");
  }
  if (error == http::error::end_of_stream || error == http::error::partial_message ||
      error.category() != http::make_error_code(http::error::bad_method).category()) {
    return std::nullopt;
  }
  return PlainAnswer(http::status::bad_request, error.message());
}

}  // namespace

HttpConnection::HttpConnection(asio::ip::tcp::socket socket, const Door& door, bool oneTooMany)
    : m_Door(door), m_OneTooMany(oneTooMany), m_Stream(std::move(socket)) {
  m_Parser.body_limit(s_LargestBody);
}

auto HttpConnection::Then(Handler handler) {
  return [self = shared_from_this(), handler](Error error, std::size_t) {
    const bool isOpen = self->m_Stream.socket().is_open();
    ((*self).*handler)(isOpen ? error : asio::error::operation_aborted);
  };
}

void HttpConnection::Start() {
  m_Stream.expires_after(s_ForRequest);
  http::async_read_header(m_Stream, m_Buffer, m_Parser, Then(&HttpConnection::OnHeader));
}

void HttpConnection::OnHeader(Error error) {
  if (error) {
    if (const auto answer = AnswerTo(error)) Answer(*answer);
    return;
  }
  if (m_OneTooMany) {
    return Answer(PlainAnswer(http::status::service_unavailable, "too many clients"));
  }
  const HttpHeader& header = m_Parser.get();
  const auto served = m_Stream.socket().local_endpoint(error);
  if (error) return;
  if (const auto refusal = m_Door.rules.Refusal(header, served)) return Answer(*refusal);
  if (header.method() == http::verb::post) {
    return http::async_read(m_Stream, m_Buffer, m_Parser, Then(&HttpConnection::OnBody));
  }
  if (header.target() == "/traffic") return BeginStream();
  const auto target = header.target();
  Answer(m_Door.rules.Get({target.data(), target.size()}));
}

void HttpConnection::OnBody(Error error) {
  if (error) {
    if (const auto answer = AnswerTo(error)) Answer(*answer);
    return;
  }
  Answer(m_Door.post(m_Parser.get().body()));
}

void HttpConnection::Answer(const HttpAnswer& answer) {
  m_Response.result(answer.status);
  SetFields(m_Response, answer.type);
  m_Response.body() = answer.body;
  m_Response.prepare_payload();
  m_Stream.expires_after(s_ForAnswer);
  http::async_write(m_Stream, m_Response, Then(&HttpConnection::OnAnswered));
}

// Closing at once would take the answer from a client that is still sending.
void HttpConnection::OnAnswered(Error error) {
  if (!error) m_Stream.socket().shutdown(asio::ip::tcp::socket::shutdown_send, error);
  m_Stream.expires_after(s_ForFarewell);
  if (!error) Drain(error);
}

void HttpConnection::Drain(Error error) {
  if (error) return;
  m_Stream.async_read_some(asio::buffer(m_Ignored), Then(&HttpConnection::Drain));
}

void HttpConnection::BeginStream() {
  http::response_header<> header;
  header.result(http::status::ok);
  SetFields(header, "text/event-stream");
  std::ostringstream start;
  start << header << "retry: 500\n\n";
  m_Stream.expires_never();
  m_IsStream = true;
  Send(std::make_shared<const std::string>(start.str()));
  WaitForEnd({});
}

void HttpConnection::Send(const std::shared_ptr<const std::string>& event) {
  if (!m_IsStream) return;
  if (m_Waiting.size() >= s_MostWaiting) return Close();
  m_Waiting.push_back(event);
  if (m_Writing == 0) WriteWaiting({});
}

void HttpConnection::WriteWaiting(Error error) {
  if (error) return Close();
  m_Waiting.erase(m_Waiting.begin(), m_Waiting.begin() + static_cast<std::ptrdiff_t>(m_Writing));
  m_Writing = std::min(m_Waiting.size(), s_MostAtOnce);
  if (m_Writing == 0) return;
  std::vector<asio::const_buffer> buffers;
  for (std::size_t i = 0; i < m_Writing; ++i) buffers.push_back(asio::buffer(*m_Waiting[i]));
  asio::async_write(m_Stream, buffers, Then(&HttpConnection::WriteWaiting));
}

void HttpConnection::WaitForEnd(Error error) {
  if (error) return Close();
  m_Stream.async_read_some(asio::buffer(m_Ignored), Then(&HttpConnection::WaitForEnd));
}

void HttpConnection::Close() {
  m_IsStream = false;
  m_Stream.close();
}

}  // namespace driverhost
