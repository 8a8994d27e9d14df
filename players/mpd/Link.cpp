#include "players/mpd/Link.h"

#include "players/mpd/Complaint.h"

#include <netinet/in.h>
#include <netinet/tcp.h>

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <utility>

namespace mpdplayer {

namespace {

using std::chrono::milliseconds;

constexpr std::size_t s_LongestLine = std::size_t{256} << 10U;
constexpr std::size_t s_LargestPiece = std::size_t{1} << 20U;
constexpr std::size_t s_LongestAnswer = std::size_t{64} << 20U;
constexpr milliseconds s_ShortestPause{250};
constexpr milliseconds s_LongestPause{10000};
constexpr char s_IdleCommand[] = "idle player playlist options database\n";

// Lets the kernel notice a peer that has vanished without a word.
void KeepAlive(int fd) {
  const auto set = [fd](int level, int option, int value) {
    setsockopt(fd, level, option, &value, sizeof value);
  };
  set(SOL_SOCKET, SO_KEEPALIVE, 1);
  set(IPPROTO_TCP, TCP_KEEPIDLE, 15);
  set(IPPROTO_TCP, TCP_KEEPINTVL, 5);
  set(IPPROTO_TCP, TCP_KEEPCNT, 3);
  set(IPPROTO_TCP, TCP_NODELAY, 1);
}

int StartConnecting(const Address& address) {
  const int fd = socket(address.socket.ss_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
  if (fd < 0) return -1;
  KeepAlive(fd);
  const auto* const peer = reinterpret_cast<const sockaddr*>(&address.socket);
  if (connect(fd, peer, address.size) == 0 || errno == EINPROGRESS) return fd;
  const int fault = errno;
  close(fd);
  errno = fault;
  return -1;
}

std::size_t BinarySize(std::string_view text) {
  std::size_t size = 0;
  const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), size);
  if (fault != std::errc() || end != text.data() + text.size() || size > s_LargestPiece) {
    throw LinkError("MPD announces a piece of " + Quoted(text) + " bytes");
  }
  return size;
}

}  // namespace

std::string Argument(std::string_view text) {
  if (text.find_first_of(std::string_view("\n\0", 2)) != std::string_view::npos) {
    throw std::invalid_argument("must be one line");
  }
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') quoted += '\\';
    quoted += c;
  }
  return quoted + '"';
}

std::string CommandList(const std::string& commands) {
  return "command_list_begin\n" + commands + "\ncommand_list_end";
}

Link::Link(Server server, Handlers handlers)
    : m_Server(std::move(server)),
      m_Handlers(std::move(handlers)),
      m_Parser(mpd_parser_new(), &mpd_parser_free),
      m_Deadline(Clock::now()) {
  if (!m_Parser) throw std::bad_alloc();
}

Link::~Link() { Close(); }

short Link::Events() const {
  if (m_State == State::Connecting) return POLLOUT;
  return static_cast<short>(m_Out.empty() ? POLLIN : POLLIN | POLLOUT);
}

void Link::Guarded(const std::function<void()>& step) {
  try {
    step();
  } catch (const LinkError& error) {
    Drop(error.what());
  }
}

void Link::OnReady(short events) {
  Guarded([this, events] {
    if (m_State == State::Connecting) return OnConnected();
    if ((events & POLLOUT) != 0) Write();
    if ((events & (POLLIN | POLLHUP | POLLERR)) != 0) Receive();
  });
}

void Link::OnDeadline() {
  Guarded([this] {
    if (m_State == State::Connecting) return ConnectNext("no answer");
    if (m_State != State::Away) throw LinkError("MPD has stopped answering");
    try {
      m_Addresses = Resolve(m_Server.host, m_Server.port);
    } catch (const std::runtime_error& error) {
      throw LinkError(error.what());
    }
    ConnectNext("no address");
  });
}

void Link::Close() {
  if (m_Fd >= 0) close(m_Fd);
  m_Fd = -1;
}

void Link::Drop(const std::string& reason) {
  Close();
  if (m_State > State::Greeting && Clock::now() - m_UpSince > s_LongestPause) m_Pause = {};
  m_Pause = std::clamp(2 * m_Pause, s_ShortestPause, s_LongestPause);
  m_Deadline = Clock::now() + m_Pause;
  m_State = State::Away;
  m_Requests.clear();
  m_Changes.clear();
  m_Out.clear();
  m_In = std::string();
  m_Taken = 0;
  m_AnswerSize = 0;
  m_InBinary = false;
  m_Handlers.onDown(reason);
}

// `fault` says why the previous address failed.
void Link::ConnectNext(const std::string& fault) {
  Close();
  std::string reason = fault;
  while (!m_Addresses.empty()) {
    m_Fd = StartConnecting(m_Addresses.front());
    m_Addresses.erase(m_Addresses.begin());
    if (m_Fd >= 0) {
      m_State = State::Connecting;
      return Expect();
    }
    reason = std::strerror(errno);
  }
  throw LinkError(reason);
}

