#include "players/mpd/Connection.h"

#include "players/mpd/Complaint.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/write.hpp>

#include <algorithm>
#include <charconv>
#include <new>
#include <utility>

namespace mpdplayer {

namespace {

namespace asio = boost::asio;
using boost::system::error_code;

constexpr std::size_t s_ReadAtOnce = std::size_t{64} << 10U;
constexpr std::size_t s_LongestLine = std::size_t{256} << 10U;
constexpr std::size_t s_LargestPiece = std::size_t{1} << 20U;
constexpr std::size_t s_LongestAnswer = std::size_t{64} << 20U;

std::size_t BinarySize(std::string_view text) {
  std::size_t size = 0;
  const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), size);
  if (fault != std::errc() || end != text.data() + text.size() || size > s_LargestPiece) {
    throw LinkError("MPD announces a piece of " + Quoted(text) + " bytes");
  }
  return size;
}

}  // namespace

Connection::Connection(Socket socket, std::chrono::milliseconds timeout, Handlers handlers)
    : m_Socket(std::move(socket)),
      m_Timeout(timeout),
      m_Handlers(std::move(handlers)),
      m_Parser(mpd_parser_new(), &mpd_parser_free),
      m_Deadline(m_Socket.get_executor()) {
  if (!m_Parser) throw std::bad_alloc();
}

void Connection::Start() {
  error_code none;  // a Unix socket has no such option
  m_Socket.set_option(asio::ip::tcp::no_delay(true), none);
  Read();
}

void Connection::Close() {
  error_code ignored;
  m_Socket.close(ignored);
  m_Deadline.cancel();
}

void Connection::Guarded(const std::function<void()>& step) {
  try {
    step();
  } catch (const std::exception& error) {
    Lose(error.what());
  }
}

void Connection::Lose(const std::string& reason) {
  if (!m_Socket.is_open()) return;
  Close();
  m_Handlers.onLost(reason);
}

void Connection::SetExpecting(bool expecting) {
  m_Expecting = expecting;
  Await();
}

// What waits to be read because the reader is slow does not count as an answer that does not come.
void Connection::Await() {
  m_Deadline.cancel();
  if (!m_Expecting || !m_Reading) return;
  m_Deadline.expires_after(m_Timeout);
  m_Deadline.async_wait([self = shared_from_this()](const error_code& error) {
    if (!error) self->Lose("MPD has stopped answering");
  });
}

void Connection::Read() {
  m_Reading = false;
  m_Handlers.pace([self = shared_from_this()] {
    if (!self->m_Socket.is_open()) return;
    self->m_Reading = true;
    self->Await();
    self->m_Socket.async_read_some(
        self->m_In.prepare(s_ReadAtOnce),
        [self](const error_code& error, std::size_t size) { self->OnRead(error, size); });
  });
}

void Connection::OnRead(const error_code& error, std::size_t size) {
  if (!m_Socket.is_open()) return;
  if (error == asio::error::eof) return Lose("MPD has closed the connection");
  if (error) return Lose(error.message());
  m_In.commit(size);
  Guarded([this] {
    while (m_Socket.is_open() && (m_InBinary ? TakeBinary() : TakeLine())) {
    }
  });
  if (m_Socket.is_open()) Read();
}

std::string_view Connection::Received() const {
  return {static_cast<const char*>(m_In.data().data()), m_In.size()};
}

bool Connection::TakeLine() {
  const std::string_view received = Received();
  const std::size_t end = received.find('\n');
  if (std::min(end, received.size()) > s_LongestLine) throw LinkError("MPD's line is too long");
  if (end == std::string_view::npos) return false;
  std::string line(received.substr(0, end));
  m_In.consume(end + 1);
  m_AnswerSize += line.size();
  OnLine(std::move(line));
  return true;
}

bool Connection::TakeBinary() {
  const std::string_view received = Received();
  if (received.size() <= m_BinarySize) return false;
  if (received[m_BinarySize] != '\n') {
    throw LinkError("MPD sends more bytes than it has announced");
  }
  m_InBinary = false;
  m_AnswerSize += m_BinarySize;
  m_Handlers.onPair("binary", received.substr(0, m_BinarySize));
  m_In.consume(m_BinarySize + 1);
  return true;
}

void Connection::OnLine(std::string line) {
  if (m_AnswerSize > s_LongestAnswer) throw LinkError("MPD's answer is too long");
  if (!m_Greeted) {
    if (line.rfind("OK MPD ", 0) != 0) throw LinkError("this is not MPD: " + Quoted(line));
    m_Greeted = true;
    return m_Handlers.onGreeting();
  }
  switch (mpd_parser_feed(m_Parser.get(), line.data())) {
    case MPD_PARSER_SUCCESS:
      m_AnswerSize = 0;
      return m_Handlers.onEnd({});
    case MPD_PARSER_ERROR: {
      m_AnswerSize = 0;
      const char* message = mpd_parser_get_message(m_Parser.get());
      return m_Handlers.onEnd("MPD says " + Quoted(message ? message : ""));
    }
    case MPD_PARSER_PAIR:
      return OnPair(line);
    case MPD_PARSER_MALFORMED:
      throw LinkError("MPD sends nonsense: " + Quoted(line.c_str()));
  }
}

// The parser has put a zero behind the name; a value may hold zeros of its own.
void Connection::OnPair(std::string_view line) {
  const std::string_view name = mpd_parser_get_name(m_Parser.get());
  const char* const start = mpd_parser_get_value(m_Parser.get());
  const std::string_view value(start, static_cast<std::size_t>(line.data() + line.size() - start));
  m_InBinary = name == "binary";
  if (m_InBinary) {
    m_BinarySize = BinarySize(value);
  } else {
    m_Handlers.onPair(name, value);
  }
}

void Connection::Send(const std::string& text) {
  if (m_Out.size() > s_LargestPiece) {
    return asio::post(m_Socket.get_executor(),
                      [self = shared_from_this()] { self->Lose("MPD does not read"); });
  }
  m_Out += text;
  if (m_Sending.empty()) Write();
}

void Connection::Write() {
  m_Sending.swap(m_Out);
  asio::async_write(m_Socket, asio::buffer(m_Sending),
                    [self = shared_from_this()](const error_code& error, std::size_t) {
                      self->m_Sending.clear();
                      if (error) return self->Lose(error.message());
                      if (!self->m_Out.empty()) self->Write();
                    });
}

}  // namespace mpdplayer
