#include "players/mpd/Link.h"

#include <algorithm>
#include <utility>

namespace mpdplayer {

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr milliseconds s_ShortestPause{250};
constexpr milliseconds s_LongestPause{10000};
constexpr std::size_t s_MostChanges = 20;
constexpr std::size_t s_MostWaiting = 100;
constexpr char s_IdleCommand[] =
    "idle player playlist options database mixer output stored_playlist\n";

// MPD ends connections whose command does not fit its buffer.
constexpr std::size_t s_LongestArgument = 4000;

}  // namespace

bool IsArgument(std::string_view text) {
  return text.size() <= s_LongestArgument &&
         text.find_first_of(std::string_view("\n\0", 2)) == std::string_view::npos;
}

std::string Argument(std::string_view text) {
  if (!IsArgument(text)) throw std::invalid_argument("must be one line, and shorter");
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

Link::Link(boost::asio::io_context& loop, const Server& server, Handlers handlers)
    : m_Handlers(std::move(handlers)),
      m_Timeout(server.timeout),
      m_Connector(loop, server,
                  {[this](Socket socket) { OnConnected(std::move(socket)); },
                   [this](const std::string& reason) { OnLost(reason); }}),
      m_Pausing(loop) {}

void Link::Connect() {
  m_State = State::Connecting;
  m_Connector.Start();
}

void Link::OnConnected(Socket socket) {
  m_State = State::Greeting;
  m_Connection = std::make_shared<Connection>(
      std::move(socket), m_Timeout,
      Connection::Handlers{
          [this] { OnGreeting(); },
          [this](std::string_view name, std::string_view value) { OnPair(name, value); },
          [this](const std::string& refusal) { OnEnd(refusal); },
          [this](const std::string& reason) { OnLost(reason); }, m_Handlers.pace});
  m_Connection->Start();
}

void Link::OnGreeting() {
  m_UpSince = steady_clock::now();
  m_State = State::Asking;
  m_Handlers.onUp();
  Next();
}

void Link::OnLost(const std::string& reason) {
  if (m_State > State::Greeting && steady_clock::now() - m_UpSince > s_LongestPause) m_Pause = {};
  m_Pause = std::clamp(2 * m_Pause, s_ShortestPause, s_LongestPause);
  m_State = State::Away;
  m_Asked.reset();
  m_Connection.reset();
  m_Changes.clear();
  const std::deque<Request> lost = std::exchange(m_Requests, {});
  m_Handlers.onDown(reason);
  for (const Request& request : lost) request.onEnd({Outcome::Kind::Lost, reason});
  m_Room.SetOpen(true);
  m_Pausing.expires_after(m_Pause);
  m_Pausing.async_wait([this](const boost::system::error_code& error) {
    if (!error) Connect();
  });
}

void Link::OnPair(std::string_view name, std::string_view value) {
  if (m_State == State::Asking) {
    if (m_Requests.front().onPair) m_Requests.front().onPair(name, value);
  } else if (name == "changed" && m_Changes.size() < s_MostChanges) {
    m_Changes.emplace_back(value);
  }
}

void Link::OnEnd(const std::string& refusal) {
  if (m_State == State::Asking) {
    OnRequestEnd(refusal);
  } else {
    OnIdleEnd(refusal);
  }
}

void Link::OnRequestEnd(const std::string& refusal) {
  const Request done = std::move(m_Requests.front());
  m_Requests.pop_front();
  m_Asked = 0;
  done.onEnd({refusal.empty() ? Outcome::Kind::Done : Outcome::Kind::Refused, refusal});
  m_Asked.reset();
  Next();
  if (m_Requests.size() <= s_MostWaiting) m_Room.SetOpen(true);
}

void Link::OnIdleEnd(const std::string& refusal) {
  if (!refusal.empty()) throw LinkError("MPD refuses to idle: " + refusal);
  const bool sent = m_State == State::LeavingIdle;
  m_State = State::Asking;
  for (const std::string& change : std::exchange(m_Changes, {})) m_Handlers.onChange(change);
  if (!sent) Next();
}

// A command that follows `noidle` need not wait for what idle answers.
void Link::Ask(Request request) {
  m_Requests.push_back(std::move(request));
  if (m_Requests.size() > s_MostWaiting) m_Room.SetOpen(false);
  if (m_State != State::Idle) return;
  m_State = State::LeavingIdle;
  m_Connection->SetExpecting(true);
  m_Connection->Send("noidle\n" + m_Requests.front().command + '\n');
}

void Link::AskNext(Request request) {
  if (!m_Asked) return Ask(std::move(request));
  m_Requests.insert(m_Requests.begin() + (*m_Asked)++, std::move(request));
}

void Link::Next() {
  const bool idle = m_Requests.empty();
  m_State = idle ? State::Idle : State::Asking;
  m_Connection->SetExpecting(!idle);
  m_Connection->Send(idle ? s_IdleCommand : m_Requests.front().command + '\n');
}

}  // namespace mpdplayer
