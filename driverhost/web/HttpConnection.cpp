#include "driverhost/web/HttpConnection.h"

#include "driverhost/web/AnswerFields.h"
#include "driverhost/web/TrafficListener.h"
#include "driverhost/web/WebAddress.h"

#include <boost/asio/buffer.hpp>
#include <boost/beast/core/file_stdio.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/http/basic_file_body.hpp>
#include <boost/beast/http/buffer_body.hpp>
#include <boost/beast/http/error.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/span_body.hpp>
#include <boost/beast/http/write.hpp>
#include <boost/beast/websocket/rfc6455.hpp>

#include <array>
#include <chrono>
#include <optional>
#include <utility>

namespace driverhost {

namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = boost::beast::http;

constexpr std::uint32_t s_LargestHeader = 8192;
constexpr std::size_t s_LargestBuffer = 65536;
constexpr std::chrono::seconds s_ForRequest{10};
constexpr std::chrono::seconds s_ForAnswer{30};
constexpr std::chrono::seconds s_ForFarewell{2};

using FileBody = http::basic_file_body<beast::file_stdio>;
using TextBody = http::span_body<const char>;

std::string_view View(beast::string_view text) { return {text.data(), text.size()}; }

// The answer to a request that cannot be read; nothing when nobody waits for one.
std::optional<WebAnswer> AnswerTo(const boost::system::error_code& error) {
  if (error == http::error::body_limit) return PlainAnswer(413, "the body is over 1 MiB");
  if (error == http::error::header_limit) return PlainAnswer(431, "the header is over 8 KiB");
  if (error == http::error::buffer_overflow) {
    return PlainAnswer(413, "what stands between the chunks is too long");
  }
  if (error == http::error::end_of_stream || error == http::error::partial_message ||
      error.category() != http::make_error_code(http::error::bad_method).category()) {
    return std::nullopt;
  }
  return PlainAnswer(400, error.message());
}

unsigned StatusOf(LineAnswer::Result result) {
  switch (result) {
    case LineAnswer::Result::Done:
      return 200;
    case LineAnswer::Result::Wrong:
      return 400;
    case LineAnswer::Result::Forbidden:
      return 403;
    case LineAnswer::Result::Unavailable:
      break;
  }
  return 503;
}

class HttpConnection : public WebClient, public std::enable_shared_from_this<HttpConnection> {
 public:
  HttpConnection(asio::ip::tcp::socket socket, WebDoor& door, bool oneTooMany)
      : m_Door(door), m_OneTooMany(oneTooMany), m_Stream(std::move(socket)) {
    m_Parser.header_limit(s_LargestHeader);
    m_Parser.body_limit(WebDoor::s_LongestLine);
  }

  void Start();
  void Close() override { m_Stream.close(); }
  void Finish() override;
  std::string TakeLine() override { return m_Text.Lend(); }
  void OnAnswer(LineAnswer answer) override;

 private:
  using Error = boost::system::error_code;
  using Handler = void (HttpConnection::*)(Error);

  auto Then(Handler handler);
  WebRequest Request() const;
  void OnHeader(Error error, std::size_t size);
  void Serve(const WebRequest& request);
  void ReadBody();
  void OnBody(Error error);
  void Fail(Error error);
  void Answer(WebAnswer answer);
  template <class Body>
  void Write(typename Body::value_type body, const WebAnswer& answer);
  void OnAnswered(Error error);
  void Drain(Error error);

