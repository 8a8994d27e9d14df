#include "players/mpd/Player.h"

#include "players/mpd/Complaint.h"

#include <nlohmann/json.hpp>

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <memory>
#include <utility>

namespace mpdplayer {

namespace {

constexpr std::size_t s_MostEarly = 100;
constexpr std::size_t s_MostWaiting = 100;

// Milliseconds for poll, which may wake too late but not too early.
int Until(Clock::time_point time) {
  if (time == Clock::time_point::max()) return -1;
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(time - Clock::now()).count();
  return static_cast<int>(std::clamp<long long>(left, 0, INT_MAX));
}

}  // namespace

Player::Player(Link::Server server, std::string password, ArtOptions art)
    : m_Output(STDOUT_FILENO),
      m_Input(STDIN_FILENO, [this](const std::string& line) { OnRecord(line); }),
      m_Reports(m_Output),
      m_Link(std::move(server),
             {[this] { OnUp(); }, [this](const std::string& reason) { OnDown(reason); },
              [this](std::string_view subsystem) { OnChange(subsystem); }}),
      m_CoverArt(m_Link, m_Output, art),
      m_Browser(m_Link, m_Output),
      m_Commands(m_Link, m_Browser, [this] { Reset(); }),
      m_Password(std::move(password)) {}

void Player::Run() {
  while (Step()) {
  }
  if (!m_Output.Empty()) m_Output.Write();
}

// While the output is full, nothing is done that would add to it. What MPD sends meanwhile is read
// before its deadline counts.
bool Player::Step() {
  const bool full = m_Output.Full();
  if (!full && Clock::now() >= m_Reports.NextTick()) m_Reports.Tick();
  const bool busy = full || m_Link.Waiting() > s_MostWaiting;
  pollfd fds[] = {{STDIN_FILENO, static_cast<short>(busy ? 0 : POLLIN), 0},
                  {STDOUT_FILENO, static_cast<short>(m_Output.Empty() ? 0 : POLLOUT), 0},
                  {full ? -1 : m_Link.Descriptor(), m_Link.Events(), 0}};
  const int ready = poll(fds, std::size(fds),
                         full ? -1 : Until(std::min(m_Link.Deadline(), m_Reports.NextTick())));
  if (ready < 0) return true;

  if ((fds[1].revents & (POLLERR | POLLNVAL)) != 0) return false;
  if ((fds[1].revents & POLLOUT) != 0 && !m_Output.Write()) return false;
  if (fds[2].revents != 0) {
    m_Link.OnReady(fds[2].revents);
  } else if (!full && Clock::now() >= m_Link.Deadline()) {
    m_Link.OnDeadline();
  }
  if (fds[0].revents != 0 && (busy || !m_Input.Read())) return false;
  return true;
}

void Player::OnUp() {
  if (!m_Password.empty()) Password();
  m_Allowed.clear();
  m_Link.Ask({"commands",
              [this](std::string_view, std::string_view value) { m_Allowed.emplace(value); },
              [](const std::string&) {}});
  const auto ignore = [](const std::string&) {};
  m_Link.Ask({CommandList("tagtypes clear\ntagtypes enable Artist Album Title Name"), {}, ignore});
  m_Link.Ask({"binarylimit 131072", {}, ignore});
  m_StateAsked = false;
  AskState();
}

void Player::Password() {
  m_Link.Ask({"password " + Argument(m_Password), {}, [](const std::string& refusal) {
                if (!refusal.empty()) throw LinkError("the password is refused: " + refusal);
              }});
}

void Player::AskState() {
  if (std::exchange(m_StateAsked, true)) return;
  const auto state = std::make_shared<PlayerState>();
  m_Link.Ask({CommandList("status\ncurrentsong"),
              [state](std::string_view name, std::string_view value) { state->Take(name, value); },
              [this, state](const std::string& refusal) {
                m_StateAsked = false;
                if (!refusal.empty()) throw LinkError("the status is refused: " + refusal);
                OnState(*state);
              }});
}

void Player::OnState(const PlayerState& state) {
  if (!std::exchange(m_Online, true)) Bind();
  m_Reports.Say("ONLINE_STATUS_CHANGED", {{"online_status", "True"}});
  m_Reports.Modes();
  m_Reports.State(state);
  m_Browser.SetQueueLength(mpd_status_get_queue_length(&state.Status()));
  m_CoverArt.Follow(state.Song().uri);
  for (const std::string& record : std::exchange(m_Early, {})) m_Commands.Obey(record);
}

void Player::Bind() {
  m_Told.clear();
  static constexpr struct {
    const char* capability;
    const char* command;
  } rows[] = {
      {"has_shuffle", "random"},    {"has_repeat", "repeat"},    {"has_play", "play"},
      {"has_pause", "pause"},       {"has_stop", "stop"},        {"has_skip_fwd", "next"},
      {"has_skip_rev", "previous"}, {"has_scan_fwd", "seekcur"}, {"has_scan_rev", "seekcur"},
      {"has_menu", "lsinfo"},       {"has_search", "search"},    {"has_browse", "lsinfo"}};
  nlohmann::ordered_json line = {{"bind", 5001}, {"class", "MUSIC_PLAYER"}};
  auto& capabilities = line["capabilities"];
  for (const auto& row : rows) capabilities[row.capability] = m_Allowed.contains(row.command);
  capabilities["shuffle_modes"] = s_ShuffleModes;
  capabilities["repeat_modes"] = s_RepeatModes;
  capabilities["media_labels"] = s_MediaLabels;
  m_Output.Say(line.dump());
}

void Player::OnDown(const std::string& reason) {
  if (reason != std::exchange(m_Told, reason)) Complain("MPD is away: " + reason);
  for (const std::string& record : std::exchange(m_Early, {})) OnRecord(record);
  m_CoverArt.OnDown();
  m_Reports.Forget();
  if (std::exchange(m_Online, false)) {
    m_Reports.Say("ONLINE_STATUS_CHANGED", {{"online_status", "False"}});
  }
}

void Player::OnChange(std::string_view subsystem) {
  if (subsystem == "database") m_CoverArt.Recheck();
  AskState();
}

void Player::OnRecord(const std::string& record) {
  if (m_Online) return m_Commands.Obey(record);
  if (!m_Link.Away() && m_Early.size() < s_MostEarly) {
    m_Early.push_back(record);
  } else {
    Complain("MPD is away, nothing is done: " + Quoted(record));
  }
}

void Player::Reset() {
  m_Reports.Forget();
  m_CoverArt.Forget();
  AskState();
}

}  // namespace mpdplayer