void Link::OnConnected() {
  int fault = 0;
  socklen_t size = sizeof fault;
  getsockopt(m_Fd, SOL_SOCKET, SO_ERROR, &fault, &size);
  if (fault != 0) return ConnectNext(std::strerror(fault));
  m_State = State::Greeting;
  Expect();
}

void Link::Write() {
  const ssize_t sent = send(m_Fd, m_Out.data(), m_Out.size(), MSG_NOSIGNAL);
  if (sent > 0) m_Out.erase(0, static_cast<std::size_t>(sent));
  if (sent < 0 && errno != EAGAIN && errno != EINTR) throw LinkError(std::strerror(errno));
}

void Link::Receive() {
  char piece[65536];
  const ssize_t size = recv(m_Fd, piece, sizeof piece, 0);
  if (size < 0 && (errno == EAGAIN || errno == EINTR)) return;
  if (size < 0) throw LinkError(std::strerror(errno));
  if (size == 0) throw LinkError("MPD has closed the connection");
  m_In.append(piece, static_cast<std::size_t>(size));
  if (m_State != State::Idle) Expect();
  while (m_InBinary ? TakeBinary() : TakeLine()) {
  }
  m_In.erase(0, m_Taken);
  m_Taken = 0;
}

bool Link::TakeLine() {
  const std::size_t end = m_In.find('\n', m_Taken);
  if (std::min(end, m_In.size()) - m_Taken > s_LongestLine)
    throw LinkError("MPD's line is too long");
  if (end == std::string::npos) return false;
  std::string line = m_In.substr(m_Taken, end - m_Taken);
  m_Taken = end + 1;
  m_AnswerSize += line.size();
  OnLine(std::move(line));
  return true;
}

bool Link::TakeBinary() {
  if (m_In.size() - m_Taken <= m_BinarySize) return false;
  const std::string bytes = m_In.substr(m_Taken, m_BinarySize);
  m_Taken += m_BinarySize;
  if (m_In[m_Taken++] != '\n') throw LinkError("MPD sends more bytes than it has announced");
  m_InBinary = false;
  m_AnswerSize += bytes.size();
  Deliver("binary", bytes);
  return true;
}

void Link::OnLine(std::string line) {
  if (m_AnswerSize > s_LongestAnswer) throw LinkError("MPD's answer is too long");
  if (m_State == State::Greeting) return OnGreeting(line);
  OnAnswer(std::move(line));
}

void Link::OnGreeting(const std::string& line) {
  if (line.rfind("OK MPD ", 0) != 0) throw LinkError("this is not MPD: " + Quoted(line));
  m_UpSince = Clock::now();
  m_State = State::Asking;
  m_Handlers.onUp();
  Next();
}

void Link::OnAnswer(std::string line) {
  switch (mpd_parser_feed(m_Parser.get(), line.data())) {
    case MPD_PARSER_SUCCESS:
      return OnEnd({});
    case MPD_PARSER_ERROR: {
      const char* message = mpd_parser_get_message(m_Parser.get());
      return OnEnd("MPD says " + Quoted(message ? message : ""));
    }
    case MPD_PARSER_PAIR: {
      const char* value = mpd_parser_get_value(m_Parser.get());
      const auto size = static_cast<std::size_t>(line.data() + line.size() - value);
      return OnPair(mpd_parser_get_name(m_Parser.get()), {value, size});
    }
    case MPD_PARSER_MALFORMED:
      throw LinkError("MPD sends nonsense: " + Quoted(line.c_str()));
  }
}

void Link::OnPair(std::string_view name, std::string_view value) {
  if (m_State != State::Asking) {
    if (name == "changed" && m_Changes.size() < 20) m_Changes.emplace_back(value);
    return;
  }
  m_InBinary = name == "binary";
  if (m_InBinary) {
    m_BinarySize = BinarySize(value);
  } else {
    Deliver(name, value);
  }
}

void Link::Deliver(std::string_view name, std::string_view value) {
  if (m_Requests.front().onPair) m_Requests.front().onPair(name, value);
}

void Link::OnEnd(const std::string& refusal) {
  m_AnswerSize = 0;
  if (m_State == State::Asking) {
    const Request done = std::move(m_Requests.front());
    m_Requests.pop_front();
    done.onEnd(refusal);
  } else {
    if (!refusal.empty()) throw LinkError("MPD refuses to idle: " + refusal);
    m_State = State::Asking;
    for (const std::string& change : std::exchange(m_Changes, {})) m_Handlers.onChange(change);
  }
  Next();
}

void Link::Ask(Request request) {
  m_Requests.push_back(std::move(request));
  if (m_State != State::Idle) return;
  Send("noidle\n");
  m_State = State::LeavingIdle;
}

void Link::Next() {
  if (m_Requests.empty()) {
    Send(s_IdleCommand);
    m_State = State::Idle;
    m_Deadline = Clock::time_point::max();
  } else {
    Send(m_Requests.front().command + '\n');
  }
}

void Link::Send(const std::string& text) {
  if (m_Out.size() > s_LargestPiece) throw LinkError("MPD does not read");
  m_Out += text;
  Expect();
}

void Link::Expect() { m_Deadline = Clock::now() + m_Server.timeout; }

}  // namespace mpdplayer