  WebDoor& m_Door;
  const bool m_OneTooMany;
  bool m_IsRead = false;
  beast::tcp_stream m_Stream;
  beast::flat_buffer m_Buffer{s_LargestBuffer};
  http::request_parser<http::buffer_body> m_Parser;
  std::array<char, 16384> m_Part;
  PaidText m_Text{m_Door.budget};  // the line, and later its answer
  std::string m_Plain;             // any other answer
};

// A handler that keeps the object alive.
auto HttpConnection::Then(Handler handler) {
  return [self = shared_from_this(), handler](Error error, std::size_t) {
    const bool isOpen = self->m_Stream.socket().is_open();
    ((*self).*handler)(isOpen ? error : asio::error::operation_aborted);
  };
}

void HttpConnection::Start() {
  m_Stream.expires_after(s_ForRequest);
  http::async_read_header(
      m_Stream, m_Buffer, m_Parser,
      [self = shared_from_this()](Error error, std::size_t size) { self->OnHeader(error, size); });
}

// A request that is still being read has nothing to wait for.
void HttpConnection::Finish() {
  if (!m_IsRead) Close();
}

WebRequest HttpConnection::Request() const {
  const auto& header = m_Parser.get();
  const auto only = [&](http::field name) {
    return header.count(name) == 1 ? View(header[name]) : std::string_view();
  };
  WebRequest request;
  request.method = View(header.method_string());
  request.target = View(header.target());
  request.names = HostNames(m_Stream.socket().local_endpoint());
  request.host = only(http::field::host);
  request.contentType = only(http::field::content_type);
  request.cookie = only(http::field::cookie);
  if (header.count(http::field::origin) != 0) request.origin = only(http::field::origin);
  return request;
}

void HttpConnection::OnHeader(Error error, std::size_t size) {
  if (!error && size > s_LargestHeader) error = http::error::header_limit;
  if (error) return Fail(error);
  if (m_OneTooMany) return Answer(PlainAnswer(503, "too many clients"));
  Error gone;
  m_Stream.socket().remote_endpoint(gone);
  if (!gone) Serve(Request());
}

void HttpConnection::Serve(const WebRequest& request) {
  if (auto refusal = m_Door.rules.Refusal(request)) return Answer(std::move(*refusal));
  if (request.method == "POST") return ReadBody();
  if (request.Path() != "/traffic") return Answer(m_Door.rules.Get(request));
  if (beast::websocket::is_upgrade(m_Parser.get())) {
    return m_Door.enter(ServeTraffic(m_Stream.release_socket(), m_Parser.get(), m_Door));
  }
  WebAnswer answer = PlainAnswer(426, "the traffic comes over a WebSocket");
  answer.fields.emplace_back("Upgrade", "websocket");
  answer.fields.emplace_back("Connection", "upgrade, close");
  Answer(std::move(answer));
}

void HttpConnection::ReadBody() {
  auto& body = m_Parser.get().body();
  body.data = m_Part.data();
  body.size = m_Part.size();
  http::async_read(m_Stream, m_Buffer, m_Parser, Then(&HttpConnection::OnBody));
}

void HttpConnection::OnBody(Error error) {
  if (error && error != http::error::need_buffer) return Fail(error);
  const std::size_t size = m_Part.size() - m_Parser.get().body().size;
  if (!m_Text.Append({m_Part.data(), size})) {
    return Answer(PlainAnswer(503, "too many long lines at a time"));
  }
  if (!m_Parser.is_done()) return ReadBody();
  m_IsRead = true;
  m_Stream.expires_never();
  m_Door.turns.Enter(shared_from_this());
}

void HttpConnection::OnAnswer(LineAnswer answer) {
  const unsigned status = StatusOf(answer.result);
  if (status != 200) return Answer(PlainAnswer(status, answer.text));
  if (!m_Text.Set(std::move(answer.text))) {
    return Answer(PlainAnswer(503, "the answer is too long; the traffic has it"));
  }
  Answer({status, "application/json", std::string_view(m_Text.Text())});
}

void HttpConnection::Fail(Error error) {
  if (auto answer = AnswerTo(error)) Answer(std::move(*answer));
}

void HttpConnection::Answer(WebAnswer answer) {
  m_IsRead = true;
  m_Stream.expires_after(s_ForAnswer);
  if (auto* file = std::get_if<FilePtr>(&answer.body)) {
    FileBody::value_type body;
    beast::file_stdio opened;
    opened.native_handle(file->release());
    Error error;
    body.reset(std::move(opened), error);
    if (!error) Write<FileBody>(std::move(body), answer);
    return;
  }
  if (auto* text = std::get_if<std::string>(&answer.body)) {
    m_Plain = std::move(*text);
    answer.body = std::string_view(m_Plain);
  }
  const auto text = std::get<std::string_view>(answer.body);
  Write<TextBody>({text.data(), text.size()}, answer);
}

template <class Body>
void HttpConnection::Write(typename Body::value_type body, const WebAnswer& answer) {
  struct Outgoing {
    http::response<Body> response;
    std::optional<http::response_serializer<Body>> serializer;  // borrows the body
  };
  const auto out = std::make_shared<Outgoing>();
  out->response.result(answer.status);
  out->response.version(11);
  SetAnswerFields(out->response);
  out->response.set(http::field::connection, "close");
  out->response.set(http::field::content_type, answer.type);
  for (const auto& [name, value] : answer.fields) out->response.set(name, value);
  out->response.body() = std::move(body);
  out->response.prepare_payload();
  out->serializer.emplace(out->response);
  const auto then = [self = shared_from_this(), out](Error error, std::size_t) {
    self->OnAnswered(error);
  };
  if (m_Parser.get().method() == http::verb::head) {
    http::async_write_header(m_Stream, *out->serializer, then);
  } else {
    http::async_write(m_Stream, *out->serializer, then);
  }
}

// Closing at once would take the answer from a client that is still sending.
void HttpConnection::OnAnswered(Error error) {
  if (!error) m_Stream.socket().shutdown(asio::ip::tcp::socket::shutdown_send, error);
  m_Stream.expires_after(s_ForFarewell);
  if (!error) Drain(error);
}

void HttpConnection::Drain(Error error) {
  if (error) return;
  m_Stream.async_read_some(asio::buffer(m_Part), Then(&HttpConnection::Drain));
}

}  // namespace

void SetAnswerFields(http::fields& fields) {
  fields.erase(http::field::server);
  fields.set(http::field::cache_control, "no-store");
  fields.set("Content-Security-Policy",
             "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self'; "
             "connect-src 'self'; base-uri 'none'; form-action 'none'; frame-ancestors 'none'");
  fields.set("Cross-Origin-Resource-Policy", "same-origin");
  fields.set("Referrer-Policy", "no-referrer");
  fields.set("X-Content-Type-Options", "nosniff");
}

std::shared_ptr<WebClient> ServeHttp(asio::ip::tcp::socket socket, WebDoor& door, bool oneTooMany) {
  const auto connection = std::make_shared<HttpConnection>(std::move(socket), door, oneTooMany);
  connection->Start();
  return connection;
}

}  // namespace driverhost
